#include "calls/files/paths.h"

#include "calls/files/short_names.h"
#include "calls/run/session.h"
#include "machine/text.h"

#include <windows.h>

#include <algorithm>
#include <optional>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace platform {
namespace {

using Names = std::vector<std::u16string>;

struct Mount {
    char16_t drive = 0;
    Names names;
    fs::path real;
    bool read_only = false;
};

// The medium goes before drive C, which it may lie on. A run leaves both where they are.
struct Mounts {
    Mounts() {
        const Session& now = session();
        if (!now.options.medium.empty()) {
            const PlainPath place = plain_path(now.machine.current_folder.c_str());
            all.push_back({place.drive, place.names, now.options.medium, true});
        }
        all.push_back({u'C', {}, now.options.drive_c, false});
    }
    std::vector<Mount> all;
};

const std::vector<Mount>& mounts() {
    return session().area<Mounts>().all;
}

bool begins_with(const Names& names, const Names& start) {
    return names.size() >= start.size() && std::equal(start.begin(), start.end(), names.begin(), same_name);
}

// Whether the names lead to a folder above the medium.
bool above_medium(char16_t drive, const Names& names) {
    const Mount& medium = mounts().front();
    return medium.drive == drive && medium.names.size() > names.size() && begins_with(medium.names, names);
}

std::vector<FolderEntry> real_entries(const fs::path& folder) {
    std::vector<FolderEntry> entries;
    std::error_code ignored;
    if (!folder.empty())
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored))
            entries.push_back({to_utf16(entry.path().filename().native()), entry.path()});
    return entries;
}

void add_short_names(std::vector<FolderEntry>& entries) {
    std::vector<std::u16string> names;
    for (const FolderEntry& entry : entries)
        names.push_back(entry.name);
    std::vector<std::u16string> shorter = short_names(names);
    for (std::size_t index = 0; index < entries.size(); ++index)
        entries[index].short_name = std::move(shorter[index]);
}

// For a name that isn't there exactly.
std::optional<fs::path> find_entry(const fs::path& folder, std::u16string_view name) {
    std::vector<FolderEntry> entries = real_entries(folder);
    std::optional<fs::path> found;
    for (const FolderEntry& entry : entries)
        if (same_name(entry.name, name) && (!found || entry.real < *found))
            found = entry.real;
    if (found || name.find(u'~') == name.npos)
        return found;
    add_short_names(entries);
    for (const FolderEntry& entry : entries)
        if (same_name(entry.short_name, name))
            found = entry.real;
    return found;
}

bool is_folder(const char* path) {
    struct stat facts;
    return stat(path, &facts) == 0 && S_ISDIR(facts.st_mode);
}

void look_at(RealPath& found) {
    struct stat facts;
    found.exists = lstat(found.real.c_str(), &facts) == 0;
    found.link = found.exists && S_ISLNK(facts.st_mode);
    found.folder = found.exists && (S_ISDIR(facts.st_mode) || (found.link && is_folder(found.real.c_str())));
}

// From a mount's folder down, as plain text: every call with a path comes here. What has the next name in it
// is a folder, so that only a missing name asks.
void walk(RealPath& found, const Names& names, std::size_t first) {
    std::string real = found.real.native();
    for (std::size_t index = first; index < names.size() && found.error == 0; ++index) {
        struct stat facts;
        const std::size_t length = real.size();
        real += (real.ends_with('/') ? "" : "/") + to_utf8(names[index]);
        if (lstat(real.c_str(), &facts) == 0)
            continue;
        const fs::path folder = real.substr(0, length);
        if (!is_folder(folder.c_str())) {
            found.error = ERROR_PATH_NOT_FOUND;
            real = folder.native();
        } else if (const auto entry = find_entry(folder, names[index])) {
            real = entry->native();
        }
    }
    found.real = real;
    if (found.error == 0)
        look_at(found);
}

} // namespace

RealPath look_up(const PlainPath& path) {
    RealPath found;
    found.error = path.error;
    found.folder_wanted = path.folder_wanted;
    found.root = path.names.empty();
    if (found.error != 0)
        return found;
    found.text = path.text();
    found.error = ERROR_PATH_NOT_FOUND;
    for (const Mount& mount : mounts()) {
        if (mount.drive != path.drive || !begins_with(path.names, mount.names))
            continue;
        found.error = 0;
        found.real = mount.real;
        found.read_only = mount.read_only;
        walk(found, path.names, mount.names.size());
        break;
    }
    if (found.exists)
        return found;
    const bool above = above_medium(path.drive, path.names);
    if (above || (found.error != 0 && !found.root &&
                  above_medium(path.drive, Names(path.names.begin(), path.names.end() - 1)))) {
        found.error = 0;
        found.real.clear();
        found.exists = found.folder = above;
        found.read_only = true;
    }
    return found;
}

RealPath real_path(const char16_t* path, std::size_t limit) {
    return look_up(plain_path(path, false, limit));
}

std::vector<FolderEntry> folder_entries(const RealPath& folder) {
    std::vector<FolderEntry> entries = real_entries(folder.real);
    const PlainPath place = plain_path(folder.text.c_str());
    if (above_medium(place.drive, place.names)) {
        const Mount& medium = mounts().front();
        const std::u16string& next = medium.names[place.names.size()];
        if (std::none_of(entries.begin(), entries.end(),
                         [&](const FolderEntry& e) { return same_name(e.name, next); }))
            entries.push_back(
                {next, medium.names.size() == place.names.size() + 1 ? medium.real : fs::path()});
    }
    add_short_names(entries);
    return entries;
}

FolderNames::FolderNames(const RealPath& folder) : folder_(folder) {
    for (const FolderEntry& entry : real_entries(folder.real)) {
        fs::path& known = entries_[upper_case(entry.name)];
        if (known.empty() || entry.real < known)
            known = entry.real;
    }
}

RealPath FolderNames::look_up(const std::u16string& name) {
    PlainPath path = plain_path(folder_.text.c_str());
    const bool above = above_medium(path.drive, path.names);
    path.names.push_back(name);
    if (above || name.find(u'~') != name.npos) // another folder's file, or the short name of any entry
        return platform::look_up(path);
    RealPath found = folder_;
    found.text = path.text();
    found.root = found.folder_wanted = false;
    found.real = folder_.real / to_utf8(name);
    look_at(found);
    const fs::path& known = entries_.try_emplace(upper_case(name), found.real).first->second;
    if (!found.exists) {
        found.real = known;
        look_at(found);
    }
    return found;
}

std::u16string shown_path(const fs::path& real) {
    for (const Mount& mount : mounts()) {
        std::error_code failed;
        const fs::path base = fs::canonical(mount.real, failed);
        const auto [end, rest] = std::mismatch(base.begin(), base.end(), real.begin(), real.end());
        if (failed || end != base.end())
            continue;
        PlainPath shown;
        shown.drive = mount.drive;
        shown.names = mount.names;
        for (auto name = rest; name != real.end(); ++name)
            shown.names.push_back(to_utf16(name->native()));
        return shown.text();
    }
    std::u16string outside = u"X:" + to_utf16(real.native());
    std::replace(outside.begin(), outside.end(), u'/', u'\\');
    return outside;
}

} // namespace platform
