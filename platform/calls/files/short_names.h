// Short names, of the old form 8.3, which the platform gives a file beside its own name.
#pragma once

#include <string>
#include <vector>

namespace platform {

// The short names of one folder's files, empty for a name that is of the form 8.3 itself. Those that come to
// the same are numbered in the order of the names, since nobody knows in which order the files were made. The
// platform keeps a number for a file's life, and from the fifth on mixes a checksum into the name, as it may
// into a very short one; these names go on counting.
std::vector<std::u16string> short_names(const std::vector<std::u16string>& names);

} // namespace platform
