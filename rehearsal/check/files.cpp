// The files that an installation copies and the driver package names: there, in their places, and of the kind
// that belongs there.
#include "rehearsal/check/files_pe.h"
#include "rehearsal/check/inf_view.h"
#include "rehearsal/check/subjects.h"

#include "machine/text.h"

#include <algorithm>
#include <map>

namespace rehearsal::check {
namespace {

// What the deployment copies under names of its own, whatever the driver is called. A machine of pe_none: not
// a program.
struct FixedFile {
    std::string_view path;
    PeMachine machine;
};

constexpr FixedFile fixed_files[] = {
    {"wrenchbay/trk_remove64.exe", pe_amd64}, {"wrenchbay/trk_remove.exe", pe_x86},
    {"wrenchbay/wrenchbay.exe", pe_x86},      {"wrenchbay/portlynx.exe", pe_x86},
    {"wrenchbay/portlynx.inf", pe_none},      {"wrenchbay/media.inf", pe_none},
    {"wrenchbay/settings.inf", pe_none},      {"Drivers/32-bit/zelcore.dll", pe_x86},
    {"Drivers/32-bit/zelmodel.dat", pe_none}, {"Drivers/32-bit/zelmodel.dll", pe_x86},
    {"Drivers/32-bit/iconv.dll", pe_x86},
};

constexpr std::string_view setup_program = "trk_setup.exe";
constexpr std::string_view setup_sibling = "trk_setup64.exe";
constexpr std::string_view profile_endings[] = {".tkp", ".tkd", ".icm"};

bool has_ending(std::string_view name, std::string_view ending) {
    return name.size() > ending.size() && same_text(name.substr(name.size() - ending.size()), ending);
}

bool is_program_name(std::string_view name) {
    return has_ending(name, ".exe") || has_ending(name, ".dll");
}

// What the sample has where a real distribution has a program.
bool is_placeholder(std::string_view bytes) {
    return bytes.starts_with("Placeholder for ");
}

class FilesCheck {
public:
    FilesCheck(const Medium& medium, Findings& findings) : medium_(medium), findings_(findings) {}

    void check() {
        for (const FixedFile& file : fixed_files)
            check_fixed(file);
        if (const DriverInf* const inf = taken_inf(driver_infs(medium_)))
            for (const Environment environment : {x86, amd64, arm64})
                check_package(*inf, environment);
        report_needed();
        check_setup_programs();
        check_profiles();
        report_placeholders();
    }

private:
    void check_fixed(const FixedFile& file);
    void report_missing(std::string_view path, const Place& asked_by, const std::string& asker);
    bool is_usable(const MediumEntry& entry);
    void check_program(const MediumEntry& entry, PeMachine machine, const std::string& why);
    void check_package(const DriverInf& inf, Environment environment);
    const MediumEntry* find_packed(const platform::PackageFile& file) const;
    void check_packed(const DriverInf& inf, const platform::PackageFile& file, Environment environment);
    void check_spelling(const DriverInf& inf, const platform::PackageFile& file, const MediumEntry& entry);
    void check_setup_programs();
    void check_profiles();
    void need(const std::string& path, const Place& place, const char* environment);
    void report_needed();
    void report_placeholders();

    // A file that isn't there, and the systems whose packages need it.
    struct Needed {
        std::string path;
        Place place;
        std::vector<const char*> environments;
    };

