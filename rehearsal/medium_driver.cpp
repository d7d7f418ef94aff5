#include "rehearsal/medium_driver.h"

#include "package/driver_inf.h"
#include "rehearsal/check/program_view.h"
#include "rehearsal/log_follower.h"
#include "state/app_state.h"

namespace rehearsal {

std::optional<MediumDriver> read_medium_driver(const check::Medium& medium) {
    DriverIdentity identity = {};
    int found = 0;
    check::with_program(medium, [&] {
        constexpr int name_size = 255; // as the setup gives it
        found = find_driver_inf(identity.driverName, name_size, identity.manuName, name_size,
                                identity.mdlName, name_size, identity.infPath, identity.infFile, 1,
                                &identity.version, &identity.hasUSB, 0);
    });
    if (found == 0)
        return std::nullopt;
    const auto utf8 = [](const char* text) { return ansi_to_utf8(text, driver_code_page); };
    return MediumDriver{utf8(identity.driverName), utf8(identity.mdlName), utf8(identity.infFile),
                        identity.version, identity.hasUSB != 0};
}

} // namespace rehearsal
