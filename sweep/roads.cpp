#include "sweep/roads.h"

#include "deploy/monitor_layout.h"
#include "rehearsal/remover.h"
#include "scenarios/library_road.h"
#include "spooler/monitor_ports.h"
#include "state/app_state.h"
#include "support/install_log.h"

#include <iterator>

namespace sweep {

rehearsal::Removal last_removal;

namespace {

constexpr std::uint64_t same_version = 0x0001'0002'0003'0004;
constexpr std::uint64_t other_version = 0x0001'0002'0003'0005;

void without_usb(Scenario& scenario) {
    replace_in_file(scenario.own_medium() / "Drivers/lbl.inf", "usbprint\\", "network\\");
    scenario.actions = {"select 0", "press 1015", "tick 1011", "press 1"};
}

// The second row: that the first one's record would do nobody sees who takes the first one.
void network(Scenario& scenario) {
    scenario.actions = network_install;
    scenario.actions[1] = "select 1";
}

void usb(Scenario& scenario) {
    scenario.actions = usb_install;
}

void typed_address(Scenario& scenario) {
    scenario.actions = {"press 1014", "press 1016", "type 1000 10.0.0.99", "press 1",
                        "select 2",   "press 1015", "tick 1011",           "press 1"};
}

void refused_terms(Scenario& scenario) {
    scenario.actions = {"press 1014", "select 0", "press 1015", "press 2", "press 2"};
}

void installed(Scenario& scenario) {
    scenario.add_driver(same_version);
    scenario.add_queue(u"Label 100 Series");
    network(scenario);
}

void installed_without_usb(Scenario& scenario) {
    scenario.add_driver(same_version);
    without_usb(scenario);
}

void another_version(Scenario& scenario) {
    scenario.add_driver(other_version);
}

void no_package(Scenario& scenario) {
    std::filesystem::remove(scenario.own_medium() / "Drivers/lbl.inf");
}

// What the second one finds answers the second search alone.
void two_adapters(Scenario& scenario) {
    platform::Adapter second = scenario.machine.adapters.front();
    second.description = "Wireless";
    second.addresses = {"10.1.0.2", "10.1.0.3"};
    second.searches = {{}, {slp_reply("10.1.0.7", "(printer-name=Shelf C),(id=MDL:Label_100_Series;)")}};
    scenario.machine.adapters.push_back(second);
    scenario.actions = {"press 1014", "press 1017", "select 2", "press 1015", "tick 1011", "press 1"};
}

void taken_port(Scenario& scenario) {
    scenario.machine.discovery_port_taken = true;
    network(scenario);
}

void x86(Scenario& scenario) {
    scenario.use_system(platform::System::x86);
    usb(scenario);
}

void japanese(Scenario& scenario) {
    scenario.machine.locale_abbreviation = u"JPN";
    scenario.machine.ui_language = 1041;
    scenario.machine.code_page = 932;
    network(scenario);
}

void hand_over(Scenario& scenario) {
    scenario.program_bits = 32;
    scenario.hand_over = true;
    TestSession::write(scenario.own_medium() / "trk_setup64.exe", "MZ");
    usb(scenario);
}

void removal(Scenario& scenario) {
    scenario.actions = network_install;
    scenario.run();
    prepare_removal_run(scenario);
}

// A custom monitor's files and ports, and the printer language monitor.
int lay_down_monitors(HINSTANCE instance, char*) {
    WCHAR path[256];
    app.app_instance = instance;
    app.log_handle = open_log(TEXT("trk_install"), TEXT(".log"), path, static_cast<DWORD>(std::size(path)));
    deploy_monitor_layout(TEXT("Vorlane"), TEXT("Label"), TEXT("lblmon.inf"));
    MonitorInfo info = {};
    info.name[0] = u'M';
    info.DLL32[0] = u'd';
    install_monitor(&info);
    install_dryx_monitor();
    add_port(TEXT("M"), TEXT("P1"), "10.0.0.7", TEXT("a"), TEXT("b"), 1);
    add_dryx_port(TEXT("DRYX Port"), TEXT("P2"), "10.0.0.7");
    close_log();
    return 0;
}

void monitor_layout(Scenario& scenario) {
    scenario.use_system(platform::System::x86);
    const std::filesystem::path medium = scenario.own_medium();
    TestSession::write(medium / "monitor/lblmon.inf",
                       "name=Label Port\r\nprefix=LBL_\r\nDLL32=lblmon.dll\r\nDLL64=lblmon64.dll\r\n");
    std::filesystem::copy(medium / "Drivers/32-bit", medium / "monitor/x86");
    for (const char* const remover : {"trk_remove.exe", "trk_remove64.exe"})
        std::filesystem::copy(medium / "wrenchbay" / remover, medium / remover);
    scenario.entry = lay_down_monitors;
}

} // namespace

void prepare_removal_run(Scenario& scenario) {
    scenario.actions.clear();
    scenario.entry = [](HINSTANCE instance, char*) {
        last_removal = {};
        last_removal.model = u"Label 100 Series";
        return rehearsal::run_remover(instance, last_removal);
    };
}

const std::vector<Road>& roads() {
    static const std::vector<Road> all = {
        {"network", Purpose::install, network},
        {"usb", Purpose::install, usb},
        {"typed_address", Purpose::install, typed_address},
        {"refused_terms", Purpose::install, refused_terms},
        {"installed", Purpose::install, installed},
        {"installed_without_usb", Purpose::install, installed_without_usb},
        {"without_usb", Purpose::install, without_usb},
        {"another_version", Purpose::install, another_version},
        {"no_package", Purpose::install, no_package},
        {"two_adapters", Purpose::install, two_adapters},
        {"taken_port", Purpose::install, taken_port},
        {"x86", Purpose::install, x86},
        {"japanese", Purpose::install, japanese},
        {"hand_over", Purpose::install, hand_over},
        {"removal", Purpose::removal, removal},
        {"library", Purpose::library, prepare_library_road},
        {"monitor_layout", Purpose::library, monitor_layout},
    };
    return all;
}

} // namespace sweep
