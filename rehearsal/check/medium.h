// A distribution folder as a check sees it: listed once, each file read at most once.
#pragma once

#include "rehearsal/check/finding.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <typeindex>
#include <vector>

namespace rehearsal::check {

struct MediumEntry {
    enum class Kind { file, folder, other }; // other: neither, such as a pipe; never read
    std::string path;                        // below the medium, with '/', as spelt there
    Kind kind = Kind::file;
    std::uintmax_t size = 0; // bytes; files only

    std::string_view name() const; // the last part of the path
    bool is_file() const { return kind == Kind::file; }
    bool is_folder() const { return kind == Kind::folder; }
};

class Medium {
public:
    // Lists the folder with all below it; links are followed. std::runtime_error when it can't be listed.
    explicit Medium(std::filesystem::path folder);

    const std::filesystem::path& folder() const { return folder_; }
    const std::vector<MediumEntry>& entries() const {
        return entries_;
    } // sorted by path without regard to case
    std::size_t file_count() const;

    // The entry at the path, which has '/' or '\' between its parts: the exact spelling before another case,
    // as the platform's file names match without regard to it. Null when there is none.
    const MediumEntry* find(std::string_view path) const;
    const MediumEntry* find_file(std::string_view path) const; // null also for a folder
    // What lies directly in the folder ("" is the medium itself), sorted.
    std::vector<const MediumEntry*> in_folder(std::string_view folder) const;

    // The file's bytes. std::runtime_error with its name when it can't be read.
    const std::string& bytes(const MediumEntry& file) const;
    // The place of a byte in a text file. Characters are UTF-16 units behind a byte order mark of UTF-16,
    // else UTF-8 sequences where the line is UTF-8, else bytes.
    Place place(const MediumEntry& file, std::size_t offset) const;

    // What several subjects read out of the medium is made once: by `make`, a routine from a Medium to a T.
    template<class T, class Make>
    const T& kept(Make make) const {
        auto& slot = kept_[std::type_index(typeid(T))];
        if (!slot)
            slot = std::make_shared<T>(make(*this));
        return *static_cast<const T*>(slot.get());
    }

private:
    void list(const std::filesystem::path& folder, const std::string& below, int depth);

    std::filesystem::path folder_;
    std::vector<MediumEntry> entries_;
    std::map<std::string, std::size_t> by_folded_path_; // the first entry of that path in lower case
    mutable std::map<std::string, std::string> bytes_;
    mutable std::map<std::type_index, std::shared_ptr<void>> kept_;
};

// Without regard to case, in UTF-8.
std::string folded(std::string_view text);
bool same_text(std::string_view a, std::string_view b);

// The candidate with the fewest differing letters, case apart, when it is near enough to be a slip of the one
// written; empty when none is, and when one of them is the text itself.
std::string_view nearest(std::string_view written, const std::vector<std::string_view>& candidates);

// "PATH isn't on the medium, and ASKER it", and the nearest name that lies in the same folder.
std::string missing_file(const Medium& medium, std::string_view path, const std::string& asker);
// "the package for x86 needs", "the packages for x86 and amd64 need".
std::string needed_by_packages(const std::vector<const char*>& environments);

} // namespace rehearsal::check
