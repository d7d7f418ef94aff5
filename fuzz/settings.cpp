#include "package/settings.h"

#include "fuzz/machine.h"
#include "fuzz/targets.h"
#include "package/languages.h"

void fuzz::settings(std::string_view input) {
    put("wrenchbay/settings.inf", input);
    DWORD from_setting = 0;
    const int language = VLI_Get_Locale(&from_setting, 0);
    require(language >= 0 && language < language_count, "a language that isn't there");
    std::vector<char> value(8);
    const DWORD length = read_setting("[UI]", "Language=", value.data(), static_cast<DWORD>(value.size()), 0);
    require(length < value.size() && value[length] == 0, "a value without its end");
}
