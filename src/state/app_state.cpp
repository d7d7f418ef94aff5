#include "state/app_state.h"

namespace {

// Filled in when the program starts. As constant data its 75,000 bytes, nearly all of them zero, would stand
// in the program's file.
__attribute__((noinline)) AppState fresh_state() {
    return {};
}

} // namespace

AppState app = fresh_state();
