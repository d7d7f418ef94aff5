#include "app/terms_page.h"
#include "fuzz/machine.h"
#include "fuzz/targets.h"
#include "resources/resource_ids.h"

// The page as it opens, without a user.
void fuzz::terms_text(std::string_view input) {
    put("licenses/license.txt", input);
    const HWND page = CreateDialogParamW(nullptr, MAKEINTRESOURCEW(IDD_TERMS), nullptr, terms_dialog_proc, 0);
    require(page != nullptr, "the page can't be opened");
    DestroyWindow(page);
}
