#include "rehearsal/fault_names.h"

#include "calls/run/call_names.h"
#include "machine/json_document.h"
#include "machine/whole_file.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <stdexcept>

namespace rehearsal {
namespace {

// "FILE:LINE:COLUMN" of the call's name in the machine's file; the file alone when it has no such fault.
std::string place_of(const std::filesystem::path& file, std::size_t fault) {
    using Pointer = platform::Json::json_pointer;
    const auto document = platform::parse_json(platform::read_whole_file(file).value_or("{}"));
    const Pointer call("/faults/" + std::to_string(fault) + "/call");
    if (!document.root.contains(call))
        return file.string();
    const platform::JsonSpot spot = document.spot_of(document.root[call]);
    return file.string() + ":" + std::to_string(spot.line) + ":" + std::to_string(spot.column);
}

} // namespace

void check_fault_names(const platform::Machine& machine, const std::filesystem::path& file) {
    const std::vector<std::string>& names = platform::call_names();
    for (std::size_t index = 0; index < machine.faults.size(); ++index) {
        const std::string& call = machine.faults[index].call;
        if (!std::binary_search(names.begin(), names.end(), call))
            throw std::runtime_error(place_of(file, index) + ": no call is named \"" + shown_text(call) +
                                     "\"" + did_you_mean(call, names));
    }
}

} // namespace rehearsal
