#include "rehearsal/fault_names.h"

#include "calls/run/call_names.h"
#include "rehearsal/shown_text.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace rehearsal {
namespace {

// "FILE:LINE:COLUMN" of the first place where the file has the name in quotes; the file alone when it is
// nowhere in that form.
std::string place_of(const std::filesystem::path& file, const std::string& name) {
    std::ifstream stream(file);
    std::string text;
    for (std::size_t line = 1; std::getline(stream, text); ++line)
        if (const std::size_t at = text.find('"' + name + '"'); at != text.npos)
            return file.string() + ":" + std::to_string(line) + ":" + std::to_string(at + 1);
    return file.string();
}

} // namespace

void check_fault_names(const platform::Machine& machine, const std::filesystem::path& file) {
    const std::vector<std::string>& names = platform::call_names();
    for (const platform::Fault& fault : machine.faults)
        if (!std::binary_search(names.begin(), names.end(), fault.call))
            throw std::runtime_error(place_of(file, fault.call) + ": no call is named \"" +
                                     shown_text(fault.call) + "\"" + did_you_mean(fault.call, names));
}

} // namespace rehearsal
