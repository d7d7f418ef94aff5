// A file's bytes at once.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace platform {

// Nothing when the file can't be opened or read to its end, as with a folder.
std::optional<std::string> read_whole_file(const std::filesystem::path& file);

} // namespace platform
