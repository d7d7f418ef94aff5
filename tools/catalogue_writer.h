// Makes signature catalogues with certificates of our own: for the sample's driver package and for tests.
// They have the form of real ones and fit the files, but no system trusts who signed them.
#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace catalogue {

// A key and its certificate. Times are seconds since 1970, UTC.
struct Identity {
    std::shared_ptr<EVP_PKEY> key;
    std::shared_ptr<X509> certificate;
};

enum class Purpose { authority, code_signing, time_stamping };

enum class KeyKind { rsa, elliptic }; // RSA is the custom, the other kind is made in no time

// Makes a fresh key, and a certificate that `issuer` signs, or the key itself when there is none.
Identity make_identity(KeyKind kind, const std::string& common_name, Purpose purpose, std::int64_t not_before,
                       std::int64_t not_after, const Identity* issuer);

// One file of the package: its name without folder, and its bytes.
struct ListedFile {
    std::string name;
    std::string bytes;
};

struct ListOptions {
    bool second_form = true; // each file by SHA-1 and by SHA-256; else by SHA-1 alone
    std::int64_t made = 0;
    std::string versions = "2:6.0,2:6.1,2:6.2,2:6.3,2:10.0"; // each member's "OSAttr"; empty: none
    std::string systems;                                     // the catalogue's "OS"; empty: none
    bool images_by_bytes = false;                 // programs listed like other files: a fault for tests
    std::string usage = "1.3.6.1.4.1.311.12.1.1"; // what the list says it is: a catalogue
};

// The list in its distinguished encoding, header included.
std::string make_list(const std::vector<ListedFile>& files, const ListOptions& options);

enum class StampForm { rfc3161, counter_signature };

struct Stamp {
    StampForm form = StampForm::rfc3161;
    Identity authority;
    std::int64_t time = 0;
};

struct SignOptions {
    Identity signer;
    std::vector<Identity> chain; // whose certificates go into the file too
    std::int64_t claimed_time = 0;
    std::optional<Stamp> stamp;
    bool with_certificate = true;
    bool stamp_of_other_text = false; // the stamp is for another signature: a fault for tests
};

// The whole catalogue file. Throws std::runtime_error when the cryptography library refuses.
std::string sign_list(std::string_view list, const SignOptions& options);

} // namespace catalogue
