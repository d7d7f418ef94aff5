#include "fuzz/targets.h"
#include "rehearsal/check/catalogue_file.h"

void fuzz::catalogue(std::string_view input) {
    std::string problem;
    const auto read = rehearsal::check::read_catalogue(input, problem);
    require(read.has_value() || !problem.empty(), "refused without a reason");
}
