#include "support/registry_text.h"
#include "fuzz/machine.h"
#include "fuzz/targets.h"
#include <algorithm>

void fuzz::registry_text(std::string_view input) {
    machine().machine.registry[u"SOFTWARE\\Fuzz"][u"Value"] = {1, {input.begin(), input.end()}};
    HKEY key = nullptr;
    require(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SOFTWARE\\Fuzz", 0, KEY_READ, &key) == 0,
            "the key isn't there");
    for (const DWORD bytes : {2u, 20u, 8192u}) {
        std::vector<WCHAR> out(bytes / sizeof(WCHAR) + 1, u'?');
        read_registry_text(key, u"Value", out.data(), bytes);
        require(std::find(out.begin(), out.end(), u'\0') != out.end(), "a text without its end");
    }
    for (const DWORD least : {1u, 4u}) {
        DWORD number = 0;
        require(read_registry_number(key, u"Value", least, &number) ==
                    (input.size() >= least && input.size() <= sizeof number),
                "a number of another size");
    }
    RegCloseKey(key);
}
