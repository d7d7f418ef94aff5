#include "rehearsal/remover.h"

#include "calls/run/session.h"
#include "package/driver_inf.h"
#include "removal/installation.h"
#include "removal/installed_printers.h"
#include "resources/resource_ids.h"
#include "spooler/monitor_ports.h"
#include "state/app_state.h"
#include "state/names.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/text.h"

#include <winspool.h>

#include <iterator>

namespace rehearsal {
namespace {

INT_PTR CALLBACK remover_proc(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

// The driver's name and the package's, from the INF that the deployment left in the install folder.
int read_installed_inf(Removal& removal) {
    char inf_name[inf_name_capacity];
    WCHAR inf_path[removal_path_capacity];
    WCHAR text[256];
    DriverIdentity driver = {};
    const WCHAR* const folder = removal.install_folder.c_str();
    if (!find_package_inf(folder, inf_name) || !widen(text, std::size(text), inf_name))
        return 0;
    removal.inf_name = text;
    if (!format_text(inf_path, std::size(inf_path), TEXT("%s\\inf\\%S"), folder, inf_name) ||
        !read_inf_driver(inf_path, driver.driverName, 255, driver.manuName, 255, driver.mdlName, 255,
                         &driver.version, &driver.hasUSB) ||
        !widen(text, std::size(text), driver.driverName))
        return 0;
    removal.driver = text;
    return 1;
}

// Shows the queues with their marks in the list of the main dialog's template.
void show_queues(HINSTANCE instance, const WCHAR* driver_name) {
    const HWND dialog = CreateDialogParamW(instance, MAKEINTRESOURCEW(IDD_MAIN), nullptr, remover_proc, 0);
    if (dialog == nullptr)
        return;
    SetWindowTextW(dialog, TEXT("Remover"));
    status_set(dialog, IDC_HEADLINE, driver_name);
    show_control(dialog, IDC_PRINTER_LIST, 1, 1);
    ShowWindow(dialog, SW_SHOW);
    DWORD connected = 0;
    list_installed_printers(driver_name, dialog, IDC_PRINTER_LIST, list_queues, &connected, 1);
    platform::session().user.changed();
    DestroyWindow(dialog);
}

// Whether the spooler says that no queue of the driver stands; one that says nothing may have some.
int all_queues_gone(const WCHAR* driver_name) {
    DWORD size = 0;
    DWORD count = 0;
    if (EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, nullptr, 0, &size, &count))
        return 1;
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        return 0;
    DWORD connected = 0;
    return list_installed_printers(driver_name, nullptr, 0, list_queues, &connected, 0) == 0;
}

// Takes the package's copies out of the driver store; 0 when one is refused.
int remove_packages(const Removal& removal) {
    char inf_name[inf_name_capacity];
    WCHAR inf_path[removal_path_capacity];
    if (!narrow(inf_name, std::size(inf_name), removal.inf_name.c_str()))
        return 0;
    std::u16string last;
    while (get_store_inf_name(inf_name, inf_path)) {
        if (last == inf_path || !remove_driver_package(inf_path))
            return 0;
        last = inf_path;
    }
    return 1;
}

int remove_model(HINSTANCE instance, Removal& removal) {
    WCHAR install_folder[program_files_path_capacity];
    char model_name[256];
    if (!build_program_files_path(install_folder, maker_name, removal.model.c_str()) ||
        !narrow(model_name, std::size(model_name), removal.model.c_str()))
        return 2;
    removal.install_folder = install_folder;
    if (!read_installed_inf(removal))
        return 2;
    const WCHAR* const driver = removal.driver.c_str();
    show_queues(instance, driver);
    DWORD connected = 0;
    if (list_installed_printers(driver, nullptr, 0, delete_queues_and_ports, &connected, 0) != 0 ||
        !all_queues_gone(driver) || !remove_packages(removal))
        return 1;
    return remove_installation(install_folder, maker_name, model_name) ? 0 : 1;
}

} // namespace

int run_remover(HINSTANCE instance, Removal& removal) {
    WCHAR path[256];
    app.app_instance = instance;
    app.log_handle = open_log(TEXT("trk_install"), TEXT(".log"), path, static_cast<DWORD>(std::size(path)));
    log_write(app.log_handle, TEXT("\r\nremove\r\n"));
    const int result = remove_model(instance, removal);
    close_log();
    return result;
}

} // namespace rehearsal
