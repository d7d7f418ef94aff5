#include "package/profile_names.h"

#include "fuzz/machine.h"
#include "fuzz/targets.h"

void fuzz::profile_names(std::string_view input) {
    put("wrenchbay/profilenames.inf", input);
    std::vector<WCHAR> value(12);
    const DWORD length = VLI_GetProfileFieldW(u"[Draft]", u"label100_draft.tkp", value.data(),
                                              static_cast<DWORD>(value.size()));
    require(length < value.size() && value[length] == 0, "a value without its end");
}
