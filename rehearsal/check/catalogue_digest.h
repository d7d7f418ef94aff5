// What a catalogue calls a file by: the digest of its bytes, or, for a program or library, the digest of its
// image, which leaves out what signing the file itself would change.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::check {

enum class DigestAlgorithm { sha1, sha256 };

// In octets.
std::string flat_digest(std::string_view bytes, DigestAlgorithm algorithm);

// Whether the bytes are a program image (the platform's PE format) whose headers hold together.
bool is_image(std::string_view bytes);

// The image digest of the platform's documentation of signed images: everything but the check sum, the
// directory entry of the certificate table and the table itself. Empty for what is no image. `padded` fills
// the image up to a multiple of 8 bytes with zeros, as it is before a signature is put behind it.
std::string image_digest(std::string_view bytes, DigestAlgorithm algorithm, bool padded);

// All the digests under which a catalogue may have the file: the image's for an image, the bytes' for
// everything else.
std::vector<std::string> member_digests(std::string_view bytes);

} // namespace rehearsal::check
