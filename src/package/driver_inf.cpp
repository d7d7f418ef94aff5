#include "package/driver_inf.h"

#include "package/package_file.h"
#include "state/names.h"
#include "support/current_folder.h"
#include "support/install_log.h"
#include "support/text.h"

#include <shlwapi.h>

#include <cstring>
#include <iterator>

namespace {

constexpr size_t path_capacity = 256;
constexpr size_t inf_file_capacity = 512;
constexpr size_t folder_name_capacity = 512;

constexpr const char* class_text = "Class=Printer";
constexpr const char* version_text = "DriverVer=";
constexpr const char* manufacturer_text = "[Manufacturer]";
constexpr const char* usb_text = "usbprint\\";

int ends_entry(char character) {
    return character == 0 || character == ',' || character == '\r' || character == '\n';
}

// Copies `length` bytes, or as many whole characters as fit in `size` bytes. Gives the place behind what it
// took.
const char* copy_part(char* out, int size, const char* text, size_t length) {
    const size_t limit = static_cast<size_t>(size) - 1;
    const size_t taken = length <= limit ? length : whole_ansi_length(text, limit);
    std::memcpy(out, text, taken);
    out[taken] = 0;
    return text + taken;
}

// From "DriverVer=" on: 1 when the date and the version stand there in full.
int scan_version(const char* place, DriverVersion* version) {
    int fields[7]; // month, day, year, then the version's four
    const char* numbers = place + ansi_length(version_text);
    if (scan_numbers(numbers, "%d/%d/%d,%d.%d.%d.%d", fields, std::size(fields)) <
        static_cast<int>(std::size(fields))) {
        log_failure(TEXT("Invalid DriverVer found in inf file\r\n"));
        return 0;
    }
    *version = 0;
    for (size_t i = 3; i < std::size(fields); ++i)
        *version = *version << 16 | static_cast<WORD>(fields[i]);
    log_line(TEXT("Version:%lx.%lx.%lx.%lx\r\n"), fields[3], fields[4], fields[5], fields[6]);
    return 1;
}

// From "DriverVer=" on: the name of the models section, and the place of the first header that begins with
// it.
const char* find_models_header(const char* place, const InfFields* fields) {
    char* name = fields->manu_name;
    for (int i = 0; i < fields->manu_size; ++i)
        name[i] = 0;
    const char* manufacturer = find_ansi(place, manufacturer_text);
    if (manufacturer == nullptr)
        return nullptr;
    const char* entry = find_ansi(manufacturer, "=");
    if (entry == nullptr)
        return nullptr;
    ++entry;

    size_t length = 0;
    while (!ends_entry(entry[length]))
        ++length;
    name[0] = '[';
    const char* behind = copy_part(name + 1, fields->manu_size - 1, entry, length);
    const char* header = find_in_names(behind, name);
    for (size_t i = 0; name[i] != 0; ++i)
        name[i] = name[i + 1];
    log_line(TEXT("manuName:%S\r\n"), name);
    return header;
}

// The first quoted text behind the header is the driver's name. Gives the place where its copying stopped.
const char* scan_driver_name(const char* header, const InfFields* fields) {
    const char* quote = find_ansi(header + ansi_length(fields->manu_name) - 1, "\"");
    if (quote == nullptr)
        return nullptr;
    ++quote;
    size_t length = 0;
    while (quote[length] != 0 && quote[length] != '"')
        ++length;
    const char* behind = copy_part(fields->driver_name, fields->driver_size, quote, length);
    log_line(TEXT("driverName:%S\r\n"), fields->driver_name);
    return behind;
}

int scan_model_name(const char* place, const InfFields* fields) {
    const char* entry = find_ansi(place, "=");
    if (entry == nullptr)
        return 0;
    Chunk name;
    size_t length = 0;
    for (++entry; !ends_entry(*entry) && length < chunk_bytes; ++entry) {
        if (*entry != ' ')
            name[length++] = *entry;
    }
    name[length] = 0;
    copy_ansi(fields->mdl_name, static_cast<size_t>(fields->mdl_size), name);
    log_line(TEXT("mdlName:%S\r\n"), fields->mdl_name);
    return 1;
}

int read_inf_file(const WCHAR* path, const InfFields* fields) {
    const HANDLE file = open_package_file(path);
    if (file == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("file open failed\r\n"));
        return 0;
    }
    Chunk chunk;
    const char* text = find_in_chunks(file, class_text, chunk);
    const int accepted = text != nullptr && scan_inf_driver(text, fields);
    CloseHandle(file);
    return accepted;
}

