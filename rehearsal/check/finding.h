// What a check of a distribution folder says: findings as plain data, the rules that they come from, and the
// collector that checks write to. Nothing here knows a check or a printer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::check {

enum class Severity {
    error,   // an installation fails or lacks something
    warning, // it works here and now, but not everywhere or not for long
    note     // can't be judged off Windows: said, and left to its reader
};

// Where in the medium. Lines and columns count from 1; a column counts characters of the file's own encoding.
struct Place {
    std::string file; // below the medium, with '/', as spelt there; empty: the medium itself
    std::size_t line = 0;
    std::size_t column = 0; // both 0: the file as a whole
};

struct Finding {
    std::string id; // of a rule; stable
    Severity severity = Severity::error;
    Place place;
    std::string reason; // UTF-8, one line, without a full stop at its end
    std::string remedy; // UTF-8, one sentence that tells what to do
};

// What stands behind an id. Texts are UTF-8 and whole sentences.
struct Rule {
    const char* id; // lower case with hyphens, its subject in front: "inf-class"
    Severity severity;
    const char* title;   // what is wrong, in a few words, no full stop
    const char* cause;   // why it matters and what happens in an installation
    const char* remedy;  // what to do; also each finding's remedy when it has none of its own
    const char* example; // lines of a file that are wrong, or what such a finding is about
};

class Findings {
public:
    // With the rule's severity. An id that no subject has is a fault of the check: std::logic_error.
    void add(std::string_view id, Place place, std::string reason, std::string remedy = {});
    const std::vector<Finding>& list() const { return list_; }

private:
    std::vector<Finding> list_;
};

} // namespace rehearsal::check
