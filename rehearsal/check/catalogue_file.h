// A driver package's signature catalogue: a PKCS #7 SignedData (RFC 2315) whose content is a certificate
// trust list. The platform documents its records as CTL_INFO and CRYPTCATSTORE; in bytes they are:
//
//     ContentInfo 1.2.840.113549.1.7.2
//       content 1.3.6.1.4.1.311.10.1, a SEQUENCE of
//         version INTEGER, optional
//         usage SEQUENCE { 1.3.6.1.4.1.311.12.1.1 }             "is a catalogue"
//         identifier OCTET STRING, number INTEGER               both optional
//         made Time, next Time                                  the second optional
//         algorithm 1.3.6.1.4.1.311.12.1.2 (first form, SHA-1) or .12.1.3 (second form, SHA-1 and SHA-256)
//         members SEQUENCE OF SEQUENCE { OCTET STRING identifier, SET OF Attribute }
//         [0] extensions                                        the catalogue's own names and values
//
// A member's identifier is its digest: in the second form the octets, in the first its hexadecimal digits as
// 16-bit little-endian text. Its attributes say more: 1.3.6.1.4.1.311.12.2.1 is a name and a value ("File",
// "OSAttr"), 1.3.6.1.4.1.311.2.1.4 the digest once more, with the kind of file that it was made of.
#pragma once

#include "rehearsal/check/catalogue_signature.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::check {

// A name and its text, UTF-8.
struct CatalogueAttribute {
    std::string name;
    std::string text;
};

struct CatalogueMember {
    std::string digest;  // octets: 20 are SHA-1, 32 SHA-256
    std::string file;    // "File": the name when the list was made, in lower case by custom; may be empty
    std::string systems; // "OSAttr": "2:6.1,2:10.0"; may be empty
};

struct Catalogue {
    std::int64_t made = 0; // of the list, seconds since 1970, UTC
    bool second_form = false;
    std::vector<CatalogueMember> members;
    std::vector<CatalogueAttribute> attributes;
    CatalogueSignature signature;

    // The text of the catalogue's own attribute of that name; null when there is none.
    const std::string* attribute(std::string_view name) const;
};

// None when the bytes are no catalogue, and then `problem` says what they lack. A signature that doesn't hold
// is no problem of the reader's: it stands in the record.
std::optional<Catalogue> read_catalogue(std::string_view bytes, std::string& problem);

} // namespace rehearsal::check
