#include "app/driver_analysis.h"

#include "app/main_dialog.h"
#include "resources/resource_ids.h"
#include "spooler/inventory.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

// A version's field for people: 3 the major number, 0 the revision.
DWORD field(DriverVersion version, int place) {
    return static_cast<DWORD>(version >> (16 * place)) & 0xffff;
}

// The model's name for people: the folder under Program Files and the queue bear it.
void build_display_name() {
    copy_ansi(app.model_display_name, std::size(app.model_display_name), app.driver.mdlName);
    replace_in_name(app.model_display_name, '_', ' ');
}

// Replaces the end of the analysis by what is installed: `line` for the log, `text` for the status.
void tell(const WCHAR* line, const WCHAR* text) {
    log_text(line);
    status_append(app.main_dialog, IDC_STATUS, text);
}

void tell_same_version(DriverVersion installed) {
    WCHAR line[log_line_capacity];
    format_text(line, std::size(line), TEXT("Driver %s already installed. Version: %d.%d.%d.%d"),
                app.driver_name_wide, field(installed, 3), field(installed, 2), field(installed, 1),
                field(installed, 0));
    WCHAR format[262];
    if (LoadStringW(app.app_instance, IDS_ALREADY_INSTALLED, format, 260) < 1) {
        step_failed(TEXT("loading a text"));
        tell(line, line);
        return;
    }
    append_text(format, std::size(format), TEXT("\r\n"));
    WCHAR text[log_line_capacity];
    format_text(text, std::size(text), format, app.driver_name_wide, field(installed, 3), field(installed, 2),
                field(installed, 1), field(installed, 0));
    tell(line, text);
}

void format_difference(WCHAR* out, size_t capacity, const WCHAR* headline, DriverVersion installed) {
    const DriverVersion package = app.driver.version;
    format_text(out, capacity, TEXT("%s\r\n%s : %d.%d.%d.%d<>%d.%d.%d.%d"), headline, app.driver_name_wide,
                field(installed, 3), field(installed, 2), field(installed, 1), field(installed, 0),
                field(package, 3), field(package, 2), field(package, 1), field(package, 0));
}

void tell_other_version(DriverVersion installed) {
    WCHAR line[log_line_capacity];
    format_difference(line, std::size(line), TEXT("Installed driver has different version"), installed);
    WCHAR headline[260];
    if (LoadStringW(app.app_instance, IDS_DIFFERENT_VERSION, headline, std::size(headline)) < 1) {
        step_failed(TEXT("loading a text"));
        tell(line, line);
    } else {
        WCHAR text[log_line_capacity];
        format_difference(text, std::size(text), headline, installed);
        tell(line, text);
    }
    status_append_string(app.app_instance, app.main_dialog, IDC_STATUS, IDS_UNINSTALL_FIRST, 1);
    // The old driver has to go first: Refresh shows that there is a list to come, and nothing but Cancel
    // works.
    show_control(app.main_dialog, IDC_REFRESH, 0, 1);
}

void offer_connections(int usb_enabled) {
    show_control(app.main_dialog, IDC_USB, usb_enabled, 1);
    show_control(app.main_dialog, IDC_NETWORK, 1, 1);
}

void start_with_same_version(DriverVersion installed) {
    tell_same_version(installed);
    if (app.driver.hasUSB == 0) {
        enter_network_mode();
        return;
    }
    // With the driver in place a USB device needs no setup any more.
    status_append_string(app.app_instance, app.main_dialog, IDC_STATUS, IDS_USB_CAN_BE_PLUGGED_IN, 1);
    offer_connections(0);
}

void start_without_driver() {
    log_line(TEXT("Driver %S not installed\r\n"), app.driver.driverName);
    if (app.driver.hasUSB == 0) {
        enter_network_mode();
        return;
    }
    status_set_string(app.app_instance, app.main_dialog, IDC_STATUS, IDS_DO_NOT_CONNECT_USB, 1);
    offer_connections(1);
}

} // namespace

void analyse_driver() {
    build_display_name();
    format_text(app.driver_name_wide, std::size(app.driver_name_wide), TEXT("%S"), app.driver.driverName);
    log_text(app.driver_name_wide);
    log_write(app.log_handle, TEXT("Check installed drivers...\r\n"));
    DriverVersion installed = 0;
    app.driver_installed = static_cast<DWORD>(find_installed_driver(app.driver_name_wide, &installed));
    if (LoadStringW(app.app_instance, IDS_CAPTION, app.message_caption, 255) < 1) {
        step_failed(TEXT("loading the caption of the boxes"));
        app.message_caption[0] = 0;
    }

    if (app.driver_installed == 0)
        start_without_driver();
    else if (installed == app.driver.version)
        start_with_same_version(installed);
    else
        tell_other_version(installed);
}
