// Files that a run writes: known to be writable before it begins, and in their places only when they are
// whole.
#pragma once

#include "machine/machine.h"
#include "rehearsal/changeover.h"
#include "rehearsal/unfinished.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace rehearsal {

class OutputFile {
public:
    // Opens a new file beside the wanted one; a pipe or device that is there is opened itself. Throws
    // std::runtime_error with file and reason.
    explicit OutputFile(std::filesystem::path path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(const std::string& text); // all of it, and onto the disk; throws as above
    // What is to be renamed behind write; nothing for a pipe or device.
    std::optional<Replacement> replacement() const;
    // The new file is locked, as the old one is by MachineLock.
    void lock();

private:
    const std::filesystem::path path_;
    std::unique_ptr<Unfinished> beside_; // none for a pipe or device
    int descriptor_ = -1;
};

// The whole file, or none; throws as above.
void write_file(const std::filesystem::path& path, const std::string& text);

// The machine file, for one run at a time.
class MachineLock {
public:
    // Finishes what an earlier run was cut off in, and says so on standard error. Throws std::runtime_error
    // when another run has it, or it can't be opened.
    explicit MachineLock(const std::filesystem::path& file);
    ~MachineLock();
    MachineLock(const MachineLock&) = delete;
    MachineLock& operator=(const MachineLock&) = delete;

private:
    void take(const std::filesystem::path& file);

    int descriptor_ = -1;
};

// Writes what a run has left of the machine, and locks it; what is to be renamed then.
Replacement finished_machine(OutputFile& file, const platform::Machine& machine);

// Throws std::runtime_error when two of the named paths are one file: one would take the other's place.
void refuse_same_file(const std::string& first_name, const std::filesystem::path& first,
                      const std::string& second_name, const std::filesystem::path& second);

} // namespace rehearsal
