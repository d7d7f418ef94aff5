#include "rehearsal/new/new_medium.h"

#include "rehearsal/exit_status.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal::skeleton {
namespace {

std::string today() {
    const std::chrono::year_month_day date(
        std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now()));
    char text[32];
    std::snprintf(text, sizeof text, "%02u/%02u/%04d", static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(date.year()));
    return text;
}

// A folder beside the one that is wanted, which takes its name only when it is whole.
class HalfMadeFolder {
public:
    explicit HalfMadeFolder(const fs::path& beside) {
        std::string name = fs::path(beside).concat(".new-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no folder can be made there: " + std::string(std::strerror(errno)));
        path = name;
        fs::permissions(path, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                                  fs::perms::others_read | fs::perms::others_exec);
    }
    ~HalfMadeFolder() {
        std::error_code ignored;
        if (!path.empty())
            fs::remove_all(path, ignored);
    }
    HalfMadeFolder(const HalfMadeFolder&) = delete;
    HalfMadeFolder& operator=(const HalfMadeFolder&) = delete;

    // The platform's rename takes an empty folder's place and no other's.
    void become(const fs::path& folder) {
        if (std::rename(path.c_str(), folder.c_str()) != 0)
            throw std::runtime_error(std::strerror(errno));
        path.clear();
    }

    fs::path path;
};

void write_file(const fs::path& file, const std::string& bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    if (!(out << bytes).flush())
        throw std::runtime_error(file.filename().string() + " can't be written: " + std::strerror(errno));
}

fs::path without_end_separator(const fs::path& folder) {
    const fs::path whole = folder.lexically_normal();
    return whole.has_filename() ? whole : whole.parent_path();
}

void print_list(const char* heading, const std::vector<Missing>& list) {
    std::cout << heading << "\n";
    for (const Missing& one : list) {
        char begin[64];
        std::snprintf(begin, sizeof begin, "  %-32s", one.path.c_str());
        std::cout << begin << " " << one.what << "\n";
    }
}

int refuse(const std::string& reason) {
    std::cerr << "trk: " << reason << "\n";
    return wrong_usage;
}

} // namespace

void write_skeleton(const NewOptions& options) {
    const fs::path folder = without_end_separator(options.folder);
    if (fs::exists(folder) && !(fs::is_directory(folder) && fs::is_empty(folder)))
        throw std::runtime_error("is there already and not an empty folder");
    if (folder.has_parent_path())
        fs::create_directories(folder.parent_path());
    HalfMadeFolder made(folder);
    for (const SkeletonFile& file : skeleton_files(options, today()))
        write_file(made.path / file.path, file.bytes);
    for (const char* empty : {"Drivers/32-bit", "Drivers/64-bit"})
        fs::create_directories(made.path / empty);
    made.become(folder);
}

int new_medium(const NewOptions& options) {
    if (const std::string reason = refuse_names(options); !reason.empty())
        return refuse(reason);
    try {
        write_skeleton(options);
    } catch (const std::exception& error) {
        return refuse(options.folder.string() + ": " + error.what());
    }
    print_list("Only the maker has these; trk check names them until they are there:",
               missing_files(options));
    print_list("These are examples to be replaced:", texts_to_replace(options));
    std::cout << "Next: trk check " << options.folder.string() << "\n";
    return ended_well;
}

} // namespace rehearsal::skeleton
