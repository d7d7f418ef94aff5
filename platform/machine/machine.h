// The simulated machine as plain data: what a run finds, and what it leaves. Its files are not in here; they
// are real files under the folder that stands for drive C.
#pragma once

#include "machine/spooler_state.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace platform {

// Makes the nth call of a name fail, counted over the calls whose argument contains `argument` (upper and
// lower case alike; empty matches all), or all from the nth on. Without an error the call's usual one is
// given.
struct Fault {
    std::string call;
    unsigned nth = 1;
    bool from_then_on = false;
    std::optional<std::uint32_t> error;
    std::string argument;
    bool may_miss = false; // a run in which it never strikes is no worse for that
};

enum class System { x64, x86 };

struct SystemVersion {
    std::uint32_t major = 6;
    std::uint32_t minor = 2;
    std::uint32_t build = 9200;
};

struct Folders {
    std::u16string windows = u"C:\\Windows";
    std::u16string program_files = u"C:\\Program Files";
    std::u16string common_programs = u"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs";
};

struct RegistryValue {
    std::uint32_t type = 1;         // REG_SZ 1, REG_EXPAND_SZ 2, REG_BINARY 3, REG_DWORD 4
    std::vector<std::uint8_t> data; // texts as UTF-16LE with what terminator they have
    bool operator==(const RegistryValue&) const = default;
};

// Key path below HKEY_LOCAL_MACHINE -> value name -> value. Look-ups go without regard to case.
using Registry = std::map<std::u16string, std::map<std::u16string, RegistryValue>>;

// One answer of the network to one search on one adapter, in order of arrival.
struct ScriptedDatagram {
    std::string from = "10.0.0.7"; // dotted sender address
    std::vector<std::uint8_t> bytes;
};

struct Adapter {
    std::string description = "Ethernet";
    std::vector<std::string> addresses = {"10.0.0.2"}; // dotted; only the first is looked at by most callers
    bool real_sockets = false; // real traffic from the first address; otherwise the answers below
    std::vector<std::vector<ScriptedDatagram>> searches; // answers to the first, second, ... search on it
};

// What a service answers to successive status queries after a control; an entry holds for `milliseconds`.
struct ServicePhase {
    std::uint32_t state = 4;        // SERVICE_STOPPED 1, START_PENDING 2, STOP_PENDING 3, RUNNING 4
    std::uint32_t milliseconds = 0; // 0: from here on for ever
    std::uint32_t wait_hint = 0;
    std::uint32_t checkpoint = 0;
    std::uint32_t exit_code = 0;
};

struct Service {
    std::u16string name;
    std::vector<ServicePhase> now;              // the state found, and what it turns into by itself
    std::vector<ServicePhase> on_stop = {{1}};  // phases after an accepted stop control
    std::vector<ServicePhase> on_start = {{4}}; // phases after an accepted start
    std::uint32_t stop_error = 0;               // ControlService fails with it; 0: it is accepted
    std::uint32_t start_error = 0;              // StartServiceW fails with it
    std::vector<std::u16string> dependents;     // services that depend on this one
};

struct UsbDriverEntry {
    std::u16string description;
};

// A present USB printer interface.
struct UsbInterface {
    std::u16string device_path; // \\?\usb#vid_xxxx&pid_xxxx#instance#{guid}
    std::u16string parent_id;   // USB\VID_xxxx&PID_xxxx\instance; empty: it has no parent
    std::vector<UsbDriverEntry> compatible_drivers;
};

// The sibling that CreateProcessW may start: a file of this name behaves like this.
struct ChildProgram {
    std::u16string name; // file name, compared without regard to case
    std::uint32_t runs_for_ms = 0;
    std::uint32_t exit_code = 0;
};

struct Machine {
    System system = System::x64;
    SystemVersion version;
    std::uint32_t code_page = 1252;
    std::u16string locale_abbreviation = u"ENU";
    std::uint16_t ui_language = 1033;
    std::string clock; // local time at start, "2024-07-04T09:05:01"; empty: the real time
    std::map<std::u16string, std::u16string> environment;
    Folders folders;
    std::u16string current_folder = u"D:\\medium";  // where the medium stands, as the program sees it
    std::u16string program_name = u"trk_setup.exe"; // the program file, in the current folder
    Registry registry;
    SpoolerState spooler = default_spooler();
    std::vector<Service> services;
    std::vector<UsbInterface> usb_interfaces;
    std::vector<Adapter> adapters;
    bool discovery_port_taken = false; // another process holds UDP port 427 (scripted network)
    std::vector<ChildProgram> child_programs;
    std::vector<std::uint32_t> missing_strings; // string ids to leave out of the table
    std::vector<std::string> missing_functions; // names that GetProcAddress doesn't find
    std::vector<Fault> faults;
};

// The system behind the version that it shows to programs: each newer one shows 6.2.9200 to a program whose
// manifest doesn't name it. Driver packages are judged by the system itself.
InfSystem true_version(const SystemVersion& shown);

std::u16string_view environment_of(System system); // the spooler's name for it

// Tells the spooler's state what the machine is. To be called when `system` or `version` has changed.
void settle(Machine& machine);

// What a current Windows shows this program: Spooler service running, one wired adapter, TEMP in the
// registry.
Machine default_machine(System system = System::x64);

} // namespace platform
