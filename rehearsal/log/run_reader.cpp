#include "rehearsal/log/run_reader.h"

#include "rehearsal/shown_text.h"

#include <cstdlib>

namespace rehearsal::logs {
namespace {

// What stands in a field, for people.
std::string field(const Fields& fields, std::size_t place) {
    return place < fields.size() ? shown_text(fields[place]) : std::string();
}

std::uint32_t number(const Fields& fields, std::size_t place, int base) {
    const std::string text = place < fields.size() ? std::string(fields[place]) : std::string();
    return static_cast<std::uint32_t>(std::strtoll(text.c_str(), nullptr, base));
}

int integer(const Fields& fields, std::size_t place) {
    return static_cast<int>(number(fields, place, 10));
}

// Four numbers from a field on, as people write a version.
std::string version_text(const Fields& fields, std::size_t first, int base) {
    std::string text;
    for (std::size_t i = 0; i < 4; ++i)
        text += (i == 0 ? "" : ".") + std::to_string(number(fields, first + i, base) & 0xffffu);
    return text;
}

// The field that holds the code is hexadecimal where the format says so.
bool code_is_hexadecimal(const Line& line) {
    std::string_view pattern = line.pattern;
    for (int i = 0; i < line.code; ++i)
        pattern.remove_prefix(pattern.find('%') + 1);
    return pattern.substr(pattern.find('%')).starts_with("%x");
}

std::optional<NamedError> error_of(const Line& line, const Fields& fields) {
    if (line.role == Role::port_answer) {
        const std::uint32_t status = number(fields, 2, 16);
        return name_error(status != 0 ? status : number(fields, 3, 16));
    }
    if (line.code == no_code)
        return std::nullopt;
    const auto place = static_cast<std::size_t>(line.code);
    return name_error(number(fields, place, code_is_hexadecimal(line) ? 16 : 10));
}

constexpr std::uint32_t already_exists = 183;

// The weight of this very line.
Weight weight_of(const Line& line, const Fields& fields) {
    if (line.role == Role::port_answer) {
        const std::uint32_t status = number(fields, 2, 16);
        if (number(fields, 0, 10) != 0 && status == 0)
            return Weight::plain;
        return status == already_exists ? Weight::notice : Weight::failed;
    }
    if (line.role == Role::copy_failed && fields.size() > 2 && fields[2].ends_with("\\profilenames.inf"))
        return Weight::notice;
    return line.weight;
}

// The line's own words, and for the monitor's answer those of the case.
void tell_step(Step& step, const Line& line) {
    step.meaning = line.meaning;
    step.remedy = line.remedy;
    if (line.role == Role::port_answer) {
        const bool there = step.weight == Weight::notice;
        step.meaning = there ? "The port was there already, and is used as it is." : "The port wasn't made.";
        step.remedy =
            there ? "See in the print management that its address is the printer's."
                  : "Look at the ports in the print management; remove one of this name and run again.";
    } else if (line.role == Role::copy_failed && step.weight == Weight::notice) {
        step.meaning = "The tools' file of names wasn't copied; it isn't needed.";
        step.remedy = "None is needed, unless the medium has that file.";
    }
    if (step.error && !step.error->remedy.empty())
        step.remedy = step.error->remedy;
}

} // namespace

void RunReader::add_step(std::size_t number, std::string_view text, const Line& line, const Fields& fields) {
    const Weight weight = weight_of(line, fields);
    if (weight == Weight::plain)
        return;
    Step step;
    step.number = number;
    step.text = shown_text(text);
    step.line = &line;
    step.weight = weight;
    step.error = error_of(line, fields);
    tell_step(step, line);
    (weight == Weight::notice ? run_.notices : run_.steps).push_back(step);
}

void RunReader::expect_after(Role role) {
    switch (role) {
    case Role::dialog:
        expected_ = Role::medium;
        break;
    case Role::inf_search:
        expected_ = Role::inf_pattern;
        break;
    case Role::inf_path:
        expected_ = Role::driver_shown;
        break;
    case Role::program_files:
        expected_ = Role::maker_folder;
        break;
    case Role::maker_folder:
        expected_ = Role::install_folder;
        break;
    case Role::driver_begins:
        expected_ = Role::package_path;
        break;
    case Role::uploaded:
        expected_ = Role::store_path;
        break;
    default:
        expected_.reset();
        break;
    }
}

const Line* RunReader::recognise(std::string_view text, Fields& fields) {
    const Line* known = find_line(text, in_search_, fields);
    // A driver may have a name that looks like a line; its place is certain.
    const bool certain = expected_ == Role::driver_shown && (known == nullptr || known->role != Role::banner);
    if (expected_ && (known == nullptr || certain)) {
        fields = {text};
        return &bare_line(*expected_);
    }
    if (known != nullptr) {
        ++recognised_;
        return known;
    }
    return in_search_ ? &bare_line(Role::search_answer) : nullptr;
}

void RunReader::take_piece(std::size_t number, std::string_view text) {
    Fields fields;
    const Line* known = recognise(text, fields);
    run_.lines.push_back({number, shown_text(text), known});
    if (known == nullptr)
        return;
    expect_after(known->role);
    last_role_ = known->role;
    note(*known, fields);
    add_step(number, text, *known, fields);
}

void RunReader::take(std::size_t number, std::string_view text) {
    if (text.find_first_not_of(" \t") == std::string_view::npos)
        return;
    for (bool again = !in_search_; again;) {
        again = false;
        for (const Line& line : lines()) {
            const std::string_view pattern = line.pattern;
            if (line.runs_on && text.size() > pattern.size() && text.starts_with(pattern)) {
                take_piece(number, text.substr(0, pattern.size()));
                text.remove_prefix(pattern.size());
                again = true;
            }
        }
    }
    take_piece(number, text);
}

void RunReader::note_start(const Line& line, const Fields& fields) {
    switch (line.role) {
    case Role::banner:
        run_.begins = true;
        run_.date = field(fields, 0);
        run_.bits = std::string_view(line.pattern).find(" 64 ") != std::string_view::npos ? 64 : 32;
        break;
    case Role::locale:
        run_.language = integer(fields, 0);
        run_.language_from_setting = integer(fields, 1) == 1;
        break;
    case Role::medium:
        run_.medium = field(fields, 0);
        break;
    case Role::version:
        run_.version = version_text(fields, 0, 16);
        break;
    case Role::driver:
        run_.driver = field(fields, 0);
        break;
    case Role::model:
        run_.model = field(fields, 0);
        break;
    case Role::has_usb:
        run_.has_usb = integer(fields, 0);
        break;
    case Role::inf_path:
        run_.inf = field(fields, 0);
        break;
    case Role::not_installed:
        run_.state = run_.has_usb == 0 ? 'E' : 'D';
        break;
    case Role::same_version:
        run_.state = run_.has_usb == 0 ? 'B' : 'A';
        run_.installed_version = version_text(fields, 1, 10);
        break;
    case Role::other_version_follows:
        run_.state = 'C';
        break;
    case Role::other_version:
        run_.installed_version = version_text(fields, 1, 10);
        break;
    default:
        note_printers(line, fields);
        break;
    }
}

// One that answers again, on another adapter or after Refresh, is the same.
void RunReader::add_printer(const FoundPrinter& printer) {
    for (const FoundPrinter& known : run_.printers)
        if (known.address == printer.address)
            return;
    run_.printers.push_back(printer);
}

void RunReader::note_printers(const Line& line, const Fields& fields) {
    switch (line.role) {
    case Role::search_begins:
        in_search_ = true;
        run_.searched = true;
        break;
    case Role::no_network:
        run_.searched = true;
        break;
    case Role::search_ends:
        in_search_ = false;
        break;
    case Role::printer_found:
        run_.printers.push_back({field(fields, 0), field(fields, 1), false});
        break;
    case Role::typed_address: {
        bool good = integer(fields, 1) == 4;
        for (std::size_t i = 2; i < 6; ++i)
            good = good && integer(fields, i) >= 0 && integer(fields, i) <= 255;
        if (good)
            add_printer({field(fields, 0), "", true});
        break;
    }
    case Role::default_on:
        run_.default_wanted = true;
        break;
    case Role::default_off:
        run_.default_wanted = false;
        break;
    default:
        break;
    }
}

void RunReader::note_install(const Line& line, const Fields& fields) {
    switch (line.role) {
    case Role::sequence:
        began_ = true;
        break;
    case Role::chosen:
        run_.road = "network";
        run_.chosen = field(fields, 0);
        break;
    case Role::chosen_usb:
        run_.road = "USB";
        break;
    case Role::maker_folder:
        maker_folder_ = field(fields, 0);
        break;
    case Role::install_folder:
        install_folder_ = field(fields, 0);
        break;
    case Role::copy:
        ++files_;
        break;
    case Role::copy_failed:
        files_ -= files_ != 0;
        break;
    case Role::start_menu:
        start_menu_ = field(fields, 0);
        break;
    case Role::shortcut:
        shortcuts_.push_back(field(fields, 1));
        break;
    case Role::shortcut_failed:
        if (!shortcuts_.empty())
            shortcuts_.pop_back();
        break;
    case Role::store_path:
        store_path_ = field(fields, 0);
        break;
    case Role::driver_done:
        driver_done_ = true;
        break;
    case Role::port_planned:
        port_ = "TRK_" + field(fields, 0);
        break;
    case Role::port_answer:
        port_made_ = weight_of(line, fields) != Weight::failed;
        break;
    case Role::queue_begins:
        queue_ = field(fields, 0);
        break;
    case Role::queue_failed:
        queue_failed_ = true;
        break;
    case Role::label:
        ++labels_;
        break;
    default:
        break;
    }
}

void RunReader::note(const Line& line, const Fields& fields) {
    note_start(line, fields);
    note_install(line, fields);
    if (line.role == Role::label_failed && line.runs_on)
        labels_ -= labels_ != 0;
}

Run RunReader::finish() {
    tell_leftovers();
    judge();
    return std::move(run_);
}

} // namespace rehearsal::logs
