// An agent of the Service Location Protocol, version 2 (RFC 2608), as far as printers are asked for their
// attributes. It judges requests strictly, on its own account: the program's writer of them isn't used here.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

inline constexpr std::uint16_t slp_port = 427;
inline constexpr std::string_view slp_group = "239.255.255.253";
inline constexpr std::string_view printer_service = "service:printer:raw-tcp";

struct AttributeRequest {
    std::uint16_t xid = 0;
    std::string language;
    std::string previous_responders; // dotted addresses, comma-separated
    std::string url;
    std::string scopes;
    std::string tags;
    std::string security_parameter; // the SPI string; empty: no authentication asked for
};

// The fields of a well-formed attribute request (section 10.3), or nothing: another version or function, a
// length that isn't the datagram's, an extension, a field that runs over the end, bytes left over.
std::optional<AttributeRequest> parse_attribute_request(std::span<const std::uint8_t> datagram);

// Whether an agent at this dotted address that serves raw printers in the scope DEFAULT has to answer.
bool concerns_raw_printer(const AttributeRequest& request, std::string_view own_address);

// An attribute reply (section 10.4) without error and without authentication blocks. With the language "en"
// the list begins at offset 20, and an empty one makes 21 bytes.
std::vector<std::uint8_t> attribute_reply(const AttributeRequest& request, std::string_view attributes);

} // namespace platform
