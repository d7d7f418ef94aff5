// The program's own readers, called on a medium: what they take from its files is what an installation gets.
#pragma once

#include "machine/machine.h"
#include "rehearsal/check/medium.h"

#include <functional>
#include <string>

namespace rehearsal::check {

// Calls `read` where every routine of the program can be called: the medium is the current folder, as
// D:\medium, and the program's state is new. Gives what was logged meanwhile, in UTF-8. The machine's code
// page and locale are those the readers go by. Not to be called from within `read`.
std::string with_program(const Medium& medium, const std::function<void()>& read,
                         platform::Machine machine = platform::default_machine());

} // namespace rehearsal::check
