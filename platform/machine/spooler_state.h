// What the spooler holds, as plain data. The rules over it stand in spooler_model.h; neither knows a call or
// a handle, so that both also serve a spooler for the real program.
#pragma once

#include "machine/inf_target.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct PrinterDriver {
    std::u16string name;
    std::u16string environment = u"Windows x64";
    std::uint64_t version = 0; // four 16-bit fields, major on top, as DRIVER_INFO_6 has it
    std::u16string inf_path;   // in the driver store; empty for a driver that came without a package
    bool operator==(const PrinterDriver&) const = default;
};

// One value under a queue's printer-data key. The bytes of a text are UTF-16LE with its terminator.
struct PrinterDataValue {
    std::uint32_t type = 0; // REG_SZ 1, REG_BINARY 3, REG_DWORD 4
    std::vector<std::uint8_t> data;
    bool operator==(const PrinterDataValue&) const = default;
};

struct PrintQueue {
    std::u16string name;
    std::u16string port;
    std::u16string driver;
    std::u16string processor = u"winprint";
    std::u16string datatype = u"RAW";
    std::uint32_t attributes = 0;
    std::uint32_t jobs = 0;
    bool deleting = false;    // was deleted with jobs waiting: it stays until they are gone
    bool deny_open = false;   // opening it with full access is refused (access denied)
    bool deny_delete = false; // deleting it is refused (access denied)
    // key ("Label Sizes\258") -> value name -> value
    std::map<std::u16string, std::map<std::u16string, PrinterDataValue>> data;
    bool operator==(const PrintQueue&) const = default;
};

struct PrintPort {
    std::u16string name;
    std::u16string monitor;     // pMonitorName of the port list
    std::u16string description; // pDescription of the port list
    std::uint32_t type = 0;     // fPortType
    // Standard TCP/IP ports
    std::u16string host_address;
    std::u16string ip_address;
    std::uint32_t protocol = 0; // 1 RAW
    std::uint32_t port_number = 0;
    bool snmp_enabled = false;
    // Ports of custom monitors: the configuration block, as the monitor gives it and as it was sent back
    std::vector<std::uint8_t> configuration;
    bool operator==(const PrintPort&) const = default;
};

struct PortMonitor {
    std::u16string name;
    std::u16string environment;
    std::u16string dll;
    // What its transceive interface is: none, the Standard TCP/IP one, or a custom one whose configuration
    // block has this many bytes (6168 or 4112).
    bool standard_tcpip = false;
    std::uint32_t configuration_size = 0;
    bool operator==(const PortMonitor&) const = default;
};

// A package in the driver store: a folder under FileRepository.
struct StoredPackage {
    std::u16string inf_path;  // full path of the INF in the store
    bool deny_delete = false; // the spooler refuses to delete it
    bool operator==(const StoredPackage&) const = default;
};

struct SpoolerState {
    std::vector<PrinterDriver> drivers;
    std::vector<PrintQueue> queues;
    std::vector<PrintPort> ports;
    std::vector<PortMonitor> monitors;
    std::vector<std::u16string> processors;
    std::vector<StoredPackage> packages;
    std::u16string default_printer;
    bool drivers_hold_packages = false; // a package is in use already while a driver of it is registered
    // Of the machine, which sets them: the environment that no name stands for, and the system that packages
    // are judged for.
    std::u16string environment = u"Windows x64";
    InfSystem system;
    bool operator==(const SpoolerState&) const = default;
};

// A few stock ports, monitors and processors, as a fresh system has them.
SpoolerState default_spooler(std::u16string_view environment = u"Windows x64");

} // namespace platform
