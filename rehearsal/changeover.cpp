#include "rehearsal/changeover.h"

#include "machine/whole_file.h"
#include "rehearsal/output_file.h"
#include "rehearsal/unfinished.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace rehearsal {
namespace {

constexpr char beside_mark[] = ".new-";
constexpr char old_mark[] = ".old";
constexpr char gone_mark[] = ".gone"; // of what a signal is about to delete

// A replacement that is written down: what stands at the target, once it is done, is known by its number.
struct Entry {
    Replacement names;
    ino_t number = 0;
};

fs::path record_of(const fs::path& machine_file) {
    return fs::weakly_canonical(fs::absolute(machine_file)).string() + ".commit";
}

[[noreturn]] void fail(const fs::path& path, const char* what) {
    throw std::runtime_error(path.string() + ": " + what + ": " + std::strerror(errno));
}

ino_t number_of(const fs::path& path) {
    struct stat facts = {};
    return lstat(path.c_str(), &facts) == 0 ? facts.st_ino : 0;
}

// Names that were changed in a folder are on the disk when it is; with `all` what lies below it, too.
void sync_folder(const fs::path& folder, bool all = false) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    all ? syncfs(descriptor) : fsync(descriptor);
    close(descriptor);
}

// With the old one put aside first, where the file system can't exchange two names.
bool rename_around(const Replacement& names) {
    const std::string aside = names.fresh.string() + old_mark;
    if (rename(names.target.c_str(), aside.c_str()) != 0)
        return false;
    if (rename(names.fresh.c_str(), names.target.c_str()) == 0)
        return rename(aside.c_str(), names.fresh.c_str()) == 0;
    const int error = errno;
    rename(aside.c_str(), names.target.c_str());
    errno = error;
    return false;
}

bool put_in_place(const Replacement& names) {
    if (number_of(names.target) == 0)
        return rename(names.fresh.c_str(), names.target.c_str()) == 0;
    return renameat2(AT_FDCWD, names.fresh.c_str(), AT_FDCWD, names.target.c_str(), RENAME_EXCHANGE) == 0 ||
           (errno == EINVAL && rename_around(names));
}

// There was an old one if something is at the fresh name now.
void put_back(const Replacement& names) {
    if (number_of(names.fresh) != 0)
        put_in_place(names);
    else
        rename(names.target.c_str(), names.fresh.c_str());
}

// Each path ends in a NUL, which none can have.
std::string text_of(const std::vector<Entry>& entries) {
    std::string text;
    for (const Entry& entry : entries)
        for (const std::string& part :
             {entry.names.fresh.string(), entry.names.target.string(), std::to_string(entry.number)})
            text += part + '\0';
    return text;
}

std::vector<Entry> entries_of(const std::string& text) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0, end = 0; (end = text.find('\0', begin)) != text.npos; begin = end + 1)
        parts.push_back(text.substr(begin, end - begin));
    std::vector<Entry> entries;
    for (std::size_t index = 0; index + 3 <= parts.size(); index += 3)
        entries.push_back(
            {{parts[index], parts[index + 1]}, std::strtoull(parts[index + 2].c_str(), {}, 10)});
    return entries;
}

// The record is in its place and on the disk, or not at all.
void write_record(const fs::path& record, const std::vector<Entry>& entries) {
    OutputFile file(record);
    file.write(text_of(entries));
    const std::optional<Replacement> names = file.replacement();
    if (!names || rename(names->fresh.c_str(), names->target.c_str()) != 0)
        fail(record, "can't be written");
    sync_folder(record.parent_path());
}

void remove_record(const fs::path& record, const std::vector<Entry>& entries) {
    for (const Entry& entry : entries)
        sync_folder(entry.names.target.parent_path());
    std::error_code ignored;
    fs::remove(record, ignored);
}

// The process that the name's end tells of, 0 when it tells of none.
pid_t maker_of(const std::string& end) {
    const std::size_t digits = static_cast<std::size_t>(
        std::find_if_not(end.begin(), end.end(),
                         [](unsigned char letter) { return std::isdigit(letter) != 0; }) -
        end.begin());
    const std::string rest = end.substr(digits);
    const bool ours = digits != 0 && digits < 10 && (rest.empty() || rest == old_mark || rest == gone_mark);
    return ours ? std::stoi(end.substr(0, digits)) : 0;
}

} // namespace

void change_over(const fs::path& machine_file, const std::vector<Replacement>& all) {
    std::vector<Entry> entries;
    for (const Replacement& names : all) {
        if (fs::is_directory(names.fresh))
            sync_folder(names.fresh, true);
        entries.push_back({{fs::absolute(names.fresh), fs::absolute(names.target)}, number_of(names.fresh)});
    }
    const fs::path record = machine_file.empty() ? fs::path() : record_of(machine_file);
    if (!machine_file.empty())
        write_record(record, entries);
    for (std::size_t index = 0; index < all.size(); ++index) {
        if (put_in_place(all[index]))
            continue;
        const int error = errno;
        while (index > 0)
            put_back(all[--index]);
        if (!machine_file.empty())
            remove_record(record, entries);
        errno = error;
        fail(all[index].target, "can't be written");
    }
    if (!machine_file.empty())
        remove_record(record, entries);
    results_stand();
}

bool was_cut_off(const fs::path& machine_file) {
    return fs::exists(record_of(machine_file));
}

bool finish_change_over(const fs::path& machine_file) {
    const fs::path record = record_of(machine_file);
    clear_leftovers(record);
    const std::optional<std::string> text = platform::read_whole_file(record);
    if (!text)
        return false;
    const std::vector<Entry> entries = entries_of(*text);
    for (const Entry& entry : entries) {
        if (number_of(entry.names.target) == entry.number)
            continue;
        if (number_of(entry.names.fresh) != entry.number)
            throw std::runtime_error(record.string() + ": an earlier run was cut off, and " +
                                     entry.names.fresh.string() + ", which belongs at " +
                                     entry.names.target.string() +
                                     ", is gone; delete the record to go on with what there is");
        if (!put_in_place(entry.names))
            fail(entry.names.target, "can't be written");
    }
    remove_record(record, entries);
    for (const Entry& entry : entries)
        delete_tree(entry.names.fresh);
    return true;
}

fs::path name_beside(const fs::path& target) {
    return target.string() + beside_mark + std::to_string(getpid());
}

void clear_leftovers(const fs::path& target) {
    const std::string begin = target.filename().string() + beside_mark;
    const fs::path folder = fs::absolute(target).parent_path();
    std::vector<fs::path> leftovers;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
        const std::string name = entry.path().filename().string();
        const pid_t maker = name.starts_with(begin) ? maker_of(name.substr(begin.size())) : 0;
        if (maker > 0 && kill(maker, 0) != 0 && errno == ESRCH)
            leftovers.push_back(entry.path());
    }
    for (const fs::path& leftover : leftovers)
        delete_tree(leftover);
}

} // namespace rehearsal
