// The runs of an install log, and what each tells.
#pragma once

#include "rehearsal/log/errors.h"
#include "rehearsal/log/lines.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::logs {

// A line of the file. All texts of this header are UTF-8 with control characters shown.
struct ReadLine {
    std::size_t number = 0; // in the file, from 1
    std::string text;
    const Line* known = nullptr; // null for what the program doesn't write
};

// A line that tells of a failure, or that is worth knowing.
struct Step {
    std::size_t number = 0;
    std::string text;
    const Line* line = nullptr;
    Weight weight = Weight::notice; // for this line; its kind's may be another
    std::optional<NamedError> error;
    std::string meaning;
    std::string remedy;
};

struct FoundPrinter {
    std::string address;
    std::string name; // empty for a typed address
    bool typed = false;
};

// Something that the run left on the machine.
struct Leftover {
    std::string kind; // "program folder", "queue", ...
    std::string what;
};

enum class Verdict {
    installed,  // everything is there
    left,       // the user left before any install; nothing failed
    incomplete, // the success box came, and something is missing
    failed,     // the failure box came, or there was nothing to install to
    blocked,    // the driver is there in another version
    unfinished  // the log ends in the middle of the run
};

struct Run {
    bool begins = false; // false when the banner is missing: the file begins in the middle of a run
    std::string date;
    int bits = 0; // 32 or 64; 0 when it isn't known
    int language = -1;
    bool language_from_setting = false;
    std::string medium;
    std::string inf;
    std::string driver;
    std::string version;
    std::string model;
    int has_usb = -1;
    char state = 0; // A to E
    std::string installed_version;
    bool searched = false;
    std::vector<FoundPrinter> printers;
    std::string road; // "network", "USB", empty
    std::string chosen;
    bool default_wanted = false;
    std::vector<Step> steps;   // what failed
    std::vector<Step> notices; // what else is worth knowing
    std::vector<Leftover> leftovers;
    Verdict verdict = Verdict::unfinished;
    std::string reason; // of the verdict, one sentence
    std::vector<ReadLine> lines;
};

struct Reading {
    std::vector<Run> runs; // none: the text is no install log
    bool cut = false;      // the file's last line has no end
};

// `text` is UTF-8, as decode_log gives it.
Reading read_log(std::string_view text);

bool is_good(Verdict verdict);
const char* verdict_name(Verdict verdict); // "not complete"
std::string state_text(const Run& run);    // "D: the driver isn't installed; USB and network are offered"
std::string language_text(const Run& run); // "German, as the system has it"

} // namespace rehearsal::logs
