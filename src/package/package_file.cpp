#include "package/package_file.h"

#include "support/current_folder.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t folder_capacity = 256;

} // namespace

HANDLE open_package_file(const WCHAR* path) {
    return CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

HANDLE open_below_current_folder(const WCHAR* folder_name, const WCHAR* name, size_t path_capacity) {
    WCHAR folder[folder_capacity];
    WCHAR path[MAX_PATH];
    if (path_capacity > std::size(path))
        path_capacity = std::size(path);
    const WCHAR* const separator = folder_name != nullptr ? TEXT("\\") : nullptr;
    if (!get_current_folder(folder, static_cast<DWORD>(std::size(folder))) ||
        !format_text(path, path_capacity, TEXT("%s%s%s\\%s"), folder, separator, folder_name, name))
        return INVALID_HANDLE_VALUE;
    return open_package_file(path);
}

DWORD read_chunk(HANDLE file, Chunk& chunk) {
    DWORD got = 0;
    if (!ReadFile(file, chunk, chunk_bytes, &got, nullptr))
        got = 0;
    chunk[got] = 0;
    return got;
}

const char* find_in_chunks(HANDLE file, const char* part, Chunk& chunk) {
    while (read_chunk(file, chunk) != 0) {
        const char* place = find_ansi(chunk, part);
        if (place != nullptr)
            return place;
    }
    return nullptr;
}
