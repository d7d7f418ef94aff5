#include "rehearsal/check/catalogue_maker.h"

namespace tests {
namespace {

constexpr std::int64_t year_2024 = 1704067200;
constexpr std::int64_t year_2025 = 1735689600;
constexpr std::int64_t year_2050 = 2524608000;

SigningIdentities make_identities() {
    using catalogue::KeyKind;
    using catalogue::make_identity;
    using catalogue::Purpose;
    SigningIdentities made;
    made.root =
        make_identity(KeyKind::elliptic, "Test Root", Purpose::authority, year_2024, year_2050, nullptr);
    made.signer = make_identity(KeyKind::elliptic, "Test Signer", Purpose::code_signing, year_2024, year_2050,
                                &made.root);
    made.expired = make_identity(KeyKind::elliptic, "Old Signer", Purpose::code_signing, year_2024, year_2025,
                                 &made.root);
    made.stamper = make_identity(KeyKind::elliptic, "Test Stamps", Purpose::time_stamping, year_2024,
                                 year_2050, &made.root);
    made.self = make_identity(KeyKind::elliptic, "Own", Purpose::code_signing, year_2024, year_2050, nullptr);
    return made;
}

} // namespace

const SigningIdentities& signing_identities() {
    static const SigningIdentities made = make_identities();
    return made;
}

catalogue::SignOptions usual_signing() {
    catalogue::SignOptions signing;
    signing.signer = signing_identities().signer;
    signing.chain = {signing_identities().root};
    signing.claimed_time = signed_at;
    signing.stamp =
        catalogue::Stamp{catalogue::StampForm::rfc3161, signing_identities().stamper, signed_at + 60};
    return signing;
}

std::string make_catalogue(const std::vector<catalogue::ListedFile>& files,
                           const catalogue::SignOptions& signing, catalogue::ListOptions list) {
    if (list.made == 0)
        list.made = signed_at;
    return catalogue::sign_list(catalogue::make_list(files, list), signing);
}

std::string small_image(std::string_view behind_headers, std::string_view certificates) {
    std::string bytes(0x40 + 24 + 112 + 16 * 8, '\0');
    bytes.replace(0, 2, "MZ");
    bytes[0x3C] = 0x40;
    bytes.replace(0x40, 2, "PE");
    bytes[0x40 + 24] = 0x0B;
    bytes[0x40 + 25] = 0x02;
    bytes += behind_headers;
    const std::size_t entry = 0x40 + 24 + 112 + 4 * 8;
    if (!certificates.empty()) {
        bytes[entry] = static_cast<char>(bytes.size() & 0xFF);
        bytes[entry + 1] = static_cast<char>(bytes.size() >> 8);
        bytes[entry + 4] = static_cast<char>(certificates.size());
    }
    return bytes + std::string(certificates);
}

} // namespace tests
