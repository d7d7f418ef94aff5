#include "package/driver_inf.h"

#include "fuzz/machine.h"
#include "fuzz/targets.h"
#include <algorithm>

// Room that is exactly as large as told, so that a byte too many is seen.
void fuzz::driver_inf(std::string_view input) {
    machine();
    const std::string text(input);
    for (const std::size_t room : {std::size_t{255}, std::size_t{6}}) {
        std::vector<char> driver(room), manu(room), mdl(room);
        const int size = static_cast<int>(room);
        DriverVersion version = 0;
        DWORD has_usb = 0;
        const InfFields fields = {driver.data(), size, manu.data(), size,
                                  mdl.data(),    size, &version,    &has_usb};
        if (scan_inf_driver(text.c_str(), &fields) != 0)
            for (const std::vector<char>* field : {&driver, &manu, &mdl})
                require(std::find(field->begin(), field->end(), '\0') != field->end(), "a field has no end");
    }
}
