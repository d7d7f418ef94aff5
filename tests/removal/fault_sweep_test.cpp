// Every platform call of a library operation that can fail is made to fail once, each in a run of its own:
// the operation ends by itself and gives everything back.
#include "deploy/monitor_layout.h"
#include "discovery/network_search.h"
#include "discovery/usb_search.h"
#include "harness/registry_values.h"
#include "harness/test_session.h"
#include "machine/slp_agent.h"
#include "removal/installation.h"
#include "removal/installed_printers.h"
#include "removal/usb_ports.h"
#include "spooler/inventory.h"
#include "spooler/monitor_ports.h"

#include <gtest/gtest.h>

namespace {

// A machine on which each operation has something to do. The library's monitors are for the 32-bit
// environment.
void prepare(TestSession& test) {
    platform::Machine& machine = test.machine;
    machine = platform::default_machine(platform::System::x86);
    for (const auto& [name, port] :
         {std::pair(u"Net", u"TRK_1"), std::pair(u"Usb", u"USB001"), std::pair(u"Old", u"USB002")}) {
        machine.spooler.ports.push_back({});
        machine.spooler.ports.back().name = port;
        machine.spooler.ports.back().monitor = u"Standard TCP/IP Port";
        machine.spooler.ports.back().description = u"Described";
        machine.spooler.queues.push_back({});
        machine.spooler.queues.back().name = name;
        machine.spooler.queues.back().port = port;
        machine.spooler.queues.back().driver = u"Label";
    }
    machine.registry[u"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\USB Monitor\\Ports\\USB001"] = {
        {u"Parent Device Id", text_value(u"PID\\1")}, {u"Device Id", text_value(u"D")}};
    machine.registry[u"SYSTEM\\CurrentControlSet\\Services\\usbprint\\Enum"] = {{u"Count", number_value(1)},
                                                                                {u"0", text_value(u"D")}};
    machine.registry
        [u"System\\CurrentControlSet\\Control\\DeviceClasses\\{28d78fad-5a12-11d1-ae5b-0000f803a8c2}\\"
         u"dev\\#\\Device Parameters"] = {{u"Base Name", text_value(u"USB")},
                                          {u"Port Number", number_value(2)}};
    machine.usb_interfaces = {{u"dev", u"USB\\VID_1&PID_0001\\1", {{u"Driver"}}}};
    platform::Service dependent;
    dependent.name = u"Fax";
    dependent.now = {{4}};
    machine.services[0].dependents = {u"Fax"};
    machine.services.push_back(dependent);
    machine.adapters[0].searches = {
        {{"10.0.0.7", platform::attribute_reply({.language = "en"}, "MDL:Label;")}}};
    machine.spooler.packages = {{u"C:\\Windows\\System32\\DriverStore\\FileRepository\\lbl.inf_1\\lbl.inf"}};
    TestSession::write(test.drive_c / "Windows/System32/DriverStore/FileRepository/lbl.inf_1/lbl.inf",
                       "; package");
    TestSession::write(test.drive_c / "P/inf/lbl.inf", "; copy");
    TestSession::write(test.medium / "monitor/lblmon.inf", "; monitor");
}

void list_and_delete() {
    DWORD connected = 0;
    list_installed_printers(u"Label", nullptr, 0, list_queues, &connected, 1);
    QueuePortRecord records[2];
    checkPrinters(records, 2, u"Label");
    list_installed_printers(u"Label", nullptr, 0, delete_queues_and_ports, &connected, 0);
}

void take_off() {
    remove_installation(u"C:\\P", u"Vorlane", "Label");
}

void add_monitor_ports() {
    MonitorInfo info = {};
    info.name[0] = u'M';
    info.DLL32[0] = u'd';
    install_monitor(&info);
    install_dryx_monitor();
    add_port(u"M", u"P1", "10.0.0.7", u"a", u"b", 1);
    add_dryx_port(u"DRYX Port", u"P2", "10.0.0.7");
}

void lay_down() {
    deploy_monitor_layout(u"Vorlane", u"Label", u"lblmon.inf");
}

void ask() {
    usb_search(u"dev", nullptr);
    find_port_by_description(u"Described", [](const char*, const char*) { return 0; });
    print_processor_exists(u"none");
    monitor_exists(u"none");
    port_exists(u"none");
    queue_on_port_exists(u"none");
    probe_discovery_port();
    find_slp("Label", [](const char*, const char*) {});
}

struct Road {
    const char* name;
    void (*run)();
};

// What a list of the tests shows; the record's bytes would be others in each run.
void PrintTo(const Road& road, std::ostream* out) {
    *out << road.name;
}

// The journal of one run, in which the call may fail.
std::vector<platform::JournalEntry> run(const Road& road, const std::vector<platform::Fault>& faults) {
    TestSession test;
    prepare(test);
    platform::Session& session = test.start();
    // Without a log: its calls are swept with whole installs, and would be most of the calls here.
    CloseHandle(app.log_handle);
    app.log_handle = INVALID_HANDLE_VALUE;
    test.machine.faults = faults;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    road.run();
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
    EXPECT_FALSE(session.gate.stopped()) << session.gate.stop_reason();
    EXPECT_EQ(session.memory.live(), std::vector<std::string>());
    EXPECT_EQ(session.handles.open_kinds(), std::vector<std::string>());
    EXPECT_EQ(session.gate.misuses(), std::vector<std::string>());
    return session.gate.journal();
}

class LibrarySweep : public testing::TestWithParam<Road> {};

TEST_P(LibrarySweep, EveryFailureIsSurvived) {
    unsigned swept = 0;
    for (const platform::JournalEntry& entry : run(GetParam(), {})) {
        // What closes or gives back leaves something behind when it fails, of course.
        const bool releases = entry.call.find("Close") != entry.call.npos ||
                              entry.call.find("Free") != entry.call.npos || entry.call == "closesocket" ||
                              entry.call.starts_with("SetupDiDestroy");
        if (!entry.can_fail || releases || entry.call == "CreateFileW")
            continue;
        SCOPED_TRACE(entry.call + " " + std::to_string(entry.nth) + " " + entry.argument);
        run(GetParam(), {{entry.call, entry.nth, false, {}, ""}});
        ++swept;
    }
    EXPECT_GT(swept, 10u);
}

INSTANTIATE_TEST_SUITE_P(Roads, LibrarySweep,
                         testing::Values(Road{"ListAndDelete", list_and_delete}, Road{"TakeOff", take_off},
                                         Road{"MonitorPorts", add_monitor_ports}, Road{"LayDown", lay_down},
                                         Road{"Ask", ask}),
                         [](const auto& road) { return std::string(road.param.name); });

} // namespace
