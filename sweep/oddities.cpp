#include "sweep/oddities.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace sweep {
namespace {

struct Oddity {
    std::string_view call;      // that fails, or is lied about
    std::string_view complaint; // its beginning
    const char* reason;
};

constexpr char other_places[] =
    "the log lies, or the shortcuts are called, as on a system that tells no more";
constexpr char other_name[] = "a folder whose name doesn't convert is taken for another package's";

constexpr Oddity oddities[] = {
    {"GetVersionExW", "silent: other files", other_places},
    {"RegOpenKeyExW", "silent: other files", other_places},
    {"RegQueryValueExW", "silent: other files", other_places},
    {"ExpandEnvironmentStringsW", "silent: other files", other_places},
    {"WideCharToMultiByte", "silent success: driver package", other_name},
};

} // namespace

bool is_known(const Case& one, const std::string& complaint) {
    return std::any_of(std::begin(oddities), std::end(oddities), [&](const Oddity& odd) {
        return one.call.name == odd.call && complaint.starts_with(odd.complaint);
    });
}

} // namespace sweep
