// The spooler's rules over queues, drivers and monitors: what succeeds, what is refused and with which error.
// Knows no call, no handle and no file. Results are the platform's error codes, 0 for success.
#pragma once

#include "machine/spooler_state.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace platform {

// The published codes under names of our own, so that this header can stand beside the platform's.
namespace spooler_error {
constexpr std::uint32_t file_not_found = 2;
constexpr std::uint32_t access_denied = 5;
constexpr std::uint32_t invalid_data = 13;
constexpr std::uint32_t invalid_parameter = 87;
constexpr std::uint32_t insufficient_buffer = 122;
constexpr std::uint32_t invalid_level = 124;
constexpr std::uint32_t busy = 170;
constexpr std::uint32_t already_exists = 183;
constexpr std::uint32_t more_data = 234;
constexpr std::uint32_t unknown_port = 1796;
constexpr std::uint32_t unknown_driver = 1797;
constexpr std::uint32_t unknown_processor = 1798;
constexpr std::uint32_t invalid_printer_name = 1801;
constexpr std::uint32_t printer_already_exists = 1802;
constexpr std::uint32_t invalid_datatype = 1804;
constexpr std::uint32_t invalid_environment = 1805;
constexpr std::uint32_t printer_deleted = 1905;
constexpr std::uint32_t monitor_already_installed = 3006;
constexpr std::uint32_t package_in_use = 3015;
} // namespace spooler_error

// Access rights of handles, as they are published.
namespace spooler_access {
constexpr std::uint32_t server_administer = 0x1;
constexpr std::uint32_t printer_administer = 0x4;
constexpr std::uint32_t printer_use = 0x8;
constexpr std::uint32_t delete_object = 0x10000;
constexpr std::uint32_t printer_all = 0xF000C;
} // namespace spooler_access

// The environments that a name may stand for.
bool known_environment(std::u16string_view name);

// The queue of this name, without regard to case, or null.
PrintQueue* find_queue(SpoolerState& state, std::u16string_view name);
PortMonitor* find_monitor(SpoolerState& state, std::u16string_view name);
PrintPort* find_port(SpoolerState& state, std::u16string_view name);

// Whether the queue is this machine's own: not a connection to another's (attribute network, 16).
bool is_local(const PrintQueue& queue);

// Names have 1 to 220 characters, none of them a backslash, comma or exclamation mark.
bool valid_queue_name(std::u16string_view name);
bool known_datatype(std::u16string_view datatype);

std::uint32_t open_queue(SpoolerState& state, std::u16string_view name, std::uint32_t access);
// Port, driver, processor and datatype must exist; an empty datatype becomes the processor's own, RAW.
std::uint32_t add_queue(SpoolerState& state, PrintQueue queue);
// `access` is the handle's. A queue with jobs is only marked, and stays listed. The default printer passes on
// to the first queue that remains.
std::uint32_t delete_queue(SpoolerState& state, std::u16string_view name, std::uint32_t access);
// An empty name keeps the present default printer, or picks the first queue.
std::uint32_t set_default_printer(SpoolerState& state, std::u16string_view name);

// A monitor from outside speaks the interface of the custom ones: its configuration block has 4,112 bytes
// when its file is dryxmon.dll, else 6,168. The spooler takes monitors of its own environment alone.
std::uint32_t add_monitor(SpoolerState& state, std::u16string_view name, std::u16string_view environment,
                          std::u16string_view dll);

} // namespace platform
