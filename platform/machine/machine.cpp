#include "machine/machine.h"
#include "machine/little_endian.h"

#include <string_view>

namespace platform {
namespace {

constexpr std::uint32_t expandable_text = 2;  // REG_EXPAND_SZ
constexpr std::uint32_t port_write_read = 3;  // PORT_TYPE_WRITE and PORT_TYPE_READ
constexpr std::uint32_t local_printer = 0x40; // PRINTER_ATTRIBUTE_LOCAL
constexpr std::uint32_t start_pending = 2;
constexpr std::uint32_t stop_pending = 3;
constexpr std::uint32_t running = 4;
constexpr std::uint32_t stopped = 1;

RegistryValue expandable(std::u16string_view text) {
    return {expandable_text, utf16_bytes(std::u16string(text) + u'\0')};
}

Service spooler_service() {
    Service service;
    service.name = u"Spooler";
    service.now = {{running}};
    service.on_stop = {{stop_pending, 500, 20'000, 1}, {stopped}};
    service.on_start = {{start_pending, 500, 2'000, 1}, {running}};
    return service;
}

PrintPort local_port(std::u16string_view name) {
    PrintPort port;
    port.name = name;
    port.monitor = port.description = u"Local Port";
    port.type = port_write_read;
    return port;
}

PortMonitor monitor(std::u16string_view name, std::u16string_view environment, std::u16string_view dll) {
    PortMonitor result;
    result.name = name;
    result.environment = environment;
    result.dll = dll;
    return result;
}

} // namespace

InfSystem true_version(const SystemVersion& shown) {
    if (shown.major == 6 && shown.minor == 2 && shown.build == 9200)
        return {};
    return {shown.major, shown.minor, shown.build};
}

std::u16string_view environment_of(System system) {
    return system == System::x86 ? u"Windows NT x86" : u"Windows x64";
}

void settle(Machine& machine) {
    machine.spooler.environment = environment_of(machine.system);
    machine.spooler.system = true_version(machine.version);
}

SpoolerState default_spooler(std::u16string_view environment) {
    SpoolerState state;
    state.environment = environment;
    state.monitors = {monitor(u"Local Port", environment, u"localspl.dll"),
                      monitor(u"Standard TCP/IP Port", environment, u"tcpmon.dll"),
                      monitor(u"USB Monitor", environment, u"usbmon.dll")};
    state.monitors[1].standard_tcpip = true;
    state.processors = {u"winprint"};
    state.ports = {local_port(u"LPT1:"), local_port(u"COM1:"), local_port(u"FILE:"),
                   local_port(u"PORTPROMPT:")};

    PrinterDriver driver;
    driver.name = u"Generic / Text Only";
    driver.environment = environment;
    driver.version = 0x0006'0002'23F0'4000; // 6.2.9200.16384
    state.drivers = {driver};

    PrintQueue queue;
    queue.name = u"Print to File";
    queue.port = u"PORTPROMPT:";
    queue.driver = driver.name;
    queue.attributes = local_printer;
    state.queues = {queue};
    state.default_printer = queue.name;
    return state;
}

Machine default_machine(System system) {
    Machine machine;
    machine.system = system;
    machine.spooler = default_spooler(environment_of(system));
    machine.environment = {{u"COMPUTERNAME", u"LABELDESK"},
                           {u"ProgramData", u"C:\\ProgramData"},
                           {u"ProgramFiles", u"C:\\Program Files"},
                           {u"SystemDrive", u"C:"},
                           {u"SystemRoot", u"C:\\Windows"},
                           {u"TEMP", u"C:\\Users\\Admin\\AppData\\Local\\Temp"},
                           {u"TMP", u"C:\\Users\\Admin\\AppData\\Local\\Temp"},
                           {u"windir", u"C:\\Windows"}};
    machine.registry[u"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment"] = {
        {u"TEMP", expandable(u"%SystemRoot%\\TEMP")}, {u"TMP", expandable(u"%SystemRoot%\\TEMP")}};
    machine.services = {spooler_service()};
    machine.adapters = {Adapter{}};
    machine.child_programs = {{u"trk_setup64.exe", 2'000, 0}};
    return machine;
}

} // namespace platform
