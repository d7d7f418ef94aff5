#include "fuzz/targets.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

const std::vector<Target> targets = {
    {"driver_inf", driver_inf},   {"settings", settings},           {"media_table", media_table},
    {"monitor_inf", monitor_inf}, {"profile_names", profile_names}, {"slp_reply", slp_reply},
    {"formatter", formatter},     {"number_scan", number_scan},     {"registry_text", registry_text},
    {"terms_text", terms_text},   {"machine_json", machine_json},   {"action_script", action_script},
    {"inf_package", inf_package}, {"link_reader", link_reader},     {"attribute_agent", attribute_agent},
    {"catalogue", catalogue},     {"install_log", install_log},     {"check_readers", check_readers},
};

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}

} // namespace fuzz
