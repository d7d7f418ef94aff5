// What the folder as a whole has to be: two files that differ in case alone can't lie in one folder of
// Windows.
#include "rehearsal/check/subjects.h"

namespace rehearsal::check {
namespace {

constexpr Rule layout_rules[] = {
    {"layout-case-twice", Severity::error, "Two names differ in case alone",
     "Windows doesn't tell the names apart, so that only one of the two can lie on the medium there, and it "
     "isn't said which.",
     "Keep the one that belongs there, and delete the other.", "Drivers/lbl.inf beside Drivers/LBL.INF"},
};

} // namespace

std::span<const Rule> rules_of_layout() {
    return layout_rules;
}

void check_layout(const Medium& medium, Findings& findings) {
    const MediumEntry* before = nullptr;
    for (const MediumEntry& entry : medium.entries()) {
        if (before != nullptr && same_text(before->path, entry.path))
            findings.add("layout-case-twice", {entry.path},
                         "it differs from \"" + before->path + "\" in case alone");
        before = &entry;
    }
}

} // namespace rehearsal::check
