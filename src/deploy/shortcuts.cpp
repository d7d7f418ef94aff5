#include "deploy/shortcuts.h"

#include <objbase.h>
#include <shlobj.h>

#include "deploy/model_folders.h"
#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

int save_link(IShellLinkW* link, const WCHAR* link_path) {
    IPersistFile* file = nullptr;
    if (link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file)) < 0) {
        log_failure(TEXT("QueryInterface failed!\r\n"));
        return 0;
    }
    const HRESULT result = file->Save(link_path, TRUE);
    file->Release();
    if (result < 0)
        step_failed(link_path);
    return result >= 0;
}

} // namespace

int create_shortcut(int newer_system, const WCHAR* install_folder, const WCHAR* driver_name,
                    const WCHAR* group_folder, const WCHAR* label, const WCHAR* file_name) {
    WCHAR target[deploy_path_capacity];
    WCHAR name[deploy_path_capacity];
    WCHAR link_path[deploy_path_capacity];
    // The install folder ends in a backslash already; the second one is the target's usual form.
    const int target_fits = format_text(target, std::size(target), TEXT("%s\\%s"), install_folder, file_name);
    if (newer_system)
        format_text(name, std::size(name), TEXT("%s %s"), driver_name, label);
    else
        copy_text(name, std::size(name), label);
    format_text(link_path, std::size(link_path), TEXT("%s\\%s.lnk"), group_folder, name);
    const int link_fits = text_length(link_path) < MAX_PATH; // what the shell can save, less than was cut at
    log_line_within(deploy_line_capacity, TEXT("create sc [%s] [%s] [%s]\r\n"), target, link_path, name);
    if (!link_fits || !target_fits) {
        log_failure_within(deploy_line_capacity, TEXT("shortcut path too long: %s\r\n"),
                           link_fits ? target : link_path);
        return 0;
    }
    if (!is_plain_name(name)) {
        step_failed(link_path);
        return 0;
    }
    return create_link_file(target, link_path, name, install_folder);
}

int create_link_file(const WCHAR* target, const WCHAR* link_path, const WCHAR* description,
                     const WCHAR* working_folder) {
    CoInitialize(nullptr); // also where it was done before; only the object below decides
    IShellLinkW* link = nullptr;
    if (CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                         reinterpret_cast<void**>(&link)) < 0) {
        log_failure(TEXT("CoCreateInstance failed!\r\n"));
        return 0;
    }
    // Saving decides: a link that lacks one of the three is still made.
    const HRESULT set_path = link->SetPath(target);
    const HRESULT set_folder = link->SetWorkingDirectory(working_folder);
    const HRESULT set_description = link->SetDescription(description);
    if (set_path < 0 || set_folder < 0 || set_description < 0)
        step_failed(link_path);
    const int saved = save_link(link, link_path);
    link->Release();
    return saved;
}

int create_menu_group(const WCHAR* folder_name, const WCHAR* model_text) {
    WCHAR* programs = find_known_folder(FOLDERID_CommonPrograms, TEXT("CommonPrograms"));
    if (programs == nullptr)
        return 0;
    log_line(TEXT("program folder: [%s]\r\n"), programs);
    WCHAR group[deploy_path_capacity];
    make_model_folder(group, programs, folder_name, model_text, {0, 1});
    CoTaskMemFree(programs);
    return 1;
}
