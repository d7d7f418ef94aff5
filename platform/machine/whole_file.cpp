#include "machine/whole_file.h"

#include <fstream>
#include <utility>

namespace platform {

std::optional<std::string> read_whole_file(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return std::nullopt;
    std::string bytes;
    char block[65536];
    while (stream.read(block, sizeof block) || stream.gcount() > 0)
        bytes.append(block, static_cast<std::size_t>(stream.gcount()));
    return stream.bad() ? std::nullopt : std::optional(std::move(bytes));
}

} // namespace platform
