// The cryptography library's records as this language's owners, and its values as the standard library's.
#pragma once

#include <openssl/asn1.h>
#include <openssl/objects.h>
#include <openssl/x509.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace rehearsal::check {

template<auto Release>
struct OpensslRelease {
    template<class Record>
    void operator()(Record* record) const {
        Release(record);
    }
};

template<class Record, auto Release>
using OpensslPointer = std::unique_ptr<Record, OpensslRelease<Release>>;

inline const unsigned char* openssl_bytes(std::string_view bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

// The content of an octet string, or of any other string of the library; empty for null.
std::string_view openssl_text(const ASN1_STRING* string);

// Numbers with points between; empty for null.
std::string openssl_object_text(const ASN1_OBJECT* object);

// Seconds since 1970, UTC; none for null and for a time that is none.
std::optional<std::int64_t> openssl_seconds(const ASN1_TIME* time);

// A name as people write it, "CN=..., O=...", in UTF-8.
std::string openssl_name(const X509_NAME* name);

// What went wrong last, in the library's words, with the list of its errors emptied.
std::string openssl_reason();

} // namespace rehearsal::check
