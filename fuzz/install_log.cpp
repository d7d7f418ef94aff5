#include "fuzz/targets.h"
#include "rehearsal/log/log_text.h"
#include "rehearsal/log/log_views.h"

// The first byte chooses the code page.
void fuzz::install_log(std::string_view input) {
    if (input.empty())
        return;
    const std::uint32_t code_page = input[0] % 2 == 0 ? 1252 : 932;
    const rehearsal::logs::Reading reading =
        rehearsal::logs::read_log(rehearsal::logs::decode_log(input.substr(1), code_page));
    std::size_t place = 0;
    for (const rehearsal::logs::Run& run : reading.runs)
        require(!draw_run(run, ++place, reading.runs.size(), {false, true}).empty(), "a run isn't shown");
    require(!reading_as_json(reading, "install.log", true).empty(), "no JSON");
}
