// Where the process takes libraries from.
#pragma once

// Limits the search for libraries to the system folder, so that a file planted beside this elevated program
// isn't loaded. To be called before anything else is, as it doesn't touch what is loaded already. Does
// nothing where the platform has no such limit, and on Vista, where the shell can't save links once the limit
// is set.
void limit_library_search();
