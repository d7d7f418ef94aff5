#include "rehearsal/pages/base64.h"

#include <openssl/evp.h>

namespace rehearsal::pages {

std::string base64(std::span<const std::uint8_t> bytes) {
    std::string out(4 * ((bytes.size() + 2) / 3) + 1, '\0'); // with the terminator that is written behind it
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()), bytes.data(),
                                       static_cast<int>(bytes.size()));
    out.resize(static_cast<std::size_t>(length));
    return out;
}

} // namespace rehearsal::pages
