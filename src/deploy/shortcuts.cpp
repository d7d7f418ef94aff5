#include "deploy/shortcuts.h"

#include <objbase.h>
#include <shlobj.h>

#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/text.h"

#include <failed_step.h>

#include <iterator>

namespace {

constexpr size_t path_capacity = 512;
constexpr size_t line_capacity = 512;

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

// Goes on to the next folder in any case, so that only `path` itself matters to the caller.
void create_group_folder(WCHAR* path, const WCHAR* name) {
    BOOL result = FALSE;
    DWORD error = ERROR_FILENAME_EXCED_RANGE;
    if (append_text(path, path_capacity, TEXT("\\")) && append_text(path, path_capacity, name)) {
        result = CreateDirectoryW(path, nullptr);
        error = GetLastError();
    }
    if (!result)
        log_line(TEXT("create dir failed %d %s %d\r\n"), result, path, error);
    if (!result && error != ERROR_ALREADY_EXISTS)
        line_failed();
}

} // namespace

int create_shortcut(int newer_system, const WCHAR* install_folder, const WCHAR* driver_name,
                    const WCHAR* group_folder, const WCHAR* label, const WCHAR* file_name) {
    WCHAR target[path_capacity];
    WCHAR name[path_capacity];
    WCHAR link_path[path_capacity];
    // The install folder ends in a backslash already; the second one is the target's usual form.
    int fits = format_text(target, std::size(target), TEXT("%s\\%s"), install_folder, file_name);
    fits &= newer_system ? format_text(name, std::size(name), TEXT("%s %s"), driver_name, label)
                         : copy_text(name, std::size(name), label);
    fits &= format_text(link_path, std::size(link_path), TEXT("%s\\%s.lnk"), group_folder, name);
    log_line_within(line_capacity, TEXT("create sc [%s] [%s] [%s]\r\n"), target, link_path, name);
    if (!fits || !is_plain_name(name)) {
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
    link->SetPath(target);
    link->SetWorkingDirectory(working_folder);
    link->SetDescription(description);
    const int saved = save_link(link, link_path);
    link->Release();
    return saved;
}

int create_menu_group(const WCHAR* folder_name, const WCHAR* model_text) {
    WCHAR* programs = find_known_folder(FOLDERID_CommonPrograms, TEXT("CommonPrograms"));
    if (programs == nullptr)
        return 0;
    log_line(TEXT("program folder: [%s]\r\n"), programs);
    WCHAR path[path_capacity];
    copy_text(path, std::size(path), programs);
    CoTaskMemFree(programs);
    create_group_folder(path, folder_name);
    create_group_folder(path, model_text);
    return 1;
}
