#include "calls/text/best_fit.h"

#include "calls/text/best_fit_table.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>

namespace platform {
namespace {

constexpr std::array<std::uint32_t, 7> code_pages = {1250, 1251, 1252, 932, 936, 949, 950}; // by their bits

} // namespace

std::vector<BestFit> best_fits(std::uint32_t code_page) {
    std::vector<BestFit> fits;
    const auto page = std::find(code_pages.begin(), code_pages.end(), code_page);
    if (page == code_pages.end())
        return fits;
    const unsigned bit = 1u << std::distance(code_pages.begin(), page);
    for (const BestFitRun& run : std::span(best_fit_runs, best_fit_run_count))
        for (unsigned step = 0; (run.pages & bit) != 0 && step < run.length; ++step)
            fits.push_back(
                {static_cast<char16_t>(run.first + step), static_cast<char16_t>(run.written + step)});
    return fits;
}

} // namespace platform
