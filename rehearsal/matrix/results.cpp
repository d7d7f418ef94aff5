#include "rehearsal/matrix/results.h"

#include <algorithm>

namespace rehearsal::matrix {
namespace {

int rank_of(const Result& result) {
    if (result.silent_failure())
        return 0;
    if (result.status != 0)
        return result.cell.fault.empty() ? 1 : 2;
    return 3;
}

} // namespace

void Matrix::sort() {
    std::stable_sort(results.begin(), results.end(),
                     [](const Result& a, const Result& b) { return rank_of(a) < rank_of(b); });
}

bool Matrix::failed() const {
    return std::any_of(results.begin(), results.end(),
                       [](const Result& result) { return result.status != 0 && result.cell.fault.empty(); });
}

} // namespace rehearsal::matrix
