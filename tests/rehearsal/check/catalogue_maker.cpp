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

} // namespace tests
