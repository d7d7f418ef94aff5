// Catalogues for tests, signed by certificates that are made once for the whole test program.
#pragma once

#include "catalogue_writer.h"

#include <string>
#include <vector>

namespace tests {

constexpr std::int64_t day = 86400;
constexpr std::int64_t signed_at = 1722074400; // 27 July 2024, 10:00 UTC

struct SigningIdentities {
    catalogue::Identity root;
    catalogue::Identity signer;  // valid from 2024 to 2049
    catalogue::Identity expired; // in 2024 alone
    catalogue::Identity stamper;
    catalogue::Identity self; // vouches for itself
};

const SigningIdentities& signing_identities();

// Signed by `signer` with its root beside it, and with a time stamp of RFC 3161.
catalogue::SignOptions usual_signing();

std::string make_catalogue(const std::vector<catalogue::ListedFile>& files,
                           const catalogue::SignOptions& signing = usual_signing(),
                           catalogue::ListOptions list = {});

// A 64-bit program of nothing but headers, with a table of certificates if there are any.
std::string small_image(std::string_view behind_headers, std::string_view certificates);

} // namespace tests
