#include "rehearsal/check/medium.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace rehearsal::check {
namespace {

constexpr int deepest_folder = 40; // links may lead in circles

MediumEntry::Kind kind_of(const fs::directory_entry& entry) {
    std::error_code gone; // a link to nothing is neither
    if (entry.is_directory(gone))
        return MediumEntry::Kind::folder;
    return entry.is_regular_file(gone) ? MediumEntry::Kind::file : MediumEntry::Kind::other;
}

std::string with_slashes(std::string_view path) {
    std::string out(path);
    std::replace(out.begin(), out.end(), '\\', '/');
    return out;
}

// The bytes of the UTF-8 sequence at the place, 0 when none stands there.
std::size_t sequence_length(std::string_view text, std::size_t at) {
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xF0 && first < 0xF5 ? 4
                               : first >= 0xE0                 ? (first < 0xF0 ? 3 : 0)
                               : first >= 0xC2                 ? 2
                                                               : 0;
    if (length == 0 || at + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80)
            return 0;
    return length;
}

// Characters in front of `until`: UTF-8 sequences as long as there are only such, else bytes.
std::size_t characters_before(std::string_view line, std::size_t until) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < until; ++count) {
        const std::size_t length = sequence_length(line, at);
        if (length == 0)
            return until;
        at += length;
    }
    return count;
}

// In text of 16-bit units, little-endian or not, a line feed is one unit.
Place wide_place(std::string_view bytes, std::size_t offset, bool little) {
    Place place{"", 1, 1};
    for (std::size_t at = 2; at + 1 < bytes.size() && at + 1 <= offset; at += 2) {
        const bool line_feed = bytes[at + (little ? 0 : 1)] == '\n' && bytes[at + (little ? 1 : 0)] == 0;
        place.line += line_feed ? 1 : 0;
        place.column = line_feed ? 1 : place.column + 1;
    }
    return place;
}

Place narrow_place(std::string_view bytes, std::size_t offset) {
    const std::string_view before = bytes.substr(0, offset);
    const std::size_t line_feed = before.rfind('\n');
    std::size_t begin = line_feed == before.npos ? 0 : line_feed + 1;
    const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    if (begin == 0 && bytes.starts_with("\xEF\xBB\xBF") && offset >= 3)
        begin = 3;
    const std::string_view text = bytes.substr(begin, bytes.find('\n', begin) - begin);
    return {"", line, characters_before(text, std::min(offset - begin, text.size())) + 1};
}

} // namespace

std::string_view MediumEntry::name() const {
    const std::size_t slash = path.rfind('/');
    return std::string_view(path).substr(slash == path.npos ? 0 : slash + 1);
}

Medium::Medium(fs::path folder) : folder_(std::move(folder)) {
    list(folder_, "", 0);
    std::vector<std::pair<std::string, MediumEntry>> sorted;
    for (MediumEntry& entry : entries_) {
        std::string key = folded(entry.path);
        sorted.emplace_back(std::move(key), std::move(entry));
    }
    std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second.path < b.second.path;
    });
    entries_.clear();
    for (auto& [key, entry] : sorted) {
        by_folded_path_.emplace(key, entries_.size());
        entries_.push_back(std::move(entry));
    }
}

void Medium::list(const fs::path& folder, const std::string& below, int depth) {
    if (depth > deepest_folder)
        throw std::runtime_error(folder.string() + ": folders lie too deep");
    for (const fs::directory_entry& found : fs::directory_iterator(folder)) {
        MediumEntry entry{below + found.path().filename().string(), kind_of(found), 0};
        if (entry.is_file())
            entry.size = found.file_size();
        if (entry.is_folder())
            list(found.path(), entry.path + "/", depth + 1);
        entries_.push_back(std::move(entry));
    }
}

std::size_t Medium::file_count() const {
    return static_cast<std::size_t>(
        std::count_if(entries_.begin(), entries_.end(), [](const auto& entry) { return entry.is_file(); }));
}

const MediumEntry* Medium::find(std::string_view path) const {
    const std::string wanted = with_slashes(path);
    const auto first = by_folded_path_.find(folded(wanted));
    if (first == by_folded_path_.end())
        return nullptr;
    // Entries that differ in case alone follow one another.
    for (std::size_t i = first->second; i < entries_.size() && same_text(entries_[i].path, wanted); ++i)
        if (entries_[i].path == wanted)
            return &entries_[i];
    return &entries_[first->second];
}

const MediumEntry* Medium::find_file(std::string_view path) const {
    const MediumEntry* const entry = find(path);
    return entry != nullptr && entry->is_file() ? entry : nullptr;
}

std::vector<const MediumEntry*> Medium::in_folder(std::string_view folder) const {
    std::vector<const MediumEntry*> found;
    const std::string wanted = with_slashes(folder);
    for (const MediumEntry& entry : entries_) {
        const std::size_t slash = entry.path.rfind('/');
        if (same_text(std::string_view(entry.path).substr(0, slash == entry.path.npos ? 0 : slash), wanted))
            found.push_back(&entry);
    }
    return found;
}

const std::string& Medium::bytes(const MediumEntry& file) const {
    const auto known = bytes_.find(file.path);
    if (known != bytes_.end())
        return known->second;
    errno = 0;
    std::ifstream stream(folder_ / file.path, std::ios::binary);
    std::string read(file.size, '\0');
    stream.read(read.data(), static_cast<std::streamsize>(read.size()));
    read.resize(static_cast<std::size_t>(stream.gcount()));
    if (!file.is_file() || stream.bad() || !stream.is_open())
        throw std::runtime_error((folder_ / file.path).string() + ": can't be read" +
                                 (errno == 0 ? "" : std::string(": ") + std::strerror(errno)));
    return bytes_.emplace(file.path, std::move(read)).first->second;
}

Place Medium::place(const MediumEntry& file, std::size_t offset) const {
    const std::string& text = bytes(file);
    offset = std::min(offset, text.size());
    const bool little = text.starts_with("\xFF\xFE");
    Place place = little || text.starts_with("\xFE\xFF") ? wide_place(text, offset, little)
                                                         : narrow_place(text, offset);
    place.file = file.path;
    return place;
}

std::string missing_file(const Medium& medium, std::string_view path, const std::string& asker) {
    const std::size_t slash = path.rfind('/');
    const std::string_view folder = path.substr(0, slash == path.npos ? 0 : slash);
    const std::string_view name = path.substr(slash == path.npos ? 0 : slash + 1);
    std::vector<std::string_view> names;
    for (const MediumEntry* const entry : medium.in_folder(folder))
        names.push_back(entry->name());
    std::string reason = std::string(path) + " isn't on the medium, and " + asker + " it";
    if (const std::string_view near = nearest(name, names); !near.empty())
        reason += "; the nearest in its folder is " + std::string(near);
    else if (!folder.empty() && medium.find(folder) == nullptr)
        reason += "; there is no folder " + std::string(folder);
    return reason;
}

std::string needed_by_packages(const std::vector<const char*>& environments) {
    std::string names;
    for (std::size_t i = 0; i < environments.size(); ++i)
        names += (i == 0 ? "" : i + 1 == environments.size() ? " and " : ", ") + std::string(environments[i]);
    return environments.size() == 1 ? "the package for " + names + " needs"
                                    : "the packages for " + names + " need";
}

} // namespace rehearsal::check
