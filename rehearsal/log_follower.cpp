#include "rehearsal/log_follower.h"

#include "calls/files/file_object.h"
#include "calls/run/session.h"
#include "calls/text/code_page_text.h"
#include "machine/text.h"
#include "state/app_state.h"

#include <fstream>
#include <sstream>

namespace rehearsal {
namespace {

// The real file of the program's open log; empty while there is none.
std::filesystem::path open_log_file() {
    if (app.log_handle == INVALID_HANDLE_VALUE)
        return {};
    const auto file =
        std::dynamic_pointer_cast<platform::File>(platform::session().handles.peek(app.log_handle));
    return file ? platform::real_path(file->path.c_str()).real : std::filesystem::path{};
}

} // namespace

std::string ansi_to_utf8(std::string_view bytes, std::uint32_t code_page) {
    return platform::to_utf8(platform::widen(platform::code_page_table(code_page), bytes).text);
}

void LogFollower::find() {
    if (!file_.empty())
        return;
    file_ = open_log_file();
    if (file_.empty())
        return;
    // Earlier runs' lines stand in front of this one's.
    seen_ = std::filesystem::file_size(file_);
}

std::string LogFollower::take() {
    if (file_.empty())
        return {};
    std::ifstream stream(file_, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(seen_));
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    const std::string fresh = bytes.str();
    seen_ += fresh.size();
    const std::string shown = ansi_to_utf8(fresh, platform::session().machine.code_page);
    text_ += shown;
    return shown;
}

} // namespace rehearsal
