#include "deploy/model_folders.h"

#include <objbase.h>

#include "deploy/program_files.h"
#include "deploy/shortcuts.h"
#include "state/names.h"
#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

// A hostile package must not choose where an administrator's files go.
int names_are_plain(const WCHAR* folder_name, const WCHAR* model) {
    for (const WCHAR* name : {folder_name, model}) {
        if (!is_plain_name(name)) {
            log_failure_within(deploy_line_capacity, TEXT("not a folder name: %s\r\n"), name);
            return 0;
        }
    }
    return 1;
}

// A path that the line before has shown isn't told again. One that needs the code's room is cut.
void tell_failed_folder(const WCHAR* path, int shown, DWORD error) {
    constexpr size_t rest_of_line = 40;
    WCHAR told[deploy_line_capacity - rest_of_line];
    copy_text(told, std::size(told), path);
    if (shown)
        log_line_within(deploy_line_capacity, TEXT("create dir failed %d %d\r\n"), 0, error);
    else
        log_line_within(deploy_line_capacity, TEXT("create dir failed %d %s %d\r\n"), 0, told, error);
    if (error != ERROR_ALREADY_EXISTS)
        line_failed();
}

void make_level(WCHAR* out, const WCHAR* base, const WCHAR* name, FolderLines lines) {
    const int fits = format_text(out, deploy_path_capacity, TEXT("%s\\%s"), base, name);
    if (lines.show)
        log_text(out);
    DWORD error = ERROR_SUCCESS;
    if (!fits)
        error = ERROR_FILENAME_EXCED_RANGE;
    else if (!CreateDirectoryW(out, nullptr))
        error = GetLastError();
    if (error != ERROR_SUCCESS && lines.tell)
        tell_failed_folder(out, lines.show, error);
}

} // namespace

void make_model_folder(WCHAR* out, const WCHAR* base, const WCHAR* folder_name, const WCHAR* model,
                       FolderLines lines) {
    WCHAR maker[deploy_path_capacity];
    make_level(maker, base, folder_name, lines);
    make_level(out, maker, model, lines); // a level that was cut has no room for the next
}

int make_install_folder(InstallFolder* folder, const WCHAR* folder_name, const WCHAR* model, int tell) {
    WCHAR* program_files = find_known_folder(FOLDERID_ProgramFiles, TEXT("ProgramFiles"));
    if (program_files == nullptr)
        return 0;
    log_line_within(deploy_line_capacity, TEXT("ProgramFiles %s\r\n"), program_files);
    folder->fits = 0;
    folder->path[0] = 0;
    folder->plain = names_are_plain(folder_name, model);
    if (folder->plain) {
        make_model_folder(folder->path, program_files, folder_name, model, {1, tell});
        folder->fits = append_text(folder->path, std::size(folder->path), TEXT("\\"));
    }
    CoTaskMemFree(program_files);
    return 1;
}

void create_model_shortcuts(const WCHAR* install_folder, const WCHAR* driver_name, const WCHAR* group_folder,
                            int with_tools) {
    const int newer_system = is_os_newer_than();
    create_shortcut(newer_system, install_folder, driver_name, group_folder, TEXT("Uninstall"),
                    remover_program);
    if (with_tools)
        create_shortcut(newer_system, install_folder, driver_name, group_folder, TEXT("Wrenchbay"),
                        tools_program);
}
