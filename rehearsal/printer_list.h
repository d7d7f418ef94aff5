// The printers of a rehearsal's network, as a file lists them.
#pragma once

#include "rehearsal/label_printer.h"

#include <filesystem>
#include <vector>

namespace rehearsal {

// {"printers": [{"model": ..., "name": ..., "location": ..., "delay": ..., "empty": ..., "replies": [...]},
// ...]}, each key with the meaning of the field of PrinterOptions. A reply has either "attributes" or "hex",
// and may have "times". Throws std::runtime_error, "FILE:LINE:COLUMN: REASON", for a file that can't be read,
// is no such list or has no printer or more than a small network has room for.
std::vector<PrinterOptions> read_printer_list(const std::filesystem::path& file);

} // namespace rehearsal