struct InfSearch {
    WCHAR folder[path_capacity];
    WCHAR pattern[path_capacity];
};

// The folder to search, with its closing backslash, and the pattern below it: 0 when they don't fit, which
// the search takes like a folder that isn't there. What has room of the pattern stands there all the same.
int compose_search(InfSearch* search, int use_drivers_folder, int use_inf_folder) {
    WCHAR current[MAX_PATH];
    search->pattern[0] = 0;
    if (!get_current_folder(current, static_cast<DWORD>(std::size(current))))
        return 0;
    const WCHAR* subfolder = nullptr;
    if (use_drivers_folder)
        subfolder = driver_folder;
    else if (use_inf_folder)
        subfolder = TEXT("inf");
    const WCHAR* const separator = subfolder != nullptr ? TEXT("\\") : nullptr;
    const int fits = format_text(search->folder, std::size(search->folder), TEXT("%s\\%s%s"), current,
                                 subfolder, separator);
    return format_text(search->pattern, std::size(search->pattern), TEXT("%s*.inf"), search->folder) && fits;
}

// Works off a search that has found its first entry, in the order in which the file system delivers.
int search_inf_files(HANDLE search, const WCHAR* folder, WIN32_FIND_DATAW* entry, const InfFields* fields,
                     WCHAR* inf_path, char* inf_file) {
    do {
        WCHAR path[path_capacity];
        int accepted = 0;
        if (format_text(path, std::size(path), TEXT("%s%s"), folder, entry->cFileName))
            accepted = read_inf_file(path, fields);
        else
            log_failure(TEXT("file open failed\r\n"));
        if (accepted) {
            log_line(TEXT("Found in %s \"%S\"\r\n"), entry->cFileName, fields->driver_name);
            copy_text(inf_path, path_capacity, path);
            narrow(inf_file, inf_file_capacity, entry->cFileName);
            log_line(TEXT("inf file %s\r\n"), inf_path);
            return 1;
        }
        log_line(TEXT("Not found in %s\r\n"), entry->cFileName);
    } while (FindNextFileW(search, entry));
    return 0;
}

} // namespace

int scan_inf_driver(const char* text, const InfFields* fields) {
    if (fields->driver_size < 1 || fields->manu_size < 2 || fields->mdl_size < 1)
        return 0;
    const char* version = find_ansi(text, version_text);
    if (version == nullptr) {
        log_failure(TEXT("No DriverVer found in inf file\r\n"));
        return 0;
    }
    if (!scan_version(version, fields->version))
        return 0;
    const char* header = find_models_header(version, fields);
    if (header == nullptr)
        return 0;
    const char* behind_name = scan_driver_name(header, fields);
    if (behind_name == nullptr)
        return 0;
    const int accepted = scan_model_name(behind_name, fields);
    *fields->has_usb = find_ansi(behind_name, usb_text) != nullptr ? 1 : 0;
    log_line(TEXT("hasUSB:%d\r\n"), *fields->has_usb);
    return accepted;
}

int read_inf_driver(const WCHAR* path, char* driverName, int driver_size, char* manuName, int manu_size,
                    char* mdlName, int mdl_size, DriverVersion* version, DWORD* hasUSB) {
    const InfFields fields = {driverName, driver_size, manuName, manu_size,
                              mdlName,    mdl_size,    version,  hasUSB};
    return read_inf_file(path, &fields);
}

int find_driver_inf(char* driverName, int driver_size, char* manuName, int manu_size, char* mdlName,
                    int mdl_size, WCHAR* infPath, char* infFile, int use_drivers_folder,
                    DriverVersion* version, DWORD* hasUSB, int use_inf_folder) {
    InfSearch search;
    const int usable = compose_search(&search, use_drivers_folder, use_inf_folder);
    log_text(search.pattern);

    WIN32_FIND_DATAW entry = {};
    const HANDLE handle = usable ? FindFirstFileW(search.pattern, &entry) : INVALID_HANDLE_VALUE;
    if (handle == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("FindFirstFile error!\r\n"));
        return 0;
    }
    const InfFields fields = {driverName, driver_size, manuName, manu_size,
                              mdlName,    mdl_size,    version,  hasUSB};
    const int found = search_inf_files(handle, search.folder, &entry, &fields, infPath, infFile);
    FindClose(handle);
    return found;
}

int get_current_folder_name(char* name) {
    WCHAR folder[MAX_PATH];
    if (get_current_folder(folder, static_cast<DWORD>(std::size(folder))))
        PathStripPathW(folder);
    log_texts(TEXT("cwd "), folder, nullptr, nullptr);
    narrow(name, folder_name_capacity, folder);
    return 1;
}