    const Medium& medium_;
    Findings& findings_;
    std::vector<Needed> needed_;
    std::vector<std::string> placeholders_;
};

void FilesCheck::report_missing(std::string_view path, const Place& asked_by, const std::string& asker) {
    findings_.add("files-missing", asked_by, missing_file(medium_, path, asker));
}

// False for what is no file, or has nothing in it.
bool FilesCheck::is_usable(const MediumEntry& entry) {
    if (!entry.is_file()) {
        findings_.add("files-folder", {entry.path}, "it isn't a file, and one has to be here");
        return false;
    }
    if (entry.size == 0)
        findings_.add("files-empty", {entry.path}, "the file is empty");
    return entry.size != 0;
}

void FilesCheck::check_program(const MediumEntry& entry, PeMachine machine, const std::string& why) {
    const std::string& bytes = medium_.bytes(entry);
    if (is_placeholder(bytes)) {
        placeholders_.push_back(entry.path);
        return;
    }
    const PeKind kind = read_pe_kind(bytes);
    if (!kind.program)
        findings_.add("files-program", {entry.path}, "it is called like a program or library and is none");
    else if (kind.machine != machine)
        findings_.add("files-machine", {entry.path},
                      std::string("it is for ") + name_of_machine(kind.machine) + ", and " + why + " needs " +
                          name_of_machine(machine));
}

void FilesCheck::check_fixed(const FixedFile& file) {
    const MediumEntry* const entry = medium_.find(file.path);
    if (entry == nullptr)
        return report_missing(file.path, {std::string(file.path)}, "the setup copies");
    if (is_usable(*entry) && file.machine != pe_none)
        check_program(*entry, file.machine, file.machine == pe_x86 ? "a 32-bit system" : "a 64-bit system");
    else if (entry->is_file() && is_placeholder(medium_.bytes(*entry)))
        placeholders_.push_back(entry->path);
}

// Windows takes the name in any case; not so the systems that media are copied and signed on.
void FilesCheck::check_spelling(const DriverInf& inf, const platform::PackageFile& file,
                                const MediumEntry& entry) {
    std::string wanted = "Drivers/" + platform::to_utf8(file.path);
    std::replace(wanted.begin(), wanted.end(), '\\', '/');
    if (entry.path != wanted)
        findings_.add("files-case", place_in(inf, file.place),
                      "the file is called " + entry.path + " on the medium, in another case");
}

const MediumEntry* find_in_package(const Medium& medium, const std::u16string& path) {
    const bool leaves = path.find(u"..") != path.npos || path.find(u':') != path.npos;
    return leaves ? nullptr : medium.find("Drivers/" + platform::to_utf8(path));
}

// The compressed file or the cabinet that the system takes for a file that isn't there, or null.
const MediumEntry* FilesCheck::find_packed(const platform::PackageFile& file) const {
    for (const std::u16string& path : file.stand_ins)
        if (const MediumEntry* const entry = find_in_package(medium_, path);
            entry != nullptr && entry->is_file())
            return entry;
    return nullptr;
}

void FilesCheck::check_packed(const DriverInf& inf, const platform::PackageFile& file,
                              Environment environment) {
    std::string path = "Drivers/" + platform::to_utf8(file.path);
    std::replace(path.begin(), path.end(), '\\', '/');
    if (const MediumEntry* const packed = find_packed(file))
        findings_.add("files-packed", place_in(inf, file.place),
                      packed->path + " stands for " + path + ", and what is in it isn't looked at");
    else if (!file.optional && !file.catalogue) // a missing catalogue is told where catalogues are
        need(path, place_in(inf, file.place), name_of(environment));
}

void FilesCheck::need(const std::string& path, const Place& place, const char* environment) {
    const auto known = std::find_if(needed_.begin(), needed_.end(), [&](const Needed& one) {
        return one.path == path && one.place.line == place.line && one.place.column == place.column;
    });
    if (known == needed_.end())
        needed_.push_back({path, place, {environment}});
    else
        known->environments.push_back(environment);
}

void FilesCheck::report_needed() {
    for (const Needed& one : needed_)
        report_missing(one.path, one.place, needed_by_packages(one.environments));
}

void FilesCheck::check_package(const DriverInf& inf, Environment environment) {
    constexpr PeMachine machines[] = {pe_x86, pe_amd64, pe_arm64};
    const platform::InfPackage& package = inf.packages[environment];
    if (!package.fault.reason.empty() || package.models.empty())
        return;
    for (const platform::PackageFile& file : package.files) {
        const MediumEntry* const entry = find_in_package(medium_, file.path);
        if (entry == nullptr) {
            check_packed(inf, file, environment);
            continue;
        }
        check_spelling(inf, file, *entry);
        if (is_usable(*entry) && is_program_name(entry->name()))
            check_program(*entry, machines[environment],
                          std::string("the package for ") + name_of(environment));
        else if (entry->is_file() && is_placeholder(medium_.bytes(*entry)))
            placeholders_.push_back(entry->path);
    }
}

void FilesCheck::check_setup_programs() {
    const MediumEntry* const program = medium_.find(setup_program);
    const MediumEntry* const sibling = medium_.find(setup_sibling);
    if (program == nullptr && sibling == nullptr)
        findings_.add("files-no-setup", {}, "neither trk_setup.exe nor trk_setup64.exe lies on the medium");
    else if (sibling == nullptr)
        findings_.add("files-sibling", {std::string(setup_program)},
                      "trk_setup64.exe isn't beside it, and a 64-bit system can't go on without");
    else if (program == nullptr)
        findings_.add("files-sibling", {std::string(setup_sibling)},
                      "trk_setup.exe isn't beside it, and a 32-bit system can't run this one");
    if (program != nullptr && is_usable(*program))
        check_program(*program, pe_x86, "a 32-bit system");
    if (sibling != nullptr && is_usable(*sibling))
        check_program(*sibling, pe_amd64, "a 64-bit system");
}

void FilesCheck::check_profiles() {
    constexpr std::size_t signature_place = 36; // of a colour profile (ICC.1, header)
    if (const MediumEntry* const folder = medium_.find("profiles");
        folder == nullptr || !folder->is_folder()) {
        std::vector<std::string_view> names;
        for (const MediumEntry* const entry : medium_.in_folder(""))
            names.push_back(entry->name());
        const std::string_view near = nearest("profiles", names);
        findings_.add("files-no-profiles", {std::string(near)},
                      near.empty() ? "there is no folder profiles" : "the setup looks for a folder profiles");
        return;
    }
    for (const MediumEntry* const entry : medium_.in_folder("profiles")) {
        const bool copied = std::any_of(std::begin(profile_endings), std::end(profile_endings),
                                        [&](auto ending) { return has_ending(entry->name(), ending); });
        if (!copied || !entry->is_file()) {
            findings_.add("files-profile-kind", {entry->path},
                          entry->is_file()
                              ? "its ending is none of .tkp, .tkd and .icm, so that it isn't copied"
                              : "folders aren't copied");
            continue;
        }
        if (!is_usable(*entry))
            continue;
        const std::string& bytes = medium_.bytes(*entry);
        if (is_placeholder(bytes))
            placeholders_.push_back(entry->path);
        else if (has_ending(entry->name(), ".icm") &&
                 (bytes.size() < 128 || bytes.substr(signature_place, 4) != "acsp"))
            findings_.add("files-colour-profile", {entry->path}, "it has no colour profile's signature");
    }
}

void FilesCheck::report_placeholders() {
    std::sort(placeholders_.begin(), placeholders_.end());
    placeholders_.erase(std::unique(placeholders_.begin(), placeholders_.end()), placeholders_.end());
    if (placeholders_.empty())
        return;
    std::string names;
    for (const std::string& path : placeholders_)
        names += (names.empty() ? "" : ", ") + path;
    findings_.add("files-placeholder", {},
                  "placeholders stand for files that only their maker can supply: " + names);
}

} // namespace

void check_files(const Medium& medium, Findings& findings) {
    FilesCheck(medium, findings).check();
}

} // namespace rehearsal::check
