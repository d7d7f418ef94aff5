// Runs a target over every file below folders: fuzz_replay TARGET FOLDER... An input that once was a finding,
// or that reaches a place that no other does, is so looked at again with each run of the tests.
#include "fuzz/targets.h"
#include "machine/whole_file.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace {

constexpr std::size_t most_starts = 40; // of one input

std::size_t replay(const fuzz::Target& target, const std::filesystem::path& folder) {
    std::size_t inputs = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        std::cout << entry.path().string()
                  << std::endl; // the last one told is the one that ended the process
        const std::string input = platform::read_whole_file(entry.path()).value();
        target.run(input);
        // Starts of it too: most faults of readers are at an end that comes too early.
        for (std::size_t size = 0; size < input.size(); size += 1 + input.size() / most_starts)
            target.run(std::string_view(input).substr(0, size));
        ++inputs;
    }
    return inputs;
}

} // namespace

int main(int argc, char** argv) {
    const auto found =
        std::find_if(fuzz::targets.begin(), fuzz::targets.end(),
                     [&](const fuzz::Target& target) { return argc > 2 && target.name == argv[1]; });
    if (found == fuzz::targets.end()) {
        std::cerr << "usage: fuzz_replay TARGET FOLDER...\n";
        return 2;
    }
    for (int place = 2; place < argc; ++place) {
        if (replay(*found, argv[place]) == 0) {
            std::cerr << "no input in " << argv[place] << "\n";
            return 1;
        }
    }
    return 0;
}
