// Who signed a catalogue, when, and whether the signature holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct pkcs7_st; // the cryptography library's SignedData

namespace rehearsal::check {

struct CertificateFacts {
    std::string subject; // "CN=..., O=...", UTF-8
    std::string issuer;
    std::int64_t not_before = 0; // seconds since 1970, UTC
    std::int64_t not_after = 0;
    bool self_signed = false;
    bool right_purpose =
        false; // code signing, or time stamping, is among its extended key usages, or it has none
};

// Says that the signature existed at a time: by RFC 3161 (unsigned attribute 1.3.6.1.4.1.311.3.3.1) or, in
// the older way, by a counter signature (PKCS #9, 1.2.840.113549.1.9.6).
struct CatalogueTimeStamp {
    bool by_rfc3161 = false;
    std::int64_t time = 0; // seconds since 1970, UTC
    CertificateFacts authority;
    std::string problem; // why it doesn't hold for this signature; empty when it does
};

// A file has one signature; further ones in the same file aren't the platform's custom and only counted.
struct CatalogueSignature {
    int count = 0;
    std::string problem;                      // why the first doesn't hold for the list; empty when it does
    std::optional<CertificateFacts> signer;   // none when its certificate isn't in the file
    std::optional<std::int64_t> claimed_time; // the signer's own signing time
    std::optional<CatalogueTimeStamp> time_stamp;
};

// `list` is the signed content without its own header, as this kind of content is signed.
CatalogueSignature read_catalogue_signature(pkcs7_st* signed_data, std::string_view list);

} // namespace rehearsal::check
