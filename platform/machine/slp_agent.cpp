#include "machine/slp_agent.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::uint8_t version = 2;
constexpr std::uint8_t attribute_request = 6;
constexpr std::uint8_t attribute_answer = 7;

// Takes big-endian numbers and counted texts off the front; once something runs over the end, all stays bad.
class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    std::uint32_t number(std::size_t width) {
        std::uint32_t value = 0;
        for (const std::uint8_t byte : take(width))
            value = (value << 8) | byte;
        return value;
    }
    std::string text() {
        const std::span<const std::uint8_t> part = take(number(2));
        return {part.begin(), part.end()};
    }
    bool at_end() const { return good_ && bytes_.empty(); }

private:
    std::span<const std::uint8_t> take(std::size_t count) {
        good_ = good_ && count <= bytes_.size();
        if (!good_)
            return {};
        const std::span<const std::uint8_t> part = bytes_.first(count);
        bytes_ = bytes_.subspan(count);
        return part;
    }

    std::span<const std::uint8_t> bytes_;
    bool good_ = true;
};

void put(std::vector<std::uint8_t>& bytes, std::size_t width, std::size_t value) {
    while (width-- > 0)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * width)));
}

void put_text(std::vector<std::uint8_t>& bytes, std::string_view text) {
    put(bytes, 2, text.size());
    bytes.insert(bytes.end(), text.begin(), text.end());
}

bool lists(std::string_view list, std::string_view wanted) {
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t comma = std::min(list.find(',', start), list.size());
        if (list.substr(start, comma - start) == wanted)
            return true;
        start = comma + 1;
    }
    return false;
}

} // namespace

std::optional<AttributeRequest> parse_attribute_request(std::span<const std::uint8_t> datagram) {
    Reader reader(datagram);
    if (reader.number(1) != version || reader.number(1) != attribute_request ||
        reader.number(3) != datagram.size())
        return std::nullopt;
    const std::uint32_t flags = reader.number(2);
    constexpr std::uint32_t known_flags = 0xe000; // overflow, fresh, request multicast; the others must be 0
    const std::uint32_t extension = reader.number(3);
    if ((flags & ~known_flags) != 0 || extension != 0)
        return std::nullopt;

    AttributeRequest request;
    request.xid = static_cast<std::uint16_t>(reader.number(2));
    request.language = reader.text();
    request.previous_responders = reader.text();
    request.url = reader.text();
    request.scopes = reader.text();
    request.tags = reader.text();
    request.security_parameter = reader.text();
    if (!reader.at_end() || request.language.empty() || request.url.empty())
        return std::nullopt;
    return request;
}

bool concerns_raw_printer(const AttributeRequest& request, std::string_view own_address) {
    return request.url == printer_service && lists(request.scopes, "DEFAULT") &&
           request.security_parameter.empty() && !lists(request.previous_responders, own_address);
}

std::vector<std::uint8_t> attribute_reply(const AttributeRequest& request, std::string_view attributes) {
    std::vector<std::uint8_t> bytes;
    const std::size_t length = 14 + request.language.size() + 2 + 2 + attributes.size() + 1;
    put(bytes, 1, version);
    put(bytes, 1, attribute_answer);
    put(bytes, 3, length);
    put(bytes, 2, 0); // flags
    put(bytes, 3, 0); // no extension
    put(bytes, 2, request.xid);
    put_text(bytes, request.language);
    put(bytes, 2, 0); // no error
    put_text(bytes, attributes);
    put(bytes, 1, 0); // authentication blocks
    return bytes;
}

} // namespace platform
