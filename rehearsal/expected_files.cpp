#include "rehearsal/expected_files.h"

#include "machine/text.h"
#include "rehearsal/machine_view.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <map>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

struct Row {
    const char* folder; // on the medium
    const char* name;
};

// What every medium has. A row that is missing on the medium itself fails the install.
constexpr Row fixed_rows[] = {
    {"wrenchbay", "trk_remove64.exe"},  {"wrenchbay", "trk_remove.exe"},    {"wrenchbay", "wrenchbay.exe"},
    {"wrenchbay", "portlynx.exe"},      {"wrenchbay", "portlynx.inf"},      {"wrenchbay", "media.inf"},
    {"wrenchbay", "settings.inf"},      {"wrenchbay", "profilenames.inf"},  {"Drivers/32-bit", "zelcore.dll"},
    {"Drivers/32-bit", "zelmodel.dat"}, {"Drivers/32-bit", "zelmodel.dll"}, {"Drivers/32-bit", "iconv.dll"},
};

// What has to be on the drive: path below the program folder -> the medium's file.
using Expected = std::map<std::string, fs::path>;

// The entry of the folder that has the name in any case; an empty path when none has.
fs::path find_entry(const fs::path& folder, const std::string& name) {
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored))
        if (folded(entry.path().filename().string()) == folded(name))
            return entry.path();
    return {};
}

fs::path find_folder(fs::path folder, const fs::path& below) {
    for (const fs::path& name : below)
        folder = folder.empty() ? folder : find_entry(folder, name.string());
    return folder;
}

void expect_fixed_rows(const fs::path& medium, Expected& expected) {
    for (const Row& row : fixed_rows) {
        const fs::path folder = find_folder(medium, row.folder);
        const fs::path file = folder.empty() ? folder : find_entry(folder, row.name);
        if (!file.empty())
            expected[row.name] = file;
    }
}

void expect_profiles(const fs::path& medium, Expected& expected) {
    const fs::path folder = find_folder(medium, "profiles");
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
        const std::string ending = folded(entry.path().extension().string());
        if (entry.is_regular_file(ignored) && (ending == ".tkp" || ending == ".tkd" || ending == ".icm"))
            expected["profiles\\" + entry.path().filename().string()] = entry.path();
    }
}

std::map<std::string, DriveFile> by_folded_path(const DriveFiles& files) {
    std::map<std::string, DriveFile> all;
    for (const auto& [path, file] : files)
        all[folded(path)] = file;
    return all;
}

std::string maker_path(const std::u16string& base, const Outcome& outcome) {
    return platform::to_utf8(base) + "\\Vorlane\\" + outcome.asked.model;
}

// A file that the run left alone may not have been digested.
std::string digest_of(const DriveFile& file, const std::string& path, const fs::path& drive_c) {
    return file.sha256.empty() ? file_digest(on_linux(drive_c, path)) : file.sha256;
}

} // namespace

void check_files(const Outcome& outcome, const fs::path& medium, const fs::path& drive_c,
                 std::vector<std::string>& missing) {
    const std::map<std::string, DriveFile> there = by_folded_path(outcome.files_after);
    const std::string folder = maker_path(outcome.before.folders.program_files, outcome);
    if (!there.contains(folded(folder))) {
        missing.push_back("no folder \"" + folder + "\"");
        return;
    }
    Expected expected;
    expect_fixed_rows(medium, expected);
    expect_profiles(medium, expected);
    const fs::path drivers = find_folder(medium, "Drivers");
    if (const fs::path inf = drivers.empty() ? drivers : find_entry(drivers, outcome.asked.inf_file);
        !inf.empty())
        expected["inf\\" + outcome.asked.inf_file] = inf;
    for (const auto& [name, source] : expected) {
        const auto file = there.find(folded(folder + "\\" + name));
        if (file == there.end())
            missing.push_back("no file \"" + name + "\"");
        else if (file->second.size != fs::file_size(source) ||
                 digest_of(file->second, folder + "\\" + name, drive_c) != file_digest(source))
            missing.push_back("file \"" + name + "\" isn't the medium's");
    }
}

void check_shortcuts(const Outcome& outcome, const fs::path& drive_c, std::vector<std::string>& missing) {
    const std::string group = folded(maker_path(outcome.before.folders.common_programs, outcome)) + "\\";
    const std::string programs = folded(maker_path(outcome.before.folders.program_files, outcome)) + "\\";
    for (const auto& [label, program] :
         {std::pair("Uninstall", "trk_remove.exe"), {"Wrenchbay", "wrenchbay.exe"}}) {
        const bool found =
            std::any_of(outcome.files_after.begin(), outcome.files_after.end(),
                        [&, program = program](const auto& entry) {
                            const std::string path = folded(entry.first);
                            if (!path.starts_with(group) || !path.ends_with(".lnk"))
                                return false;
                            // The folder of the target closes with two backslashes.
                            std::string target = folded(
                                platform::to_utf8(read_shortcut(outcome, drive_c, entry.first).target));
                            if (const std::size_t doubled = target.rfind("\\\\"); doubled != target.npos)
                                target.erase(doubled, 1);
                            return target == programs + program;
                        });
        if (!found)
            missing.push_back(std::string("no shortcut \"") + label + "\"");
    }
}

} // namespace rehearsal
