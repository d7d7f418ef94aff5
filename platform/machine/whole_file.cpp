#include "machine/whole_file.h"

#include <fstream>
#include <sstream>

namespace platform {

std::optional<std::string> read_whole_file(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << stream.rdbuf(); // an error on the way is the target's
    if (!stream || bytes.bad())
        return std::nullopt;
    return std::move(bytes).str();
}

} // namespace platform
