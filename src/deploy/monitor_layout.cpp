#include "deploy/monitor_layout.h"

#include <objbase.h>

#include "deploy/program_files.h"
#include "deploy/shortcuts.h"
#include "state/app_state.h"
#include "support/current_folder.h"
#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr const WCHAR* remover_rows[] = {TEXT("trk_remove64.exe"), TEXT("trk_remove.exe")};
constexpr const WCHAR* tool_rows[] = {TEXT("wrenchbay.exe"), TEXT("portlynx.exe"), TEXT("portlynx.inf"),
                                      TEXT("media.inf"), TEXT("settings.inf")};
constexpr const WCHAR* library_rows[] = {TEXT("zelcore.dll"), TEXT("zelmodel.dat"), TEXT("zelmodel.dll"),
                                         TEXT("iconv.dll")};

// The install folder of one run.
struct Layout {
    int plain;                                  // both names are plain folder names
    int fits;                                   // the path below is whole
    WCHAR install_folder[deploy_path_capacity]; // with a backslash at its end
};

int names_are_plain(const WCHAR* folder_name, const WCHAR* model_text) {
    for (const WCHAR* name : {folder_name, model_text}) {
        if (!is_plain_name(name)) {
            log_failure_within(deploy_line_capacity, TEXT("not a folder name: %s\r\n"), name);
            return 0;
        }
    }
    return 1;
}

// 1, or 0 with the reason; a folder that is there already counts as not made.
int try_folder(const WCHAR* path, int fits, DWORD* error) {
    *error = ERROR_FILENAME_EXCED_RANGE;
    if (!fits)
        return 0;
    const BOOL made = CreateDirectoryW(path, nullptr);
    *error = GetLastError();
    return made;
}

// The line just logged is no failure when it says that the folder is there already.
void tell_failure(DWORD error) {
    if (error != ERROR_ALREADY_EXISTS)
        line_failed();
}

int make_program_folder(WCHAR* out, const WCHAR* base, const WCHAR* name) {
    const int fits = format_text(out, deploy_path_capacity, TEXT("%s\\%s"), base, name);
    log_write(app.log_handle, out);
    log_write(app.log_handle, TEXT("\r\n"));
    DWORD error = 0;
    if (!try_folder(out, fits, &error)) {
        log_line_within(deploy_line_capacity, TEXT("create dir failed %d %d\r\n"), 0, error);
        tell_failure(error);
    }
    return fits;
}

void make_group_folder(WCHAR* out, const WCHAR* base, const WCHAR* name) {
    const int fits = format_text(out, deploy_path_capacity, TEXT("%s\\%s"), base, name);
    DWORD error = 0;
    if (!try_folder(out, fits, &error)) {
        log_line_within(deploy_line_capacity, TEXT("create dir failed %d %s %d\r\n"), 0, out, error);
        tell_failure(error);
    }
}

// 0 when the system has no Program Files folder.
int make_program_folders(Layout* layout, const WCHAR* folder_name, const WCHAR* model_text) {
    WCHAR* program_files = find_known_folder(FOLDERID_ProgramFiles, TEXT("ProgramFiles"));
    if (program_files == nullptr)
        return 0;
    log_line_within(deploy_line_capacity, TEXT("ProgramFiles %s\r\n"), program_files);
    layout->plain = names_are_plain(folder_name, model_text);
    if (layout->plain) {
        WCHAR maker_folder[deploy_path_capacity];
        WCHAR* folder = layout->install_folder;
        // A folder below a cut one is cut as well, so that no file step finds room behind it.
        layout->fits = make_program_folder(maker_folder, program_files, folder_name);
        layout->fits &= make_program_folder(folder, maker_folder, model_text);
        layout->fits &= append_text(folder, deploy_path_capacity, TEXT("\\"));
    }
    CoTaskMemFree(program_files);
    return 1;
}

// A failed copy has its line and no other effect.
void copy_rows(const WCHAR* source, const WCHAR* const* rows, size_t count, const WCHAR* target) {
    for (size_t i = 0; i < count; ++i)
        copy_package_file(source, rows[i], target, rows[i]);
}

void copy_layout(const Layout* layout, const WCHAR* monitor_inf) {
    const WCHAR* target = layout->install_folder;
    WCHAR root[257]; // the current folder of at most 255 characters, and a backslash
    if (!get_current_folder(root, static_cast<DWORD>(std::size(root) - 1))) {
        log_failure(TEXT("current folder too long\r\n"));
        return;
    }
    append_text(root, std::size(root), TEXT("\\"));
    copy_rows(root, remover_rows, std::size(remover_rows), target);
    WCHAR source[deploy_path_capacity];
    format_text(source, std::size(source), TEXT("%s\\%s\\"), root, TEXT("monitor"));
    copy_package_file(source, monitor_inf, target, TEXT("monitor.inf"));
    format_text(source, std::size(source), TEXT("%s\\%s\\"), root, TEXT("wrenchbay"));
    copy_rows(source, tool_rows, std::size(tool_rows), target);
    format_text(source, std::size(source), TEXT("%s\\%s\\x86\\"), root, TEXT("monitor"));
    copy_rows(source, library_rows, std::size(library_rows), target);
    format_text(source, std::size(source), TEXT("%s\\%s\\profiles\\*.tkp"), root, TEXT("monitor"));
    if (layout->fits)
        copyDirFiles(source, target);
}

void make_shortcuts(const WCHAR* install_folder, const WCHAR* folder_name, const WCHAR* model_text,
                    const WCHAR* programs) {
    const int newer_system = is_os_newer_than();
    WCHAR maker_group[deploy_path_capacity];
    WCHAR model_group[deploy_path_capacity];
    make_group_folder(maker_group, programs, folder_name);
    make_group_folder(model_group, maker_group, model_text);
    create_shortcut(newer_system, install_folder, model_text, model_group, TEXT("Uninstall"),
                    TEXT("trk_remove.exe"));
    create_shortcut(newer_system, install_folder, model_text, model_group, TEXT("Wrenchbay"),
                    TEXT("wrenchbay.exe"));
}

} // namespace

int deploy_monitor_layout(const WCHAR* folder_name, const WCHAR* model_text, const WCHAR* monitor_inf) {
    Layout layout = {};
    if (!make_program_folders(&layout, folder_name, model_text))
        return 0;
    if (layout.plain)
        copy_layout(&layout, monitor_inf);
    WCHAR* programs = find_known_folder(FOLDERID_CommonPrograms, TEXT("CommonPrograms"));
    if (programs == nullptr)
        return 0;
    log_line_within(deploy_line_capacity, TEXT("CommonPrograms %s\r\n"), programs);
    if (layout.plain)
        make_shortcuts(layout.install_folder, folder_name, model_text, programs);
    CoTaskMemFree(programs);
    return 1;
}
