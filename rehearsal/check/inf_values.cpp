// What stands in DriverVer, and the names that the setup makes folders, shortcuts and queues of.
#include "machine/text.h"
#include "rehearsal/check/inf_lines.h"
#include "rehearsal/check/inf_rules.h"
#include "rehearsal/check/settings_text.h"
#include "support/text.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>

namespace rehearsal::check {
namespace {

constexpr std::size_t longest_driver_name = 64;
constexpr std::uint32_t western = 1252, chinese_simplified = 936, japanese_page = 932;

using Numbers = std::vector<unsigned long>;

// Decimal numbers with the separator between; none when anything else stands there.
std::optional<Numbers> numbers_of(std::u16string_view text, char separator) {
    const std::string plain = platform::to_utf8(text);
    Numbers numbers;
    const char* place = plain.data();
    const char* const end = place + plain.size();
    for (;;) {
        unsigned long number = 0;
        const auto [behind, error] = std::from_chars(place, end, number);
        if (error != std::errc())
            return std::nullopt;
        numbers.push_back(number);
        if (behind == end)
            return numbers;
        if (*behind != separator)
            return std::nullopt;
        place = behind + 1;
    }
}

std::chrono::year_month_day today() {
    return std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now());
}

void check_date(const DriverInf& inf, const platform::InfValue& value, Findings& findings) {
    const std::optional<Numbers> date = numbers_of(value.text, '/');
    const Place place = place_in(inf, value.place);
    const std::string shown = "\"" + platform::to_utf8(value.text) + "\"";
    if (!date || date->size() != 3) {
        findings.add("inf-date", place, "the date " + shown + " isn't month/day/year");
        return;
    }
    const std::chrono::year_month_day day{std::chrono::year(static_cast<int>((*date)[2] % 32768)),
                                          std::chrono::month(static_cast<unsigned>((*date)[0] % 256)),
                                          std::chrono::day(static_cast<unsigned>((*date)[1] % 256))};
    if ((*date)[0] > 12)
        findings.add("inf-date", place,
                     "the date " + shown + " has a month of " + std::to_string((*date)[0]) +
                         ": the month comes first");
    else if (!day.ok() || (*date)[1] > 31 || (*date)[2] > 9999 || (*date)[2] < 1980)
        findings.add("inf-date", place, "there is no such date as " + shown);
    else if (day > today())
        findings.add("inf-date-ahead", place, "the date " + shown + " is later than today");
}

void check_version(const DriverInf& inf, const platform::InfValue& value, Findings& findings) {
    const std::optional<Numbers> parts = numbers_of(value.text, '.');
    if (!parts)
        return; // what isn't numbers is told by the readers
    for (const unsigned long part : *parts)
        if (part > 0xFFFF)
            findings.add("inf-version-part", place_in(inf, value.place),
                         "a version's part of " + std::to_string(part) + " is cut to " +
                             std::to_string(part & 0xFFFF));
}

platform::TextPlace place_of_driver(const DriverInf& inf) {
    for (const platform::InfPackage& package : inf.packages)
        if (!package.models.empty())
            return package.models.front().place;
    return {};
}

platform::TextPlace place_of_model(const DriverInf& inf) {
    for (const platform::InfPackage& package : inf.packages)
        if (!package.models.empty())
            return package.models.front().section_place;
    return {};
}

// Names that the system keeps for devices, whatever stands behind a point in them.
bool is_device_name(const std::u16string& name) {
    std::string base = platform::to_utf8(platform::upper_case(name.substr(0, name.find(u'.'))));
    base.erase(base.find_last_not_of(' ') + 1);
    const bool numbered = base.size() == 4 && base[3] >= '1' && base[3] <= '9' &&
                          (base.starts_with("COM") || base.starts_with("LPT"));
    return numbered || base == "CON" || base == "PRN" || base == "AUX" || base == "NUL";
}

void check_driver_name(const DriverInf& inf, const std::u16string& name, Findings& findings) {
    const Place place = place_in(inf, place_of_driver(inf));
    const std::string shown = "\"" + platform::to_utf8(name) + "\"";
    const std::u16string shortcut = name + u" Uninstall";
    if (!is_plain_name(shortcut.c_str()) || is_device_name(shortcut))
        findings.add("inf-driver-file-name", place,
                     "the driver's name " + shown +
                         " can't be part of a file name, and the shortcuts are called by it");
    if (name.size() > longest_driver_name)
        findings.add("inf-driver-name-long", place,
                     "the driver's name has " + std::to_string(name.size()) + " characters, more than 64");
}

// The folder and the queue are called like the model, with blanks for underscores.
void check_model_name(const DriverInf& inf, std::u16string name, Findings& findings) {
    for (char16_t& character : name)
        character = character == u'_' ? u' ' : character;
    if (!is_plain_name(name.c_str()) || is_device_name(name))
        findings.add("inf-model-folder", place_in(inf, place_of_model(inf)),
                     "the model \"" + platform::to_utf8(name) +
                         "\" can't be a folder's name, and the install folder is called by it");
}

bool is_plain_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

// The bytes as the systems that the setup has languages for read them.
std::string in_each_code_page(const Medium& medium, std::string_view bytes) {
    const auto shown = [&](std::uint32_t page) {
        return in_quotes(platform::to_utf8(in_code_page(medium, bytes, page)));
    };
    return shown(western) + " on a western system, " + shown(chinese_simplified) + " on a Chinese and " +
           shown(japanese_page) + " on a Japanese one";
}

// An 8-bit name is read in the code page of the system where the setup runs.
void check_code_pages(const Medium& medium, const DriverInf& inf, Findings& findings) {
    const struct {
        const char* what;
        const std::string& bytes;
        platform::TextPlace place;
    } names[] = {{"driver's name", inf.setup.driver_name, place_of_driver(inf)},
                 {"model", inf.setup.model, place_of_model(inf)}};
    for (const auto& name : names) {
        if (is_plain_ascii(name.bytes))
            continue;
        findings.add("inf-code-page", place_in(inf, name.place),
                     std::string("the ") + name.what + " is " + in_each_code_page(medium, name.bytes));
    }
}

} // namespace

