// The parts of the INF's check. Each adds findings of the rules that inf_rules.cpp lists.
#pragma once

#include "rehearsal/check/finding.h"
#include "rehearsal/check/inf_view.h"
#include "rehearsal/check/medium.h"

namespace rehearsal::check {

// Why the setup doesn't accept the file.
void explain_refusal(const Medium& medium, const DriverInf& inf, Findings& findings);
// What the two readers see differently in the file that the setup takes. Whether they agree in its names.
bool compare_readers(const Medium& medium, const DriverInf& inf, Findings& findings);
// What the system's reader refuses, and what it reads but nobody can have meant.
void check_inf_language(const DriverInf& inf, Findings& findings);
// DriverVer's date and version.
void check_driver_version(const DriverInf& inf, Findings& findings);
// The driver's and the model's names, which the setup makes folders, shortcuts and queues of.
void check_inf_names(const Medium& medium, const DriverInf& inf, Findings& findings);

// Letters beyond 7 bits anywhere in the file, those of comments and of the two names left out.
void check_inf_letters(const Medium& medium, const DriverInf& inf, Findings& findings);

} // namespace rehearsal::check
