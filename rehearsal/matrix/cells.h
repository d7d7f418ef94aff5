// The cells of a matrix: what each rehearses, as the machine and the user's actions that it is made of.
#pragma once

#include "machine/machine.h"
#include "rehearsal/action_script.h"
#include "rehearsal/medium_driver.h"

#include <compare>
#include <string>
#include <vector>

namespace rehearsal::matrix {

struct Cell {
    std::string language; // of the system: "en-US", "de", ...
    std::string system;   // "x86" or "x64"
    std::string windows;  // "vista", "7", "current"
    char state = 'D';     // the main dialog's starting state, A to E
    std::string road;     // "network", "two", "typed", "none", "usb", "leave"
    std::string fault;    // a call that fails at its first coming; empty: none

    std::string name() const; // "de/x64/current/D/network", and "/CALL" behind it with a fault
    std::string kind() const; // what all languages and systems have in common: "D/network"
};

// In the order of the tables, not of the letters; a cell's faults stand behind it.
std::strong_ordering operator<=>(const Cell& a, const Cell& b);
bool operator==(const Cell& a, const Cell& b);

// All that a medium's driver can come to, without a fault. One with USB starts in state A (its version is
// installed), C (another one) or D (none), one without in B, C or E. In A there is no USB road, and in C
// nothing but to leave.
std::vector<Cell> all_cells(const MediumDriver& driver);

std::string machine_text(const Cell& cell, const MediumDriver& driver); // as a machine file
std::string script_text(const Cell& cell);                              // as a file of actions

} // namespace rehearsal::matrix
