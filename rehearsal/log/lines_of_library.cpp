// The lines of the library's operations that the setup doesn't call: a remover's, and those of packagings
// with a port monitor of their own.
#include "rehearsal/log/line_tables.h"

namespace rehearsal::logs {
namespace {

constexpr char queue_cause[] =
    "The spooler isn't running, the user is no administrator, or the name is unknown.";
constexpr char queue_remedy[] = "Start the service Print Spooler and run as an administrator.";
constexpr char service_cause[] = "The user is no administrator, or there is no such service.";
constexpr char service_remedy[] = "Run as an administrator; look at the service in the list of services.";
constexpr char registry_cause[] = "The machine has no such entry: nothing was ever connected there.";
constexpr char registry_remedy[] = "None is needed; the device counts as not connected.";
constexpr char exists_cause[] = "The folder is there already, or its parent can't be written.";
constexpr char exists_remedy[] = "None is needed for 183; else run as an administrator.";

constexpr Line library_lines[] = {
    {"cwd %s", Area::library, Weight::plain, "The name of the current folder.", "", "", no_code, Role::none,
     "cwd |package/driver_inf.cpp: folder"},
    {"Finding monitor name....", Area::library, Weight::plain, "monitor.inf is looked for."},
    {"%s", Area::library, Weight::plain, "The name of the port monitor in monitor.inf.", "", "", no_code,
     Role::none, "package/monitor_inf.cpp: info->name", true},
    {"VLI_GetProfileFieldW [%s] %d", Area::library, Weight::plain, "What was found of it, and its length."},
    {"VLI_GetProfileFieldW %s %s", Area::library, Weight::plain,
     "A field of profilenames.inf is asked for: section and key."},

    {"CommonPrograms %s", Area::library, Weight::plain, "The Start menu's folder for all users."},
    {"program folder: [%s]", Area::library, Weight::plain, "The Start menu's folder for all users."},
    {"create dir failed %d %d", Area::library, Weight::notice,
     "A program folder wasn't made: result and code.", exists_cause, exists_remedy, 1},
    {"create dir failed %d %s %d", Area::library, Weight::notice, "A folder of the Start menu wasn't made.",
     exists_cause, exists_remedy, 2},

    {"add_port [%s] as [%s]", Area::library, Weight::plain,
     "A port of another monitor is made: port and monitor."},
    {"XcvData GetConfig %d %d %x %x (%d) [%ls]", Area::library, Weight::plain,
     "The monitor's settings of the port were asked for: result, size, status, last error."},
    {"portConfig %d %d [%ls]", Area::library, Weight::plain, "The first settings of the port."},
    {"XcvData SetConfig %d %d %x %x (%d)", Area::library, Weight::plain,
     "The settings went back: result, size, status, last error."},
    {"Installing Monitor", Area::library, Weight::plain, "The port monitor is installed."},
    {"Failed to install Montior!", Area::library, Weight::failed, "The port monitor wasn't installed.",
     "Its library isn't in the system folder, or the user is no administrator.",
     "Copy the monitor's library there first; run as an administrator."},

    {"EnumMonitors %d %d", Area::library, Weight::plain, "The port monitors are listed: result and size."},
    {"EnumPorts %d %d", Area::library, Weight::plain, "The ports are listed: result and size."},
    {"%d:%s,%s,%s,%d", Area::library, Weight::plain, "A USB port: description, name, monitor, type."},
    {"%d:%s,%s,%s", Area::library, Weight::plain, "A port: name, monitor, description."},
    {"%d:%s", Area::library, Weight::plain, "An entry of the list that is looked through."},

    {"usb_search", Area::library, Weight::plain, "USB printers are looked for by a part of their path."},
    {"usb_search invalid handle", Area::library, Weight::failed, "The USB printers couldn't be listed.",
     "The service Plug and Play doesn't answer.", "Restart the machine."},
    {"usb_device_check", Area::library, Weight::plain, "A USB printer is looked for by its port's number."},
    {"usb_device_check invalid handle", Area::library, Weight::failed, "The USB printers couldn't be listed.",
     "The service Plug and Play doesn't answer.", "Restart the machine."},
    {"devInfoData size %d (%d)", Area::library, Weight::plain,
     "The size of a record, here and on 32-bit systems."},
    {"enum device %d", Area::library, Weight::plain, "A USB printer interface, from 0."},
    {"no parent", Area::library, Weight::notice, "The interface is passed over.",
     "The device was taken off while it was looked at.", registry_remedy},
    {"device id size fail", Area::library, Weight::notice, "The interface is passed over.",
     "The device was taken off while it was looked at.", registry_remedy},
    {"%s", Area::library, Weight::plain, "The identifier of the device's parent.", "", "", no_code,
     Role::none, "discovery/usb_walk.cpp: parent_id", true},
    {"SetupDiEnumDriverInfo %d %s", Area::library, Weight::plain, "A driver that fits the device."},
    {"get usb device details", Area::library, Weight::plain, "The interface's path is asked for."},
    {"Device # %u has the name %s", Area::library, Weight::plain, "The interface's path."},
    {"%s", Area::library, Weight::plain, "The key of the registry that describes the interface's port.", "",
     "", no_code, Role::none, "discovery/usb_search.cpp: key_path", true},
    {"key failed", Area::library, Weight::notice, "The key isn't there.", registry_cause, registry_remedy},
    {"key opened", Area::library, Weight::plain, "The key is there."},
    {"Base Name read failed", Area::library, Weight::notice, "The port has no name.", registry_cause,
     registry_remedy},
    {"%s", Area::library, Weight::plain, "The beginning of the port's name.", "", "", no_code, Role::none,
     "discovery/usb_search.cpp: base_name", true},
    {"Port Number read failed", Area::library, Weight::notice, "The port has no number.", registry_cause,
     registry_remedy},
    {"port %d<>%d", Area::library, Weight::plain, "The port's number, and the one that is looked for."},
    {"exit usb_device_check", Area::library, Weight::plain, "The look for a USB printer is over."},

    {"no USB Portmon details", Area::library, Weight::plain,
     "The USB monitor doesn't know the device; its port's number decides."},
    {"[%s]", Area::library, Weight::plain, "The key of the registry that is read."},
    {"failed to open %d %s", Area::library, Weight::notice, "The key isn't there: code and key.",
     registry_cause, registry_remedy, 0},
    {"error: Read Parent Device Id", Area::library, Weight::notice, "The port has no parent's identifier.",
     registry_cause, registry_remedy},
    {"Parent Device Id: [%s]", Area::library, Weight::plain, "The identifier of the port's parent."},
    {"found: [%s]", Area::library, Weight::plain, "The device's serial number in it."},
    {"error: Read Device Id", Area::library, Weight::notice, "The port has no device's identifier.",
     registry_cause, registry_remedy},
    {"Device Id: [%s]", Area::library, Weight::plain, "The identifier of the port's device."},
    {"check connection %s", Area::library, Weight::plain, "The device is looked for among those present."},
    {"error: Count", Area::library, Weight::notice, "No device is present.", registry_cause, registry_remedy},
    {"count: %d", Area::library, Weight::plain, "How many devices are present."},
    {"error: Device %d", Area::library, Weight::notice, "The list of present devices has a gap.",
     registry_cause, registry_remedy},
    {"Device %d: [%s] [%d]", Area::library, Weight::plain, "A present device."},
    {"device connceted", Area::library, Weight::plain, "It is the one that is looked for."},

    {"%s %s- %d jobs *", Area::library, Weight::plain,
     "A queue of the driver, its jobs, and that its device is there.", "", "", no_code, Role::none,
     "removal/installed_printers.cpp: line"},
    {"%s %s- %d jobs", Area::library, Weight::plain, "A queue of the driver and its jobs.", "", "", no_code,
     Role::none, "removal/installed_printers.cpp: line"},
    {"checkPrinters", Area::library, Weight::plain, "The driver's queues are collected."},
    {"Match", Area::library, Weight::plain, "A queue of the driver."},
    {"failed to open printer %s %x", Area::library, Weight::failed, "The queue can't be opened.", queue_cause,
     queue_remedy, 1},
    {"Could not delete %s %x", Area::library, Weight::failed, "The queue wasn't deleted.", queue_cause,
     queue_remedy, 1},
    {"Deleted %s", Area::library, Weight::plain, "The queue was deleted."},
    {"Dont Delete port %s", Area::library, Weight::plain, "A USB port stays; it is the system's."},
    {"Delete port %s", Area::library, Weight::plain, "The port is deleted."},
    {"Could not delete port %s %x", Area::library, Weight::failed, "The port wasn't deleted.",
     "Another queue uses it, or the spooler hasn't let go of it.", "Delete it in the print management.", 1},
    {"failed to open printer for delete port %S %x", Area::library, Weight::failed,
     "The port monitor can't be reached.", queue_cause, queue_remedy, 1},
    {"Error in XcvData. %x %x", Area::library, Weight::failed,
     "The monitor refused: the last error and its status.", "Another queue uses the port, or it isn't there.",
     "Look at the port in the print management.", 0},

    {"DoStopSvc [%s]", Area::library, Weight::plain, "A service is stopped."},
    {"DoStartSvc [%s]", Area::library, Weight::plain, "A service is started."},
    {"OpenSCManager failed (%d)", Area::library, Weight::failed, "The services can't be reached.",
     service_cause, service_remedy, 0},
    {"OpenService failed (%d)", Area::library, Weight::failed, "The service can't be opened.", service_cause,
     service_remedy, 0},
    {"QueryServiceStatusEx failed (%d)", Area::library, Weight::failed, "The service's state can't be had.",
     service_cause, service_remedy, 0},
    {"Service is already stopped.", Area::library, Weight::plain, "There is nothing to stop."},
    {"Service stop pending...", Area::library, Weight::plain, "The service is stopping; it is waited for."},
    {"StopDependentServices", Area::library, Weight::plain, "Services that need it are stopped first."},
    {"No dep services", Area::library, Weight::plain, "No running service needs it."},
    {"stop service...", Area::library, Weight::plain, "A service that needs it is stopped."},

    {"nothing to remove", Area::library, Weight::failed, "A name that was given can't be an installation's.",
     "The folder isn't a whole path, or a name has characters that a folder can't have.",
     "Give the remover the installation's own folder and names."},
    {"del dir %s", Area::library, Weight::plain,
     "A folder is deleted. What can't be deleted leaves no line."},
    {"%s", Area::library, Weight::plain, "The pattern by which the installation's INF is looked for.", "", "",
     no_code, Role::none, "removal/installation.cpp: pattern", true},
    {"FindFirstFile error %d", Area::library, Weight::failed,
     "The installation has no INF, so its package stays.", "The program folder was changed by hand.",
     "Remove the driver package in the print management.", 0},
    {"get_store_inf_name %s", Area::library, Weight::plain, "The package is looked for in the driver store."},
    {"FindFile error!", Area::library, Weight::failed,
     "The driver store can't be searched, so the package stays.", "The Windows folder isn't C:\\Windows.",
     "Remove the driver package in the print management."},
    {"found %s", Area::library, Weight::plain, "A package's folder in the driver store.", "", "", no_code,
     Role::none},
    {"%s", Area::library, Weight::plain, "The package's INF in the driver store.", "", "", no_code,
     Role::none, "removal/installation.cpp: inf_path", true},
    {"remove [%s]", Area::library, Weight::plain, "The package is removed."},
    {"error %s", Area::library, Weight::failed,
     "The package stays: the system's words, or a code in hexadecimal.",
     "A driver of the package is still installed or in use.",
     "Remove the driver in the print management, restart the spooler and run the remover again.", no_code,
     Role::none, "error %s|error %x"},
};

} // namespace

std::span<const Line> lines_of_library() {
    return library_lines;
}

} // namespace rehearsal::logs
