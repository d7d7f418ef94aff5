// What came of the cells of a matrix, and the forms in which that is written. None of them runs anything.
#pragma once

#include "rehearsal/matrix/selection.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace rehearsal::matrix {

// How a run ended, the worst first.
enum class Ending {
    silent,     // the user was told of a success, and something is missing
    failed,     // though no call was made to fail
    unmodelled, // the layer refused a call, or the run didn't come to its end
    unheard,    // a call failed, and no box told of a failure or a success
    told,       // a call failed, and a box told of it
    harmless,   // a step failed, and all is there
    well
};

inline constexpr Ending endings[] = {Ending::silent, Ending::failed,   Ending::unmodelled, Ending::unheard,
                                     Ending::told,   Ending::harmless, Ending::well};

const char* name_of(Ending ending);    // one word, for programs
const char* meaning_of(Ending ending); // a few words, for people

struct Result {
    Cell cell;
    int status = 0;                   // as trk rehearse would have it: 0 good, 1 not good, 3 not modelled
    std::string verdict;              // one line, UTF-8
    std::string box;                  // the last message box, one line; empty: none
    bool success_box = false;         // a box claimed a success
    bool failure_box = false;         // a box told of a failure
    int exit_code = 0;                // the program's
    std::vector<std::string> missing; // what should be on the machine and isn't
    std::vector<std::string> stayed;  // what the run left there, as "driver NAME"

    Ending ending() const;
};

struct Matrix {
    std::string medium;            // as it was named
    std::string driver, version;   // of its driver
    std::string faults = "none";   // as --faults
    std::vector<std::string> only; // as --only
    std::vector<Shard> shards;     // which parts are here; empty: the whole
    std::vector<Result> results;
    std::size_t not_run = 0; // cells that were left out
    bool more = false;       // and further ones, which aren't counted
    std::string cut;         // why, in a few words; empty: all was run

    void sort(); // by ending, the worst first; within one by cell
    std::size_t count(Ending ending, bool with_fault) const;
    // Whether all was run, and each run without a fault ended well.
    bool passed() const;
};

// "420 runs: 419 ended well, 1 failed; 80 runs with a failing call: ..." and what wasn't run, on one line.
std::string summary_of(const Matrix& matrix);

// Runs of one state and road without a fault, or of one fault, that ended alike.
struct Group {
    std::string name; // "D/network" or "AddPrinterW"
    Ending ending = Ending::well;
    std::vector<const Result*> results;
};

// By ending, the worst first; the matrix must be sorted, and outlive them.
std::vector<Group> groups_of(const Matrix& matrix);

// Where runs without a fault ended well: a row a state and road, a column a system and Windows.
struct Overview {
    struct Count {
        std::size_t good = 0, all = 0;
    };
    struct Row {
        std::string name; // "D/network"
        std::vector<Count> counts;
    };
    std::vector<std::string> columns; // "x64/current"
    std::vector<Row> rows;
};

Overview overview_of(const Matrix& matrix);

// What comes of a failing call: by its name, how many runs had each ending, in the order of `endings`.
struct FaultRow {
    std::string call;
    std::vector<std::size_t> counts;
};

std::vector<FaultRow> faults_of(const Matrix& matrix);

// As a shell reads it: in quotes where it has other characters than those that no shell looks at.
std::string shell_word(const std::string& text);

// The command that repeats the cell alone, as a shell reads it.
std::string repeat_command(const Matrix& matrix, const Cell& cell);

void print_text(std::ostream& out, const Matrix& matrix);
void print_json(std::ostream& out, const Matrix& matrix); // "trk-matrix-1"
void print_junit(std::ostream& out, const Matrix& matrix);

std::string result_text(const Result& result); // one result as JSON, on one line
Result read_result(const std::string& text);   // and back; std::runtime_error when it isn't that

// Reads what print_json wrote, of one or several computers, into one. std::runtime_error with a file's name
// when it isn't that, is of another driver or has a run that another has too.
Matrix merge_files(const std::vector<std::string>& files);

} // namespace rehearsal::matrix
