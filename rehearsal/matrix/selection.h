// Which cells of a matrix are run: what --only, --faults and --shard name.
#pragma once

#include "rehearsal/matrix/cells.h"

#include <optional>
#include <string>
#include <vector>

namespace rehearsal::matrix {

// One of several computers' part.
struct Shard {
    std::size_t number = 1; // from 1
    std::size_t count = 1;
    bool operator==(const Shard&) const = default;
};

// "3/8". std::runtime_error when it isn't that.
Shard read_shard(const std::string& text);
std::string shard_text(const Shard& shard);

// A name's parts between '/', from the first on, '*' in them for any text; with a sixth part it names cells
// with a fault, else those without.
class Selection {
public:
    // `faults` is "none", "some" or "all"; no patterns: all cells. std::runtime_error when a pattern has too
    // many parts or names a call that there isn't.
    Selection(std::vector<std::string> patterns, std::string faults);

    bool asks_for_faults() const;

    // What is run first: the cells without a fault that the patterns name or whose calls they ask for, and
    // those with a fault that a pattern names whole. std::runtime_error when a pattern fits none.
    std::vector<Cell> first_cells(const std::vector<Cell>& all) const;

    // The cells with a fault behind a cell without one, of which these calls can fail there.
    std::vector<Cell> faults_of(const Cell& cell, const std::vector<std::string>& calls) const;

private:
    bool wants(const Cell& cell) const;

    std::vector<std::string> patterns_;
    std::string faults_;
};

// The calls of "some": those whose failing users meet, by a stopped service, a policy, a full disk, a missing
// right or a broken network.
const std::vector<std::string>& some_faults();

// One part of the cells. They are spread by their names, so that each part has a bit of everything.
std::vector<Cell> shard_of(std::vector<Cell> cells, const Shard& shard);

} // namespace rehearsal::matrix