void check_inf_letters(const Medium& medium, const DriverInf& inf, Findings& findings) {
    const std::string& bytes = medium.bytes(*inf.entry);
    if (is_wide_text(bytes) || bytes.starts_with("\xEF\xBB\xBF"))
        return;
    const bool utf8 = has_utf8_letters(bytes);
    for (const InfByteLine& line : split_inf(bytes)) {
        const bool names = inf.setup.accepted && (line.text.find(inf.setup.driver_name) != line.text.npos ||
                                                  line.text.find(inf.setup.model) != line.text.npos);
        if (is_plain_ascii(line.text) || (names && !utf8))
            continue;
        const auto letter =
            std::find_if(line.text.begin(), line.text.end(), [](char c) { return (c & 0x80) != 0; });
        findings.add(
            utf8 ? "inf-utf8" : "inf-code-page",
            medium.place(*inf.entry, line.offset + static_cast<std::size_t>(letter - line.text.begin())),
            (utf8 ? "the letters are UTF-8, and both readers take 8-bit text: this line is "
                  : "the line is ") +
                in_each_code_page(medium, line.text));
        return; // the first stands for all
    }
}

void check_driver_version(const DriverInf& inf, Findings& findings) {
    if (const platform::InfLine* const line = inf.inf.line(u"Version", u"DriverVer")) {
        check_date(inf, line->values[0], findings);
        if (line->values.size() > 1)
            check_version(inf, line->values[1], findings);
    }
}

void check_inf_names(const Medium& medium, const DriverInf& inf, Findings& findings) {
    check_driver_name(inf, in_code_page(medium, inf.setup.driver_name, western), findings);
    check_model_name(inf, in_code_page(medium, inf.setup.model, western), findings);
    check_code_pages(medium, inf, findings);
}

} // namespace rehearsal::check
