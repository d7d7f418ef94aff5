// Paths of the machine: from the name that the program gives to the real file, and back.
//
// C:\ is the session's drive_c; the machine's current folder is the medium, read-only. The folders above the
// medium are there, hold nothing else and can't be written either. Every other drive is unknown. Names are
// looked up without regard to case; a name that is there exactly goes first, and short names are known last,
// but for the medium's own folder and those above it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// A name in the platform's plain form: absolute, separators folded, "." and ".." resolved, trailing points
// and blanks dropped. Behind "\\?\" a name is taken as it stands, so that what needs folding is an error
// there.
struct PlainPath {
    std::uint32_t error = 0;           // why the name can't be used; 0: it can
    char16_t drive = 0;                // a capital letter
    std::vector<std::u16string> names; // from the drive's root down; none: the root
    bool folder_wanted = false;        // it ends in a separator
    std::u16string text() const;       // "C:\Windows\Temp", "C:\"
};

// With `pattern` the last name may hold wildcards. `limit` is the first length that is too long. What the
// layer doesn't model (devices, streams) stops the run.
PlainPath plain_path(const char16_t* path, bool pattern = false, std::size_t limit = 260);

struct RealPath {
    std::uint32_t error = 0;    // of the plain path, or the drive or a folder above isn't there
    std::u16string text;        // the plain path
    std::filesystem::path real; // where it lies; empty for a folder above the medium
    bool exists = false;        // also for a link that leads nowhere
    bool folder = false;        // a folder, or a link to one
    bool link = false;
    bool read_only = false; // the medium, and what lies above it
    bool root = false;      // of a drive
    bool folder_wanted = false;
};

RealPath look_up(const PlainPath& path);
RealPath real_path(const char16_t* path, std::size_t limit = 260);

// What lies in a folder, in no order. The real path of an entry above the medium is empty.
struct FolderEntry {
    std::u16string name;
    std::filesystem::path real;
    std::u16string short_name = {}; // empty for a name of the form 8.3
};
std::vector<FolderEntry> folder_entries(const RealPath& folder);

// The names of one folder, listed once, for the making of many files in it: each name that isn't there would
// cost a listing of its own. It knows of nothing that others make there later.
class FolderNames {
public:
    explicit FolderNames(const RealPath& folder);
    // What look_up() gives for a plain name in the folder. From then on the name counts as being there.
    RealPath look_up(const std::u16string& name);

private:
    RealPath folder_;
    std::map<std::u16string, std::filesystem::path> entries_; // by the name in capitals
};

// The path, as the program would name it, of a real file or folder that has no links in its path. What lies
// outside of the machine's drives is shown on drive X:, which no machine has.
std::u16string shown_path(const std::filesystem::path& real);

} // namespace platform
