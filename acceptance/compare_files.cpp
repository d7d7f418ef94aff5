#include "acceptance/compare.h"

#include "calls/shell/link_reader.h"
#include "machine/text.h"
#include "machine/whole_file.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace fs = std::filesystem;

namespace acceptance {
namespace {

constexpr char log_name[] = "windows/temp/trk_install.log";
constexpr std::uint32_t code_page = 1252;

std::string folded(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return name;
}

// Paths below the folder, links left out.
MadeFiles list_all(const fs::path& folder) {
    MadeFiles files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (!entry.is_symlink())
            files[folded(fs::relative(entry.path(), folder).string())] = {entry.path(), entry.is_directory()};
    return files;
}

// Wine counts the terminator as part of a link's texts.
std::string link_text(std::u16string text) {
    if (text.ends_with(u'\0'))
        text.pop_back();
    return "\"" + platform::to_utf8(text) + "\"";
}

std::string shown_link(const fs::path& file) {
    std::string reason;
    const auto link = platform::read_link(read_bytes(file), code_page, reason);
    if (!link)
        return "no shell link: " + reason;
    return "target " + link_text(link->target) + ", folder " + link_text(link->working_folder) +
           ", description " + link_text(link->description);
}

void compare_file(const std::string& name, const fs::path& rehearsed, const fs::path& wine,
                  Differences& out) {
    if (name.ends_with(".lnk")) {
        const std::string expected = shown_link(rehearsed);
        const std::string found = shown_link(wine);
        if (expected != found)
            out.push_back("shortcut " + name + "\n    rehearsed: " + expected + "\n    Wine:      " + found);
        return;
    }
    if (name != log_name && read_bytes(rehearsed) != read_bytes(wine))
        out.push_back("the bytes of C:/" + name);
}

// The one line that tells when the run was and which of the two programs it was. The rehearsal stands in for
// the 32-bit program, and under Wine the 64-bit one runs.
bool is_banner(const std::string& line) {
    return line.starts_with("Vorlane Installer ") && line.ends_with(" ---\r");
}

// Texts of the system that Wine words in its own way.
struct SystemText {
    std::string_view windows;
    std::string_view wine;
};
constexpr SystemText system_texts[] = {{"Access is denied.", "Access denied."}};

std::string plain_line(std::string line) {
    if (is_banner(line))
        return "(banner)\r";
    for (const SystemText& text : system_texts)
        if (const std::size_t place = line.find(text.wine); place != std::string::npos)
            line.replace(place, text.wine.size(), text.windows);
    return line;
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(plain_line(line));
    return lines;
}

} // namespace

std::string read_bytes(const fs::path& file) {
    auto bytes = platform::read_whole_file(file);
    if (!bytes)
        throw std::runtime_error(file.string() + ": can't be read");
    return *std::move(bytes);
}

MadeFiles list_made(const fs::path& drive, const fs::path& beginning) {
    MadeFiles files = list_all(drive);
    for (const auto& [name, before] : list_all(beginning)) {
        const auto found = files.find(name);
        if (found == files.end())
            continue;
        const bool same = before.folder ? found->second.folder
                                        : !found->second.folder &&
                                              read_bytes(found->second.place) == read_bytes(before.place);
        if (same)
            files.erase(found);
    }
    return files;
}

void compare_logs(const std::string& rehearsed, const std::string& wine, Differences& out) {
    const std::vector<std::string> expected = lines_of(rehearsed);
    const std::vector<std::string> found = lines_of(wine);
    const std::size_t common = std::min(expected.size(), found.size());
    for (std::size_t line = 0; line < common; ++line) {
        if (expected[line] == found[line])
            continue;
        out.push_back("log line " + std::to_string(line + 1) + "\n    rehearsed: " + expected[line] +
                      "\n    Wine:      " + found[line]);
        return;
    }
    if (expected.size() != found.size())
        out.push_back("the log has " + std::to_string(expected.size()) + " lines in the rehearsal, " +
                      std::to_string(found.size()) + " under Wine");
    else if (rehearsed.ends_with('\n') != wine.ends_with('\n'))
        out.push_back("the end of the log");
}

void compare_drives(const MadeFiles& rehearsed, const MadeFiles& wine, Differences& out) {
    for (const auto& [name, file] : rehearsed) {
        const auto found = wine.find(name);
        if (found == wine.end())
            out.push_back("C:/" + name + " is made in the rehearsal alone");
        else if (file.folder != found->second.folder)
            out.push_back("C:/" + name + " is a folder on one side alone");
        else if (!file.folder)
            compare_file(name, file.place, found->second.place, out);
    }
    for (const auto& [name, file] : wine)
        if (!rehearsed.contains(name))
            out.push_back("C:/" + name + " is made under Wine alone");
}

} // namespace acceptance
