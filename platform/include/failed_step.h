// How the program tells a rehearsal which of its steps failed, so that nobody has to guess it from the log's
// words. The Windows programs have a header of the same name, in which none of it does anything.
#pragma once

#include "windef.h"

// A line goes to the log; where there is no log to take it, its format alone is handed over.
void line_logged(const WCHAR* line);

// The line that this thread composed last tells of a failed step.
void line_failed();

// A step failed that has no line of its own; `what` names it: a call, a path.
void step_failed(const WCHAR* what);

// The next box with the exclamation icon is a warning, behind which the run goes on.
void warning_follows();
