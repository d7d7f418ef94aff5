// Runs side by side, in processes that are started for them: what a run breaks stops no other.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace sweep {

struct ProcessSettings {
    unsigned jobs = 1;
    unsigned seconds = 60;  // that a process may take
    std::size_t batch = 16; // runs of one process, one after the other: starting it takes longer than a run
};

// Runs body(0) to body(count - 1), begun in this order, and hands each one's complaints to `ended`: what body
// returned; or that the run crashed or took too long, with the last that was printed. An empty text is a good
// run. What runs print goes nowhere else. Those behind one that broke its process go to another. To be called
// by a process of one thread.
void run_side_by_side(std::size_t count, const ProcessSettings& settings,
                      const std::function<std::string(std::size_t)>& body,
                      const std::function<void(std::size_t, const std::string&)>& ended);

} // namespace sweep
