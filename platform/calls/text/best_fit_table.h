// The table behind best_fit.h, as tools/best_fit_table.cpp makes it.
#pragma once

#include <cstddef>

namespace platform {

// In the code pages of the bits, from the lowest 1250, 1251, 1252, 932, 936, 949 and 950, as many characters
// as `length` says, from `first` on, become those from `written` on.
struct BestFitRun {
    unsigned char pages;
    unsigned char length;
    char16_t first;
    char16_t written;
};

extern const BestFitRun best_fit_runs[];
extern const std::size_t best_fit_run_count;

} // namespace platform
