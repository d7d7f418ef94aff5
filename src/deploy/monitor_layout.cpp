#include "deploy/monitor_layout.h"

#include <objbase.h>

#include "deploy/model_folders.h"
#include "deploy/program_files.h"
#include "state/names.h"
#include "support/current_folder.h"
#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr const WCHAR* remover_rows[] = {remover_program_64, remover_program};
constexpr const WCHAR* tool_rows[] = {tools_program, TEXT("portlynx.exe"), TEXT("portlynx.inf"),
                                      TEXT("media.inf"), TEXT("settings.inf")};
constexpr const WCHAR* library_rows[] = {TEXT("zelcore.dll"), TEXT("zelmodel.dat"), TEXT("zelmodel.dll"),
                                         TEXT("iconv.dll")};

// A failed copy has its line and no other effect.
void copy_rows(const WCHAR* source, const WCHAR* const* rows, size_t count, const WCHAR* target) {
    for (size_t i = 0; i < count; ++i)
        copy_package_file(source, rows[i], target, rows[i]);
}

void copy_layout(const InstallFolder* layout, const WCHAR* monitor_inf) {
    const WCHAR* target = layout->path;
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
    format_text(source, std::size(source), TEXT("%s\\%s\\"), root, tools_folder);
    copy_rows(source, tool_rows, std::size(tool_rows), target);
    format_text(source, std::size(source), TEXT("%s\\%s\\x86\\"), root, TEXT("monitor"));
    copy_rows(source, library_rows, std::size(library_rows), target);
    format_text(source, std::size(source), TEXT("%s\\%s\\profiles\\*.tkp"), root, TEXT("monitor"));
    if (layout->fits)
        copyDirFiles(source, target);
}

} // namespace

int deploy_monitor_layout(const WCHAR* folder_name, const WCHAR* model_text, const WCHAR* monitor_inf) {
    InstallFolder folder;
    if (!make_install_folder(&folder, folder_name, model_text, 1))
        return 0;
    if (folder.plain)
        copy_layout(&folder, monitor_inf);
    WCHAR* programs = find_known_folder(FOLDERID_CommonPrograms, TEXT("CommonPrograms"));
    if (programs == nullptr)
        return 0;
    log_line_within(deploy_line_capacity, TEXT("CommonPrograms %s\r\n"), programs);
    if (folder.plain) {
        WCHAR group[deploy_path_capacity];
        make_model_folder(group, programs, folder_name, model_text, {0, 1});
        create_model_shortcuts(folder.path, model_text, group, 1);
    }
    CoTaskMemFree(programs);
    return 1;
}
