// A machine for the targets that need the platform's calls. Making one costs more than most of what is
// tested, so one serves many inputs; a target leaves in it what it found.
#pragma once

#include "harness/test_session.h"

namespace fuzz {

class Machine : public TestSession {
public:
    // With its queue `Label`, started, and without a log, which would grow.
    Machine();
};

// The one in use. A fresh one comes now and then, as the journal of the calls grows.
Machine& machine();

// Puts the bytes into a file of the medium that the program then reads.
void put(const char* path, std::string_view bytes);

} // namespace fuzz
