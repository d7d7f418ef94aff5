// Every line that the program writes to its install log: how it is written, what it means, why it comes and
// what to do about it. The reader of logs, `trk log --explain` and docs/log.md all go by this table.
#pragma once

#include "rehearsal/log/pattern.h"

#include <span>
#include <string>
#include <string_view>

namespace rehearsal::logs {

// When the program writes a line, in the order of a run. The library's operations stand outside of a setup's
// run: a remover or another packaging writes them.
enum class Area { start, package, connection, search, terms, install, files, driver, port, queue, library };

// How much a line says about the run.
enum class Weight {
    plain,  // the run's ordinary course
    notice, // worth knowing; nothing failed, or nothing that the installation needs
    failed, // a step failed and the run went on
    stopped // a step failed and ended what the run was for
};

// What the reader of logs takes from a line. Most lines are only recognised.
enum class Role {
    none,
    banner,
    locale,
    language_set,
    dialog,
    medium,
    inf_search,
    inf_pattern,
    version,
    driver,
    model,
    has_usb,
    inf_rejected,
    inf_path,
    driver_shown,
    not_installed,
    same_version,
    other_version_follows,
    other_version,
    port_taken,
    no_network,
    search_begins,
    search_answer,
    search_ends,
    printer_found,
    typed_address,
    accepted,
    default_on,
    default_off,
    sequence,
    chosen,
    chosen_usb,
    program_files,
    maker_folder,
    install_folder,
    copy,
    copy_failed,
    copy_profiles,
    start_menu,
    shortcut,
    shortcut_failed,
    files_failed,
    driver_begins,
    package_path,
    uploaded,
    store_path,
    driver_done,
    driver_failed,
    port_planned,
    port_answer,
    queue_begins,
    queue_failed,
    label,
    label_failed
};

// Which of a line's fields is the system's error code: its place, from 0, or no_code.
constexpr int no_code = -1;

struct Line {
    const char* pattern; // the format without its line end
    Area area;
    Weight weight;
    const char* meaning;
    const char* cause = "";  // of a line that isn't plain
    const char* remedy = ""; // of a line that isn't plain
    int code = no_code;
    Role role = Role::none;
    // What of the sources makes the line up, where that isn't the pattern itself: literals, and for texts
    // that aren't literals "file: argument", separated by '|'.
    const char* written = nullptr;
    // The line is nothing but a text of the run; it is known by the line in front of it alone.
    bool bare = false;
    // The program gives it no line end, so that the next line runs on behind it.
    bool runs_on = false;
};

// All lines, in the order of their areas. Several may have one pattern in different areas.
std::span<const Line> lines();

const char* area_name(Area area);       // "network search"
const char* weight_name(Weight weight); // "failed step"

// The first line of the table that isn't bare and whose pattern the text fits; null when none does. Within a
// search only lines of the search are meant, since all else may be a text that a printer sent. The fields are
// parts of `text`.
const Line* find_line(std::string_view text, bool in_search, Fields& fields);

// The bare line with that role.
const Line& bare_line(Role role);

// The table as a Markdown page's tables, one for each area.
std::string lines_as_markdown();

} // namespace rehearsal::logs
