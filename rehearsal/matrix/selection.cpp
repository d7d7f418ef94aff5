#include "rehearsal/matrix/selection.h"

#include "calls/run/call_names.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace rehearsal::matrix {
namespace {

constexpr std::size_t parts_without_fault = 5;

// Whether `pattern` fits all of `text`; '*' is any text, also none.
bool fits(std::string_view pattern, std::string_view text) {
    std::size_t p = 0, t = 0, star = std::string_view::npos, behind = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            behind = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++behind;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

std::vector<std::string> parts_of(std::string_view text) {
    std::vector<std::string> parts;
    for (std::size_t end; (end = text.find('/')) != std::string_view::npos; text.remove_prefix(end + 1))
        parts.emplace_back(text.substr(0, end));
    parts.emplace_back(text);
    return parts;
}

bool asks_for_fault(const std::string& pattern) {
    return parts_of(pattern).size() > parts_without_fault;
}

bool names_whole(const std::string& pattern) {
    return asks_for_fault(pattern) && pattern.find('*') == pattern.npos;
}

// Whether the pattern's parts up to the fault's fit the cell.
bool fits_road(const std::string& pattern, const Cell& cell) {
    std::vector<std::string> wanted = parts_of(pattern);
    wanted.resize(std::min(wanted.size(), parts_without_fault));
    Cell road = cell;
    road.fault.clear();
    const std::vector<std::string> given = parts_of(road.name());
    return std::equal(wanted.begin(), wanted.end(), given.begin(), fits);
}

void refuse_wrong(const std::string& pattern) {
    const std::vector<std::string> parts = parts_of(pattern);
    const std::vector<std::string>& names = platform::call_names();
    if (parts.size() > parts_without_fault + 1)
        throw std::runtime_error("--only " + pattern + ": a name has six parts at most");
    if (parts.size() > parts_without_fault &&
        std::none_of(names.begin(), names.end(), [&](const auto& name) { return fits(parts.back(), name); }))
        throw std::runtime_error("--only " + pattern + ": no call is named \"" + parts.back() + "\"" +
                                 did_you_mean(parts.back(), names));
}

// FNV-1a, 32 bits: the same on every computer.
std::uint32_t spread(const std::string& name) {
    std::uint32_t hash = 2166136261;
    for (const char letter : name)
        hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619;
    return hash;
}

} // namespace

Shard read_shard(const std::string& text) {
    Shard shard{0, 0};
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, shard.number);
    const bool slash = first.ec == std::errc() && first.ptr != end && *first.ptr == '/';
    const auto second = slash ? std::from_chars(first.ptr + 1, end, shard.count) : first;
    if (!slash || second.ec != std::errc() || second.ptr != end || shard.number == 0 ||
        shard.number > shard.count)
        throw std::runtime_error("--shard " + text + ": a number and a count are needed, such as 3/8");
    return shard;
}

std::string shard_text(const Shard& shard) {
    return std::to_string(shard.number) + "/" + std::to_string(shard.count);
}

const std::vector<std::string>& some_faults() {
    static const std::vector<std::string> calls = {"AddPrinterW",        "CopyFileW",
                                                   "CreateDirectoryW",   "EnumPrinterDriversW",
                                                   "IPersistFile::Save", "InstallPrinterDriverFromPackageW",
                                                   "OpenPrinterW",       "SetDefaultPrinterW",
                                                   "SetPrinterDataExA",  "UploadPrinterDriverPackageW",
                                                   "XcvDataW",           "socket"};
    return calls;
}

Selection::Selection(std::vector<std::string> patterns, std::string faults)
    : patterns_(std::move(patterns)), faults_(std::move(faults)) {
    std::for_each(patterns_.begin(), patterns_.end(), refuse_wrong);
}

bool Selection::wants(const Cell& cell) const {
    return patterns_.empty() || std::any_of(patterns_.begin(), patterns_.end(), [&](const auto& pattern) {
               return !names_whole(pattern) && fits_road(pattern, cell);
           });
}

bool Selection::asks_for_faults() const {
    return faults_ != "none" || std::any_of(patterns_.begin(), patterns_.end(), [](const auto& pattern) {
               return asks_for_fault(pattern) && !names_whole(pattern);
           });
}

std::vector<Cell> Selection::first_cells(const std::vector<Cell>& all) const {
    std::vector<Cell> cells;
    for (const Cell& cell : all)
        if (wants(cell))
            cells.push_back(cell);
    for (const std::string& pattern : patterns_) {
        const auto road =
            std::find_if(all.begin(), all.end(), [&](const Cell& cell) { return fits_road(pattern, cell); });
        if (road == all.end())
            throw std::runtime_error("--only " + pattern + ": no run is called so; one is called " +
                                     all.front().name());
        if (!names_whole(pattern))
            continue;
        cells.push_back(*road);
        cells.back().fault = parts_of(pattern).back();
    }
    std::sort(cells.begin(), cells.end());
    cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
    return cells;
}

std::vector<Cell> Selection::faults_of(const Cell& cell, const std::vector<std::string>& calls) const {
    std::vector<Cell> cells;
    for (const std::string& call : calls) {
        const std::vector<std::string>& some = some_faults();
        const bool usual = faults_ == "all" ||
                           (faults_ == "some" && std::find(some.begin(), some.end(), call) != some.end());
        const auto asks = [&](const std::string& pattern) {
            if (names_whole(pattern) || !fits_road(pattern, cell)) // the former is run already
                return false;
            return asks_for_fault(pattern) ? fits(parts_of(pattern).back(), call) : usual;
        };
        const std::string name = cell.name() + "/" + call;
        const bool named = std::find(patterns_.begin(), patterns_.end(), name) != patterns_.end();
        if (!named && (patterns_.empty() ? usual : std::any_of(patterns_.begin(), patterns_.end(), asks))) {
            cells.push_back(cell);
            cells.back().fault = call;
        }
    }
    return cells;
}

std::vector<Cell> shard_of(std::vector<Cell> cells, const Shard& shard) {
    std::stable_sort(cells.begin(), cells.end(),
                     [](const Cell& a, const Cell& b) { return spread(a.name()) < spread(b.name()); });
    std::vector<Cell> part;
    for (std::size_t i = shard.number - 1; i < cells.size(); i += shard.count)
        part.push_back(cells[i]);
    std::sort(part.begin(), part.end());
    return part;
}

} // namespace rehearsal::matrix
