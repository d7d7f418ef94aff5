// What came of the cells of a matrix, and the forms in which that is written. None of them runs anything.
#pragma once

#include "rehearsal/matrix/cells.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace rehearsal::matrix {

struct Result {
    Cell cell;
    int status = 0;                   // trk rehearse's: 0 good, 1 not good, 2 unreadable, 3 not modelled
    std::string verdict;              // one line, UTF-8
    std::string box;                  // the last message box, one line; empty: none
    bool success_box = false;         // that box claims a success
    int exit_code = 0;                // the program's
    std::vector<std::string> missing; // what should be on the machine and isn't
    std::vector<std::string> stayed;  // what the run left there: driver, ports, queues, folders

    std::vector<std::string> calls; // that can fail on this road; kept for further cells, not written

    // The user was told of a success, and it isn't one.
    bool silent_failure() const { return status != 0 && success_box; }
};

struct Matrix {
    std::string medium; // as it was named
    std::vector<Result> results;
    std::size_t not_run = 0; // cells that the time limit or an interrupt left out

    // Silent failures first, then other failures without a fault, then those with one, then the rest; within
    // each in the order of the cells.
    void sort();
    // Whether a run without a fault failed.
    bool failed() const;
};

void print_text(std::ostream& out, const Matrix& matrix);
void print_json(std::ostream& out, const Matrix& matrix);
void print_junit(std::ostream& out, const Matrix& matrix); // a case for each cell without a fault
void print_html(std::ostream& out, const Matrix& matrix);  // one self-contained page with filters

// Reads what print_json wrote. std::runtime_error with the file's name when it isn't that.
Matrix read_json(const std::string& file);

} // namespace rehearsal::matrix
