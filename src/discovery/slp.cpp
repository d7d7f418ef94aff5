#include "discovery/slp.h"

#include "support/install_log.h"
#include "support/text.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr int text_offset = 20; // of the attribute list in a reply whose language tag has two bytes
constexpr int longest_datagram = 4000;
constexpr size_t echo_capacity = 256; // of the log line that shows a reply's text
constexpr char service_type[] = "service:printer:raw-tcp";
constexpr char scope[] = "DEFAULT";
constexpr char name_key[] = "printer-name=";

BYTE* put_number(BYTE* place, DWORD value, int count) {
    for (int i = count - 1; i >= 0; --i)
        *place++ = static_cast<BYTE>(value >> (8 * i));
    return place;
}

BYTE* put_ansi(BYTE* place, const char* text) {
    while (*text != 0)
        *place++ = static_cast<BYTE>(*text++);
    return place;
}

// The attribute text of a datagram, terminated, and its length; empty when the datagram ends before it.
size_t take_attribute_text(const BYTE* datagram, int length, char* text, int capacity) {
    const int room = std::min(length - text_offset, capacity - 1);
    if (room <= 0) {
        text[0] = 0;
        return 0;
    }
    const BYTE* const start = datagram + text_offset;
    const void* const end = std::memchr(start, 0, static_cast<size_t>(room));
    const auto used = static_cast<size_t>(end != nullptr ? static_cast<const BYTE*>(end) - start : room);
    std::memcpy(text, start, used);
    text[used] = 0;
    return used;
}

// What stands behind the first key up to the closing parenthesis, or nothing. Ends the text there.
void take_printer_name(char* text, char* name) {
    name[0] = 0;
    const char* const key = find_in_names(text, name_key);
    if (key == nullptr)
        return;
    char* const value = text + (key - text) + std::size(name_key) - 1;
    if (char* const end = std::strchr(value, ')'))
        *end = 0;
    copy_ansi(name, printer_name_capacity, value);
}

// 16 bits with the low byte first, as the header's line has always shown them.
int low_byte_first(const BYTE* bytes) {
    return bytes[0] | bytes[1] << 8;
}

} // namespace

// Offset Width  Attribute request (RFC 2608, sections 8 and 10.3), all numbers big-endian
//  0     1      version 2
//  1     1      function 6, AttrRqst
//  2     3      length of the whole message
//  5     2      flags: none, not even REQUEST MCAST
//  7     3      next extension offset: none
// 10     2      XID, always 0x2010; no reply is compared with it
// 12     2+2    language tag "en"
// 16     2      previous responders: none
// 18     2+23   URL: a service type, which asks every responder of that type
// 43     2+7    scope list
// 52     2      tag list: empty, for all attributes
// 54     2      SLP SPI: empty, no authentication
void build_slp_request(BYTE* buffer) {
    BYTE* place = buffer;
    place = put_number(place, 2, 1);
    place = put_number(place, 6, 1);
    place = put_number(place, slp_request_size, 3);
    place = put_number(place, 0, 2);
    place = put_number(place, 0, 3);
    place = put_number(place, 0x2010, 2);
    place = put_number(place, 2, 2);
    place = put_ansi(place, "en");
    place = put_number(place, 0, 2);
    place = put_number(place, static_cast<DWORD>(std::size(service_type) - 1), 2);
    place = put_ansi(place, service_type);
    place = put_number(place, static_cast<DWORD>(std::size(scope) - 1), 2);
    place = put_ansi(place, scope);
    place = put_number(place, 0, 2);
    put_number(place, 0, 2);
}

DWORD read_be_number(int count, const BYTE* bytes) {
    DWORD value = bytes[0];
    for (int i = 1; i < count; ++i)
        value = value << 8 | bytes[i];
    return value;
}

int read_slp_reply(const BYTE* datagram, int length, const char* model_tag, DWORD sender, char* address,
                   char* name) {
    if (length <= 0)
        return 0;
    char text[longest_datagram - text_offset + 1];
    const size_t text_length = take_attribute_text(datagram, length, text, static_cast<int>(std::size(text)));
    const int matches = find_in_names(text, model_tag) != nullptr;
    blank_controls(text, text_length); // a printer may not end a line of the log, nor move a row's column
    log_line_within(echo_capacity, TEXT("%S\r\n"), text);
    if (!matches)
        return 0;
    format_ansi(address, printer_address_capacity, "%d.%d.%d.%d", sender & 0xff, sender >> 8 & 0xff,
                sender >> 16 & 0xff, sender >> 24);
    take_printer_name(text, name);
    log_line(TEXT("Printer found %S %S\r\n"), address, name);
    return 1;
}

void log_slp_header(const BYTE* message) {
    log_line(
        TEXT(
            "H2 Version=%d FunctionID=%d Length=%d Flags=%d NextExtOff==%d XID=%d langt_len=%d langt=%x\r\n"),
        message[0], message[1], read_be_number(3, message + 2), low_byte_first(message + 5),
        read_be_number(3, message + 7), low_byte_first(message + 10), read_be_number(2, message + 12),
        low_byte_first(message + 14));
}

DWORD reverse_bytes(DWORD value, int count) {
    DWORD result = 0;
    for (int i = 0; i < count; ++i) {
        result = (result << 8) + (value & 0xff);
        value >>= 8;
    }
    return result;
}
