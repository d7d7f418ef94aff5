#include "scenarios/library_road.h"

#include "app/candidate_list.h"
#include "app/ip_dialog.h"
#include "deploy/monitor_layout.h"
#include "deploy/shortcuts.h"
#include "discovery/usb_search.h"
#include "harness/registry_values.h"
#include "package/driver_inf.h"
#include "package/monitor_inf.h"
#include "package/profile_names.h"
#include "removal/installed_printers.h"
#include "removal/service_control.h"
#include "removal/usb_ports.h"
#include "resources/resource_ids.h"
#include "spooler/inventory.h"
#include "spooler/monitor_ports.h"
#include "spooler/tcp_port.h"
#include "state/app_state.h"
#include "support/dialog_text.h"
#include "support/install_log.h"

#include <iterator>

namespace {

constexpr char16_t class_id[] = u"{28d78fad-5a12-11d1-ae5b-0000f803a8c2}";

INT_PTR CALLBACK quiet_proc(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

int ignore_device(const WCHAR*, const WCHAR*) {
    return 0;
}

int ignore_port(const char*, const char*) {
    return 0;
}

void plug_in_printer(platform::Machine& machine) {
    const std::u16string name = u"usb#vid_0a5f&pid_0080#41j2#" + std::u16string(class_id);
    machine.usb_interfaces = {{u"\\\\?\\" + name, u"USB\\VID_0A5F&PID_0080\\41j2", {{u"Label Driver"}}}};
    machine.registry[u"System\\CurrentControlSet\\Control\\DeviceClasses\\" + std::u16string(class_id) +
                     u"\\##?#" + name + u"\\#\\Device Parameters"] = {{u"Base Name", text_value(u"USB")},
                                                                      {u"Port Number", number_value(1)}};
    machine.registry[u"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\USB Monitor\\Ports\\USB001"] = {
        {u"Parent Device Id", text_value(u"USB\\VID_0A5F&PID_0080\\41j2")},
        {u"Device Id", text_value(u"USB41J2")}};
    machine.registry[u"SYSTEM\\CurrentControlSet\\Services\\usbprint\\Enum"] = {
        {u"Count", number_value(1)}, {u"0", text_value(u"USB41J2")}};
    for (const char16_t* const port_name : {u"USB001", u"USB002"}) {
        platform::PrintPort port = machine.spooler.ports.front();
        port.name = port_name;
        port.monitor = u"USB Monitor";
        port.description = u"Virtual printer port for USB";
        machine.spooler.ports.push_back(port);
        platform::PrintQueue queue = machine.spooler.queues.front();
        queue.name = u"Label on " + port.name;
        queue.port = port.name;
        machine.spooler.queues.push_back(queue);
    }
}

void walk_devices(HWND dialog) {
    usb_search(TEXT("vid_0a5f"), ignore_device);
    usb_device_check(1);
    find_port_by_description(TEXT("Virtual printer port for USB"), ignore_port);
    DWORD connected = 0;
    list_installed_printers(TEXT("Generic / Text Only"), dialog, IDC_PRINTER_LIST, list_queues, &connected,
                            1);
    QueuePortRecord records[4];
    checkPrinters(records, static_cast<DWORD>(std::size(records)), TEXT("Generic / Text Only"));
}

void make_monitor_ports() {
    MonitorInfo monitor = {};
    int port = 0;
    read_monitor_inf(&monitor, 1);
    read_port_number(TEXT("D:\\medium\\wrenchbay\\portlynx.inf"), &port);
    install_monitor(&monitor);
    install_dryx_monitor();
    add_port(TEXT("Label Port"), TEXT("LBL_1"), "10.0.0.7", TEXT("Vorlane"), TEXT("Label 100"), 0);
    add_dryx_port(TEXT("DRYX Port"), TEXT("DRYX_1"), "10.0.0.8");
    delete_tcp_port("TRK_10.0.0.9");
    deploy_monitor_layout(TEXT("Vorlane"), TEXT("Label 100"), TEXT("lblmon.inf"));
    create_menu_group(TEXT("Vorlane"), TEXT("Label 200"));
}

void ask_inventory() {
    print_processor_exists(TEXT("winprint"));
    monitor_exists(TEXT("Label Port"));
    port_exists(TEXT("LBL_1"));
    queue_on_port_exists(TEXT("USB001"));
}

void read_names_and_texts(HWND dialog) {
    WCHAR name[64];
    char folder[512];
    char address[16];
    VLI_GetProfileFieldW(TEXT("Deutsch"), TEXT("label100_fine"), name, static_cast<DWORD>(std::size(name)));
    get_current_folder_name(folder);
    add_usb_candidate(TEXT("USB001"), TEXT("Label printer"));
    ask_address_text(address, sizeof address);
    status_set_ansi(dialog, IDC_STATUS, "one");
    status_append_ansi(dialog, IDC_STATUS, "two");
    status_append_stage(app.app_instance, 1);
    list_add_string(app.app_instance, dialog, IDC_PRINTER_LIST, IDS_NONE);
    control_get_ansi(dialog, IDC_STATUS, folder, sizeof folder - 1);
    SetLastError(ERROR_ACCESS_DENIED);
    message_box_last_error(IDS_COPY_DLL_FAILED);
    WCHAR temp[256];
    find_temp_dir(temp, static_cast<DWORD>(std::size(temp)), 1);
}

} // namespace

void prepare_library_road(Scenario& scenario) {
    // The library's monitors are for the 32-bit environment.
    scenario.use_system(platform::System::x86);
    plug_in_printer(scenario.machine);
    platform::Service dependent = scenario.machine.services.front();
    dependent.name = u"Label Service";
    scenario.machine.services.push_back(dependent);
    scenario.machine.services.front().dependents = {dependent.name};
    const std::filesystem::path medium = scenario.own_medium();
    TestSession::write(medium / "monitor/lblmon.inf",
                       "name=Label Port\r\nprefix=LBL_\r\nDLL32=lblmon.dll\r\nDLL64=lblmon64.dll\r\n");
    std::filesystem::copy(medium / "Drivers/32-bit", medium / "monitor/x86");
    for (const char* const remover : {"trk_remove.exe", "trk_remove64.exe"})
        std::filesystem::copy(medium / "wrenchbay" / remover, medium / remover);
    scenario.actions = {"type 1000 10.1.2.3", "press 1"};
    scenario.entry = run_library_road;
}

int run_library_road(HINSTANCE instance, char*) {
    WCHAR path[256];
    app.app_instance = instance;
    app.log_handle = open_log(TEXT("trk_install"), TEXT(".log"), path, static_cast<DWORD>(std::size(path)));
    log_write(app.log_handle, TEXT("library\r\n"));
    const HWND dialog = CreateDialogParamW(instance, MAKEINTRESOURCEW(IDD_MAIN), nullptr, quiet_proc, 0);
    app.main_dialog = dialog;
    walk_devices(dialog);
    make_monitor_ports();
    ask_inventory();
    DoStopSvc(TEXT("Spooler"));
    DoStartSvc(TEXT("Spooler"));
    read_names_and_texts(dialog);
    DestroyWindow(dialog);
    close_log();
    return 0;
}
