// One run's part of the install log, as it grows.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace rehearsal {

// 8-bit text of a code page in UTF-8; a half character at the end is left out.
std::string ansi_to_utf8(std::string_view bytes, std::uint32_t code_page);

class LogFollower {
public:
    // Remembers the program's open log; to be called while it is open, on the main thread.
    void find();
    // What the log holds beyond the last call, as UTF-8; nothing until it was found.
    std::string take();
    const std::string& text() const { return text_; } // all that was taken

private:
    std::filesystem::path file_;
    std::uintmax_t seen_ = 0;
    std::string text_;
};

} // namespace rehearsal
