// The lines of the install itself: program files, driver, port and queue.
#include "rehearsal/log/line_tables.h"

namespace rehearsal::logs {
namespace {

constexpr char name_cause[] = "The name is empty, too long, or has characters that a folder can't have.";
constexpr char name_remedy[] = "The medium's maker corrects the model's name in the INF.";
constexpr char folder_cause[] = "The user's rights don't reach it, or the system's settings are damaged.";
constexpr char folder_remedy[] = "Run the setup as an administrator; repair the system's folders.";
constexpr char shortcut_cause[] =
    "A component of the system's shell isn't there or access to the menu is denied.";
constexpr char shortcut_remedy[] =
    "The installation works without; make the shortcut by hand or repair the shell and run the setup again.";
constexpr char package_cause[] = "The system refuses the driver package; the code says why.";
constexpr char package_remedy[] =
    "Go by the code; what the system itself noted stands in its setupapi.dev.log.";
constexpr char spooler_remedy[] = "Start the service Print Spooler and run the setup again.";
constexpr char media_remedy[] =
    "The medium's maker corrects wrenchbay\\media.inf; install the printer once more.";

constexpr Line install_lines[] = {
    {"Install thread failed", Area::install, Weight::stopped, "The install couldn't be started.",
     "The system has no room for another thread.", "Restart the machine and run the setup again."},
    {"run_installer...", Area::install, Weight::plain, "The install begins.", "", "", no_code,
     Role::sequence},
    {"No printer selected", Area::install, Weight::stopped, "Nothing was selected in the list.",
     "The list was emptied after a row had been selected.", "Run the setup again and select a printer."},
    {"Net %s", Area::install, Weight::plain, "The chosen printer, on the network.", "", "", no_code,
     Role::chosen, "%s %s"},
    {"USB %s", Area::install, Weight::plain, "The install is for USB.", "", "", no_code, Role::chosen_usb,
     "USB |%s %s"},

    {"Get %s failed %d", Area::files, Weight::stopped, "A folder of the system couldn't be had.",
     folder_cause, folder_remedy, 1},
    {"ProgramFiles %s", Area::files, Weight::plain, "The folder Program Files.", "", "", no_code,
     Role::program_files},
    {"not a folder name: %s", Area::files, Weight::stopped, "This can't be the name of a folder.", name_cause,
     name_remedy},
    {"%s", Area::files, Weight::plain, "The maker's folder, made if it wasn't there.", "", "", no_code,
     Role::maker_folder, "deploy/model_folders.cpp: out", true},
    {"%s", Area::files, Weight::plain, "The model's program folder, made if it wasn't there.", "", "",
     no_code, Role::install_folder, "deploy/model_folders.cpp: out", true},
    {"current folder too long", Area::files, Weight::stopped, "The medium's path is too long.",
     "The setup was started from a path of more than 255 characters.",
     "Start it from a folder with a shorter path."},
    {"Copy %s to %s", Area::files, Weight::plain, "A file is copied.", "", "", no_code, Role::copy,
     "Copy | to |deploy/program_files.cpp: source|deploy/program_files.cpp: target"},
    {"copy file failed %d %d %s", Area::files, Weight::failed,
     "The file couldn't be copied: the call's result, the error's code, the file. All but profilenames.inf "
     "are needed.",
     "The file isn't on the medium, or the target can't be written.",
     "Go by the code: complete the medium, or close what uses the target.", 1, Role::copy_failed},
    {"copyDirFiles %s to %s", Area::files, Weight::plain,
     "All files of a pattern are copied, if there are any. Failures of this step leave no line.", "", "",
     no_code, Role::copy_profiles,
     "copyDirFiles | to |deploy/program_files.cpp: source|deploy/program_files.cpp: target"},
    {"program folder: %s", Area::files, Weight::plain, "The Start menu's folder for all users.", "", "",
     no_code, Role::start_menu},
    {"create sc [%s] [%s] [%s]", Area::files, Weight::plain,
     "A shortcut is made: its target, its file, its name.", "", "", no_code, Role::shortcut},
    {"CoCreateInstance failed!", Area::files, Weight::failed, "The shortcut wasn't made.", shortcut_cause,
     shortcut_remedy, no_code, Role::shortcut_failed},
    {"shortcut path too long: %s", Area::files, Weight::failed, "The shortcut wasn't made.",
     "The driver's or the model's name is so long that the shortcut's path has no room.",
     "The medium's maker shortens the name."},
    {"QueryInterface failed!", Area::files, Weight::failed, "The shortcut wasn't made.", shortcut_cause,
     shortcut_remedy, no_code, Role::shortcut_failed},
    {"Error setting up driver files!", Area::files, Weight::stopped,
     "The program files couldn't be laid down; the install ends in the failure box.",
     "The line in front of it tells which step failed.", "Go by that line.", no_code, Role::files_failed},

    {"Install Driver...", Area::driver, Weight::plain, "The driver package is installed.", "", "", no_code,
     Role::driver_begins},
    {"%s", Area::driver, Weight::plain, "The INF of the package.", "", "", no_code, Role::package_path,
     "spooler/driver_package.cpp: inf_path", true},
    {"Package uploaded:", Area::driver, Weight::plain, "The package is in the driver store.", "", "", no_code,
     Role::uploaded},
    {"%s", Area::driver, Weight::plain, "The package's INF in the driver store.", "", "", no_code,
     Role::store_path, "spooler/driver_package.cpp: store_path", true},
    {"UploadPrinterDriverPackage error %x %s", Area::driver, Weight::failed,
     "The package wasn't taken into the driver store: code and the system's own words.", package_cause,
     package_remedy, 0, Role::none, "%s error %x %s|UploadPrinterDriverPackage"},
    {"InstallPrinterDriverFromPackage error %x %s", Area::driver, Weight::failed,
     "The driver wasn't installed from the stored package: code and the system's own words.", package_cause,
     package_remedy, 0, Role::none, "%s error %x %s|InstallPrinterDriverFromPackage"},
    {"Printer Driver Installed", Area::driver, Weight::plain, "The driver is installed.", "", "", no_code,
     Role::driver_done},
    {"Printer Driver install fail", Area::driver, Weight::stopped,
     "The driver isn't installed; the install ends in the failure box.", "The line in front of it tells why.",
     "Go by that line.", no_code, Role::driver_failed},

    {"TRK_%s.", Area::port, Weight::plain, "The name of the printer's port.", "", "", no_code,
     Role::port_planned, "app/install_sequence.cpp: port_name|."},
    {"Adding port %s", Area::port, Weight::plain, "The port is made, over one of its name too."},
    {",XcvMonitor %s", Area::port, Weight::plain, "The port monitor that makes it.", "", "", no_code,
     Role::none, "spooler/tcp_port.cpp: monitor_handle_name|spooler/monitor_ports.cpp: name"},
    {"failed to open printer for port %s", Area::port, Weight::failed, "The port monitor can't be reached.",
     "The spooler isn't running, the user is no administrator, or the monitor isn't installed.",
     spooler_remedy},
    {"sztPortName [%ls]", Area::port, Weight::plain, "The port's name, as the monitor gets it."},
    {"XcvData AddPort %d %d %x %x [%ls]", Area::port, Weight::plain,
     "The monitor's answer: 1 when it was reached, size, its status, the last error. A status other than 0, "
     "or a first "
     "number of 0, means that the port wasn't made; 183 as status that it was there already.",
     "", "", no_code, Role::port_answer},

    {"Adding printer %s", Area::queue, Weight::plain, "The print queue is made.", "", "", no_code,
     Role::queue_begins},
    {"AddPrinter %d", Area::queue, Weight::failed, "There is no print queue, although the success box comes.",
     "The spooler refuses it: the driver, the port or the name doesn't serve.",
     "Go by the code, then run the setup again.", 0, Role::queue_failed},
    {"Add %S %S %S %d", Area::queue, Weight::plain, "A label size: name, width, length, unit.", "", "",
     no_code, Role::label},
    {"Error adding label to registry!", Area::queue, Weight::failed,
     "The label size in front of it wasn't stored.", "The queue's data can't be written.",
     "Remove the queue, restart the spooler and run the setup again.", no_code, Role::label_failed, nullptr,
     false, true},
    {"failed to open media.inf", Area::queue, Weight::failed, "The new queue has no label sizes.",
     "wrenchbay\\media.inf isn't on the medium or can't be read.", media_remedy, no_code, Role::label_failed},
    {"media.inf empty", Area::queue, Weight::failed, "The new queue has no label sizes.",
     "wrenchbay\\media.inf is empty.", media_remedy, no_code, Role::label_failed},
};

} // namespace

std::span<const Line> lines_of_install() {
    return install_lines;
}

} // namespace rehearsal::logs
