#include "app/startup.h"

#include "app/dialog_loop.h"
#include "app/driver_analysis.h"
#include "app/end_report.h"
#include "app/main_dialog.h"
#include "app/relaunch.h"
#include "package/driver_inf.h"
#include "package/settings.h"
#include "resources/resource_ids.h"
#include "support/current_folder.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/library_search.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

// Gives the language that was just set time to take hold before any text is loaded.
constexpr DWORD language_pause_ms = 1000;

using IsWow64ProcessCall = BOOL(WINAPI*)(HANDLE, PBOOL);

int on_64_bit_system() {
    BOOL is_wow64 = FALSE;
    const auto is_wow64_process = reinterpret_cast<IsWow64ProcessCall>(
        GetProcAddress(GetModuleHandleW(TEXT("kernel32")), "IsWow64Process"));
    if (is_wow64_process != nullptr)
        is_wow64_process(GetCurrentProcess(), &is_wow64);
    return is_wow64 != FALSE;
}

// The 24 characters of the C library's asctime, with the day padded by a blank on every platform.
void format_time(WCHAR* out, size_t capacity, const SYSTEMTIME& time) {
    static const WCHAR days[] = TEXT("SunMonTueWedThuFriSat");
    static const WCHAR months[] = TEXT("JanFebMarAprMayJunJulAugSepOctNovDec");
    WCHAR day[4];
    WCHAR month[4];
    copy_text(day, std::size(day), days + 3 * (time.wDayOfWeek % 7));
    copy_text(month, std::size(month), months + 3 * ((time.wMonth + 11) % 12));
    format_text(out, capacity, TEXT("%s %s %2d %02d:%02d:%02d %d"), day, month, time.wDay, time.wHour,
                time.wMinute, time.wSecond, time.wYear);
}

void open_setup_log() {
    WCHAR path[256];
    const HANDLE log = open_log(TEXT("trk_install"), TEXT(".log"), path, std::size(path));
    if (log == INVALID_HANDLE_VALUE)
        step_failed(TEXT("opening the log"));
    app.log_handle = log;
    SYSTEMTIME now;
    GetLocalTime(&now);
    WCHAR time[32];
    format_time(time, std::size(time), now);
    log_line(TRK_PROGRAM_BITS == 64 ? TEXT("\r\nVorlane Installer 64 --- %s ---\r\n")
                                    : TEXT("\r\nVorlane Installer 32 --- %s ---\r\n"),
             time);
}

void choose_language() {
    DWORD from_setting = 0;
    app.language = VLI_Get_Locale(&from_setting, 0);
    log_line(TEXT("_locale %d (%d)\r\n"), app.language, from_setting);
    if (from_setting == 1) {
        Sleep(language_pause_ms);
        apply_language(app.language);
    }
}

void load_window_title() {
    WCHAR word[260];
    if (LoadStringW(app.app_instance, IDS_INSTALLER, word, std::size(word)) < 1) {
        copy_text(word, std::size(word), TEXT("Installer"));
        log_failure(TEXT("failed\r\n"));
    }
    format_text(app.window_title, std::size(app.window_title), TEXT("ZR Series %s"), word);
}

void load_stage_texts() {
    for (StageText& stage : app.install_texts) // one that is missing stays empty
        if (LoadStringW(app.app_instance, stage.string_id, stage.text,
                        static_cast<int>(std::size(stage.text))) < 1)
            step_failed(TEXT("loading the texts of the install's stages"));
}

void show_main_dialog() {
    load_window_title();
    SetWindowTextW(app.main_dialog, app.window_title);
    apply_dialog_texts(app.app_instance, app.main_dialog, main_dialog_texts);
    load_stage_texts();
    log_write(app.log_handle, TEXT("CreateDialog\r\n"));
    ShowWindow(app.main_dialog, SW_SHOW);
    center_dialog(app.main_dialog);
    status_set(app.main_dialog, IDC_STATUS, TEXT("Analyzing setup...\r\n"));
}

int read_driver_package() {
    WCHAR folder[260];
    get_current_folder(folder, std::size(folder));
    log_text(folder);
    log_write(app.log_handle, TEXT("Get driver info...\r\n"));
    DriverIdentity& driver = app.driver;
    constexpr int name_size = 255;
    return find_driver_inf(driver.driverName, name_size, driver.manuName, name_size, driver.mdlName,
                           name_size, driver.infPath, driver.infFile, 1, &driver.version, &driver.hasUSB, 0);
}

// Everything between the dialog's creation and its end.
void run_dialog() {
    choose_language();
    show_main_dialog();
    if (!read_driver_package()) {
        message_box_text(TEXT("Unable to find driver details!"), MB_TOPMOST | MB_ICONEXCLAMATION);
        return;
    }
    analyse_driver();
    while (app.exit_requested == 0 && pump_message()) {
    }
    report_end();
}

} // namespace

int run_setup(HINSTANCE instance, const char* command_line) {
    limit_library_search();
    app.app_instance = instance;
    if (command_line != nullptr && command_line[0] != 0)
        app.silent = 1;
    if (on_64_bit_system())
        return relaunch_64(TEXT("trk_setup64.exe"));

    open_setup_log();
    app.main_dialog = CreateDialogParamW(instance, MAKEINTRESOURCEW(IDD_MAIN), nullptr, main_dialog_proc, 0);
    if (app.main_dialog != nullptr) {
        run_dialog();
    } else {
        log_failure(TEXT("CreateDialog failed %d\r\n"), GetLastError());
        message_box_text(TEXT("The setup window could not be opened."), MB_TOPMOST | MB_ICONEXCLAMATION);
    }
    close_log();
    return 0;
}
