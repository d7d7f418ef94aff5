#include "rehearsal/remover.h"

#include "calls/run/session.h"
#include "package/driver_inf.h"
#include "removal/installation.h"
#include "removal/installed_printers.h"
#include "resources/resource_ids.h"
#include "spooler/monitor_ports.h"
#include "state/app_state.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/text.h"

#include <iterator>

namespace rehearsal {
namespace {

constexpr WCHAR maker[] = TEXT("Vorlane");

INT_PTR CALLBACK remover_proc(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

// The driver's name, from the INF that the deployment left in the install folder.
int read_driver_name(const WCHAR* install_folder, WCHAR* driver_name, size_t capacity) {
    char inf_name[inf_name_capacity];
    WCHAR inf_path[removal_path_capacity];
    DriverIdentity driver = {};
    return find_package_inf(install_folder, inf_name) &&
           format_text(inf_path, std::size(inf_path), TEXT("%s\\inf\\%S"), install_folder, inf_name) &&
           read_inf_driver(inf_path, driver.driverName, 255, driver.manuName, 255, driver.mdlName, 255,
                           &driver.version, &driver.hasUSB) &&
           widen(driver_name, capacity, driver.driverName);
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

int remove_model(HINSTANCE instance, const WCHAR* model) {
    WCHAR install_folder[removal_path_capacity];
    WCHAR driver_name[256];
    char model_name[256];
    if (!format_text(install_folder, std::size(install_folder), TEXT("C:\\Program Files\\%s\\%s"), maker,
                     model) ||
        !narrow(model_name, std::size(model_name), model) ||
        !read_driver_name(install_folder, driver_name, std::size(driver_name)))
        return 2;
    show_queues(instance, driver_name);
    DWORD connected = 0;
    const int stayed =
        list_installed_printers(driver_name, nullptr, 0, delete_queues_and_ports, &connected, 0);
    const int removed = remove_installation(install_folder, maker, model_name);
    return removed && !stayed ? 0 : 1;
}

} // namespace

int run_remover(HINSTANCE instance, const std::u16string& model) {
    WCHAR path[256];
    app.app_instance = instance;
    app.log_handle = open_log(TEXT("trk_install"), TEXT(".log"), path, static_cast<DWORD>(std::size(path)));
    log_write(app.log_handle, TEXT("\r\nremove\r\n"));
    const int result = remove_model(instance, model.c_str());
    close_log();
    return result;
}

} // namespace rehearsal
