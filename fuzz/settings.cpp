#include "package/settings.h"

#include "fuzz/machine.h"
#include "fuzz/targets.h"
#include "package/languages.h"
#include <algorithm>

void fuzz::settings(std::string_view input) {
    put("wrenchbay/settings.inf", input);
    DWORD from_setting = 0;
    const int language = VLI_Get_Locale(&from_setting, 0);
    require(language >= 0 && language < language_count, "a language that isn't there");
    std::vector<char> value(8);
    const DWORD length = read_setting("[UI]", "Language=", value.data(), static_cast<DWORD>(value.size()), 0);
    // A result of 0 can leave the cut text of an entry before.
    const bool ends =
        length == 0 ? std::find(value.begin(), value.end(), '\0') != value.end() : value[length] == 0;
    require(length < value.size() && ends, "a value without its end");
}
