#include "discovery/slp.h"

#include "fuzz/machine.h"
#include "fuzz/targets.h"

#include <cstring>

// The datagram is copied, so that a byte read behind its end is seen.
void fuzz::slp_reply(std::string_view input) {
    machine();
    const std::vector<BYTE> datagram(input.begin(), input.end());
    char address[printer_address_capacity];
    char name[printer_name_capacity];
    if (read_slp_reply(datagram.data(), static_cast<int>(datagram.size()), "MDL:Label_100_Series;",
                       0x0702010A, address, name) != 0)
        require(strnlen(address, sizeof address) < sizeof address && strnlen(name, sizeof name) < sizeof name,
                "a text without its end");
}
