// The search for printers on every usable IPv4 interface: one multicast request each, and what is heard back.
#pragma once

#include <windef.h>

// A find: dotted address and printer name, both valid during the call only.
using PrinterFound = void (*)(const char* address, const char* name);

// A usable interface.
struct AdapterEntry {
    DWORD address;         // IPv4, in network order
    char description[132]; // as the system names the adapter
};

constexpr DWORD adapter_capacity = 10;
extern AdapterEntry adapter_table[adapter_capacity]; // made anew by each search
extern DWORD adapter_count;

// Fills adapter_table with the interfaces that have an address and aren't link-local, and gives their number.
// Interfaces beyond the table's capacity are left out, with one line in the log.
DWORD collect_adapters();

// Searches one interface after the other for printers whose attribute text names `model`, calling `found` on
// the caller's thread for each reply that does. A silent interface takes one second. 1 when all interfaces
// were served, whatever was found; 0 when the search stopped early or never started. Finds made before that
// stand.
int find_slp(const char* model, PrinterFound found);

// 1 when another process holds the discovery port for itself, else 0. Writes nothing and leaves nothing open.
int probe_discovery_port();
