#include "machine/inf_target.h"

#include "machine/text.h"

#include <algorithm>
#include <tuple>

namespace platform {
namespace {

constexpr std::uint32_t workstation = 1;          // VER_NT_WORKSTATION
constexpr std::uint32_t workstation_suites = 256; // VER_SUITE_SINGLEUSERTS

// Decimal, or hexadecimal behind 0x. False for anything else; an empty text leaves the number unset.
bool parse_number(std::u16string_view text, std::optional<std::uint32_t>& number) {
    if (text.empty())
        return true;
    const bool hexadecimal = text.size() > 2 && same_name(text.substr(0, 2), u"0x");
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    const std::uint32_t base = hexadecimal ? 16 : 10;
    std::uint64_t value = 0;
    for (const char16_t c : upper_case(text.substr(hexadecimal ? 2 : 0))) {
        const std::size_t digit = digits.find(c);
        if (digit >= base)
            return false;
        value = std::min<std::uint64_t>(value * base + digit, UINT32_MAX);
    }
    number = static_cast<std::uint32_t>(value);
    return true;
}

// How close a target that fits is; more is closer.
auto closeness(const InfTarget& target) {
    return std::tuple(target.major.value_or(0), target.minor.value_or(0), target.build.value_or(0),
                      target.product_type.has_value(), target.suites.value_or(0) != 0,
                      !target.processor.empty());
}

} // namespace

bool parse_inf_target(std::u16string_view text, InfTarget& target) {
    if (text.size() < 2 || !same_name(text.substr(0, 2), u"NT"))
        return false;
    text.remove_prefix(2);
    target.processor = text.substr(0, text.find(u'.'));
    text.remove_prefix(target.processor.size());
    for (std::optional<std::uint32_t>* number :
         {&target.major, &target.minor, &target.product_type, &target.suites, &target.build}) {
        if (text.empty())
            return true;
        text.remove_prefix(1);
        const std::u16string_view field = text.substr(0, text.find(u'.'));
        if (!parse_number(field, *number))
            return false;
        text.remove_prefix(field.size());
    }
    return text.empty();
}

bool target_fits(const InfTarget& target, std::u16string_view processor, const InfSystem& system) {
    if (!same_name(target.processor.empty() ? std::u16string_view(u"x86") : target.processor, processor))
        return false;
    const auto wanted = std::tuple(target.major.value_or(0), target.minor.value_or(0));
    const auto present = std::tuple(system.major, system.minor);
    if (wanted > present || (wanted == present && target.build.value_or(0) > system.build))
        return false;
    return target.product_type.value_or(workstation) == workstation &&
           (target.suites.value_or(0) & ~workstation_suites) == 0;
}

const InfValue* closest_target(const InfLine& maker, std::u16string_view processor, const InfSystem& system) {
    const InfValue* best = nullptr;
    InfTarget best_target;
    for (std::size_t i = 1; i < maker.values.size(); ++i) {
        InfTarget target;
        if (!parse_inf_target(maker.values[i].text, target) || !target_fits(target, processor, system))
            continue;
        if (best == nullptr || closeness(target) > closeness(best_target)) {
            best = &maker.values[i];
            best_target = target;
        }
    }
    return best;
}

} // namespace platform
