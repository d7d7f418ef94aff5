#include "rehearsal/check/catalogue_digest.h"
#include "machine/little_endian.h"

#include <openssl/evp.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>

namespace rehearsal::check {
namespace {

// Offsets of the PE format: the DOS header's pointer to the PE header; in the optional header, which stands
// 24 bytes behind that, the check sum and the data directory, whose fifth entry (8 bytes each) is the table.
constexpr std::size_t pe_pointer = 0x3C;
constexpr std::size_t optional_header = 24;
constexpr std::size_t checksum = 64;
constexpr std::size_t directory_32 = 96;
constexpr std::size_t directory_64 = 112;
constexpr std::size_t table_entry = std::size_t{4} * 8;
constexpr std::uint32_t magic_32 = 0x10B;
constexpr std::uint32_t magic_64 = 0x20B;

using platform::number_at;

// What an image digest leaves out.
struct ImageParts {
    std::size_t checksum = 0;
    std::size_t table_entry = 0; // its directory entry
    std::size_t table = 0;       // where the table begins, or the end of the file
    std::size_t table_end = 0;
};

std::optional<ImageParts> image_parts(std::string_view bytes) {
    const auto header = number_at(bytes, pe_pointer, 4);
    if (!bytes.starts_with("MZ") || !header || number_at(bytes, *header, 4) != std::uint32_t{0x4550})
        return std::nullopt;
    const std::size_t optional = std::size_t{*header} + optional_header;
    const auto magic = number_at(bytes, optional, 2);
    if (magic != magic_32 && magic != magic_64)
        return std::nullopt;
    ImageParts parts;
    parts.checksum = optional + checksum;
    parts.table_entry = optional + (magic == magic_32 ? directory_32 : directory_64) + table_entry;
    const auto offset = number_at(bytes, parts.table_entry, 4);
    const auto size = number_at(bytes, parts.table_entry + 4, 4);
    if (!offset || !size)
        return std::nullopt;
    const bool has_table = *offset > parts.table_entry && *size != 0;
    parts.table = has_table ? std::min<std::size_t>(*offset, bytes.size()) : bytes.size();
    parts.table_end = std::min(parts.table + (has_table ? *size : 0), bytes.size());
    return parts;
}

const EVP_MD* method_of(DigestAlgorithm algorithm) {
    return algorithm == DigestAlgorithm::sha1 ? EVP_sha1() : EVP_sha256();
}

std::string digest_of(const std::vector<std::string_view>& pieces, DigestAlgorithm algorithm) {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    bool good = context != nullptr && EVP_DigestInit_ex(context.get(), method_of(algorithm), nullptr) == 1;
    for (const std::string_view piece : pieces)
        good = good && EVP_DigestUpdate(context.get(), piece.data(), piece.size()) == 1;
    if (!good || EVP_DigestFinal_ex(context.get(), digest, &size) != 1)
        return {};
    return {reinterpret_cast<const char*>(digest), size};
}

} // namespace

std::string flat_digest(std::string_view bytes, DigestAlgorithm algorithm) {
    return digest_of({bytes}, algorithm);
}

bool is_image(std::string_view bytes) {
    return image_parts(bytes).has_value();
}

std::string image_digest(std::string_view bytes, DigestAlgorithm algorithm, bool padded) {
    const std::optional<ImageParts> parts = image_parts(bytes);
    if (!parts)
        return {};
    const auto between = [&](std::size_t begin, std::size_t end) { return bytes.substr(begin, end - begin); };
    constexpr std::string_view zeros("\0\0\0\0\0\0\0", 7);
    const std::size_t missing = padded ? (8 - parts->table % 8) % 8 : 0;
    return digest_of({between(0, parts->checksum), between(parts->checksum + 4, parts->table_entry),
                      between(parts->table_entry + 8, parts->table), between(parts->table_end, bytes.size()),
                      zeros.substr(0, missing)},
                     algorithm);
}

std::vector<std::string> member_digests(std::string_view bytes) {
    std::vector<std::string> digests;
    for (const DigestAlgorithm algorithm : {DigestAlgorithm::sha1, DigestAlgorithm::sha256}) {
        if (!is_image(bytes)) {
            digests.push_back(flat_digest(bytes, algorithm));
            continue;
        }
        digests.push_back(image_digest(bytes, algorithm, false));
        digests.push_back(image_digest(bytes, algorithm, true));
    }
    return digests;
}

} // namespace rehearsal::check
