// The page of trk matrix.
#pragma once

#include "rehearsal/matrix/results.h"

#include <string>

namespace rehearsal::pages {

// The matrix must be sorted.
std::string matrix_page(const matrix::Matrix& matrix);

} // namespace rehearsal::pages
