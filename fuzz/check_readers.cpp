#include "fuzz/targets.h"
#include "harness/test_session.h"
#include "rehearsal/check/check.h"

#include <array>

namespace {

// What `trk check` reads as text, each under its name in the medium.
constexpr std::array<const char*, 7> names = {
    "Drivers/lbl.inf",        "wrenchbay/media.inf",  "wrenchbay/settings.inf",  "wrenchbay/profilenames.inf",
    "wrenchbay/portlynx.inf", "licenses/license.txt", "Drivers/32-bit/label.dll"};

} // namespace

// The first byte chooses the file. Every finding has its place in the file or in the medium.
void fuzz::check_readers(std::string_view input) {
    if (input.empty())
        return;
    static const TemporaryFolder folder;
    const std::filesystem::path file =
        folder.path / names[static_cast<unsigned char>(input[0]) % names.size()];
    TestSession::write(file, std::string(input.substr(1)));
    for (const auto& finding : rehearsal::check::check_medium(folder.path))
        require(!finding.reason.empty(), "a finding without a reason");
    std::filesystem::remove(file);
}
