// IPv4 addresses as text and numbers in network order.
#include "calls/network/transport.h"
#include "calls/run/gate.h"

#include <winsock2.h>

#include <cctype>

namespace platform {
namespace {

// A decimal, octal (0...) or hexadecimal (0x...) number at the front of the text, taken off it.
std::optional<std::uint64_t> take_number(std::string_view& text) {
    if (text.empty() || std::isdigit(static_cast<unsigned char>(text.front())) == 0)
        return std::nullopt;
    unsigned base = 10;
    if (text.front() == '0' && text.size() > 1) {
        base = (text[1] | 0x20) == 'x' ? 16 : 8;
        text.remove_prefix(base == 16 ? 2 : 1);
    }
    std::uint64_t value = 0;
    for (; !text.empty(); text.remove_prefix(1)) {
        const int letter = std::tolower(static_cast<unsigned char>(text.front()));
        const int digit = std::isdigit(letter) != 0 ? letter - '0' : letter - 'a' + 10;
        if (std::isxdigit(letter) == 0 || digit >= static_cast<int>(base))
            break;
        value = value * base + static_cast<unsigned>(digit);
        if (value > INADDR_NONE)
            return std::nullopt;
    }
    return value;
}

// One to four numbers with points between them; the last one fills all bytes that are left.
std::optional<std::uint32_t> read_address(std::string_view text) {
    std::uint64_t address = 0;
    for (unsigned part = 0; part < 4; ++part) {
        const std::optional<std::uint64_t> number = take_number(text);
        if (!number)
            return std::nullopt;
        if (!text.empty() && text.front() == '.') {
            if (*number > 255 || part == 3)
                return std::nullopt;
            address = (address << 8) | *number;
            text.remove_prefix(1);
            continue;
        }
        const bool ended = text.empty() || std::isspace(static_cast<unsigned char>(text.front())) != 0;
        const unsigned bits = 8 * (4 - part);
        if (!ended || (*number >> bits) != 0)
            return std::nullopt;
        return static_cast<std::uint32_t>((address << bits) | *number);
    }
    return std::nullopt;
}

} // namespace

std::string dotted(std::uint32_t address) {
    return std::to_string(address >> 24) + "." + std::to_string((address >> 16) & 255) + "." +
           std::to_string((address >> 8) & 255) + "." + std::to_string(address & 255);
}

std::optional<std::uint32_t> parse_dotted(const std::string& text) {
    const std::optional<std::uint32_t> address = read_address(text);
    return address && dotted(*address) == text ? address : std::nullopt;
}

} // namespace platform

ULONG inet_addr(const char* text) {
    const platform::Call call("inet_addr", text == nullptr ? "(null)" : text);
    // A single blank is documented to give 0, and an empty text or none to be unreadable.
    if (text == nullptr || std::string_view(text) == " ")
        return text == nullptr ? INADDR_NONE : INADDR_ANY;
    const std::optional<std::uint32_t> address = platform::read_address(text);
    return address ? __builtin_bswap32(*address) : INADDR_NONE;
}

USHORT htons(USHORT value) {
    const platform::Call call("htons");
    return __builtin_bswap16(value);
}

USHORT ntohs(USHORT value) {
    const platform::Call call("ntohs");
    return __builtin_bswap16(value);
}
