#include "machine/fault_rules.h"

#include <algorithm>

namespace platform {
namespace {

bool same_letter(char a, char b) {
    const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return fold(a) == fold(b);
}

bool contains(std::string_view text, std::string_view part) {
    return part.empty() ||
           std::search(text.begin(), text.end(), part.begin(), part.end(), same_letter) != text.end();
}

} // namespace

const Fault* FaultCounts::due(const std::vector<Fault>& faults, std::string_view call,
                              std::string_view argument) {
    for (std::size_t index = 0; index < faults.size(); ++index) {
        const Fault& fault = faults[index];
        if (fault.call != call || !contains(argument, fault.argument))
            continue;
        const unsigned match = ++matches_[index];
        if (match == fault.nth || (fault.from_then_on && match > fault.nth))
            return &fault;
    }
    return nullptr;
}

} // namespace platform
