// The moment in which a run's results take their places: all of them or none, whatever ends the program or
// the machine in between.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rehearsal {

// What is to stand at `target`: a file or folder beside it. Afterwards the old one stands at `fresh`, if
// there was one.
struct Replacement {
    std::filesystem::path fresh;
    std::filesystem::path target;
};

// Writes down in a file beside the machine's, its name with ".commit" behind it, what is going to be renamed,
// renames, and deletes the file: a run that finds it finishes the work. Without a machine file nothing is
// written down. Throws std::runtime_error with the reason when a name can't be changed; those that were are
// then changed back.
void change_over(const std::filesystem::path& machine_file, const std::vector<Replacement>& all);

// Whether a run has left such a file.
bool was_cut_off(const std::filesystem::path& machine_file);

// Finishes what an earlier run was cut off in, under the machine's lock; whether there was something. Throws
// std::runtime_error when it can't be finished.
bool finish_change_over(const std::filesystem::path& machine_file);

// Where a new file or folder is put together that is to stand at `target`.
std::filesystem::path name_beside(const std::filesystem::path& target);

// Deletes what runs that are no more have left beside the target.
void clear_leftovers(const std::filesystem::path& target);

} // namespace rehearsal
