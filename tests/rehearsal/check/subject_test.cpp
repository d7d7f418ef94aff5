#include "rehearsal/check/subject_test.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace tests {
namespace {

using rehearsal::check::Finding;

std::vector<Finding> found(const MediumFiles& files,
                           void (*check)(const rehearsal::check::Medium&, rehearsal::check::Findings&)) {
    const MediumFolder folder(files);
    rehearsal::check::Findings findings;
    check(rehearsal::check::Medium(folder.path()), findings);
    return findings.list();
}

} // namespace

std::vector<std::string> places_found(const MediumFiles& files, void (*check)(const rehearsal::check::Medium&,
                                                                              rehearsal::check::Findings&)) {
    std::vector<std::string> lines;
    for (const Finding& finding : found(files, check)) {
        const auto& place = finding.place;
        lines.push_back(
            finding.id + " " + place.file +
            (place.line == 0 ? "" : ":" + std::to_string(place.line) + ":" + std::to_string(place.column)));
    }
    return lines;
}

std::vector<std::string> reasons_found(const MediumFiles& files,
                                       void (*check)(const rehearsal::check::Medium&,
                                                     rehearsal::check::Findings&)) {
    std::vector<std::string> lines;
    for (const Finding& finding : found(files, check))
        lines.push_back(finding.id + ": " + finding.reason);
    return lines;
}

MediumFolder::MediumFolder(const MediumFiles& files) {
    path_ = (fs::temp_directory_path() / "trk-medium-XXXXXX").string();
    if (mkdtemp(path_.data()) == nullptr)
        std::abort();
    for (const auto& [name, bytes] : files) {
        fs::create_directories((fs::path(path_) / name).parent_path());
        std::ofstream(fs::path(path_) / name, std::ios::binary) << bytes;
    }
}

MediumFolder::~MediumFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string utf16(std::string_view text) {
    std::string bytes = "\xFF\xFE";
    for (const char letter : text)
        bytes += {letter, '\0'};
    return bytes;
}

} // namespace tests
