// The bytes of printer discovery: one message of the Service Location Protocol, version 2 (RFC 2608), an
// attribute request for the type service:printer:raw-tcp, and the attribute text of what comes back.
#pragma once

#include <windows.h>

#include <cstddef>

constexpr DWORD slp_request_size = 56;
constexpr size_t model_tag_capacity = 100;      // "MDL:<model>;", in bytes with the terminator
constexpr size_t printer_address_capacity = 20; // dotted decimal
constexpr size_t printer_name_capacity = 20;

// Writes the request's slp_request_size bytes, always the same ones.
void build_slp_request(BYTE* buffer);

// The big-endian number of `count` bytes, 1 to 4. A count below 1 reads the first byte alone; of more than 4
// bytes the last four count.
DWORD read_be_number(int count, const BYTE* bytes);

// Looks into a datagram of `length` bytes for a printer whose attribute text holds `model_tag`, exactly: 1
// with the sender's dotted address and the name behind the first "printer-name=" (empty without one), else 0.
// `sender` is in network order. Every text is echoed to the log, match or not, and its control characters
// come out as blanks, in the name too. The text begins at a fixed place and ends at its first NUL or with the
// datagram; no field in front of it is looked at.
int read_slp_reply(const BYTE* datagram, int length, const char* model_tag, DWORD sender,
                   char* address /*printer_address_capacity*/, char* name /*printer_name_capacity*/);

// Logs the header of a message that was built here: its first 16 bytes are read.
void log_slp_header(const BYTE* message);

// The low `count` bytes of the value in the opposite order.
DWORD reverse_bytes(DWORD value, int count);
