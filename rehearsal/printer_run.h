// A label printer that serves until a limit or a signal.
#pragma once

#include "rehearsal/label_printer.h"

namespace rehearsal {

// What happens is told on standard output, a line each, the first beginning with "ready"; it also ends when
// nobody reads that any more. The exit status: wrong_usage, with the reason on standard error, when the
// printer can't be set up.
int run_printer(const PrinterOptions& options);

} // namespace rehearsal
