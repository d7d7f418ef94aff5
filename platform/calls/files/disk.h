// Work on real files that several calls share. Results are 0 or the system's code.
#pragma once

#include "calls/files/paths.h"

#include <cstdint>

namespace platform {

// Copies a file with its write time and its read-only attribute over what may be there. With `over_read_only`
// a read-only target is replaced too.
std::uint32_t copy_file(const RealPath& source, const RealPath& target, bool over_read_only);

// Makes the file, or writes it anew, with these bytes.
std::uint32_t write_file(const RealPath& target, std::string_view bytes);

// A file or a link; with `read_only_too` also a read-only file.
std::uint32_t delete_file(const RealPath& path, bool read_only_too);

// Of a file; a folder has no such attribute here, and is refused.
std::uint32_t set_read_only(const RealPath& path, bool read_only);

std::uint32_t make_folder(const RealPath& path);
std::uint32_t remove_folder(const RealPath& path); // an empty one, or a link to one

} // namespace platform
