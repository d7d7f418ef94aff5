// The cells of a matrix: what each rehearses, as the machine and the user's actions that it is made of.
#pragma once

#include "machine/machine.h"

#include <string>
#include <vector>

namespace rehearsal::matrix {

// What the medium's driver is, by the program's own reader.
struct Package {
    std::string driver;  // UTF-8
    std::string version; // "1.2.3.4"
    std::string model;   // as printers tell it, with underscores; UTF-8
    bool usb = false;
};

// std::runtime_error when the program finds no driver on the medium.
Package read_package(const std::string& medium);

struct Cell {
    std::string language; // "en-US", "de", ...
    std::string system;   // "x86" or "x64"
    std::string windows;  // "vista", "7", "current"
    char state = 'D';     // the starting state, A to E
    std::string road;     // "network", "two", "typed", "none", "usb", "leave"
    std::string fault;    // a call that fails at its first coming; empty: none

    std::string name() const; // "de/x64/current/D/network", and "/CALL" behind it with a fault
};

// All cells without a fault that the package can come to: a driver with USB has the starting states A, C and
// D, one without B, C and E.
std::vector<Cell> all_cells(const Package& package);

// Those of one language, system and Windows: what a failing call does doesn't depend on them.
std::vector<Cell> base_cells(const Package& package);

// A cell for each of the calls, which fails at its first coming.
void add_faults(std::vector<Cell>& cells, const Cell& road, const std::vector<std::string>& calls);

// The cells whose name fits one of the patterns: parts between '/', from the first on, '*' for any text.
// std::runtime_error when a pattern fits none.
std::vector<Cell> only_cells(const std::vector<Cell>& cells, const std::vector<std::string>& patterns);

// Every count-th cell, from the number-th on (from 1), so that shards take about as long as each other.
std::vector<Cell> shard_of(const std::vector<Cell>& cells, std::size_t number, std::size_t count);

std::string machine_text(const Cell& cell, const Package& package); // the machine file
std::string script_text(const Cell& cell);                          // the user's actions

} // namespace rehearsal::matrix
