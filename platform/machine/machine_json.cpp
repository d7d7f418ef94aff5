#include "machine/machine_json.h"

#include "machine/json_forms.h"
#include "machine/value_checks.h"
#include "machine/whole_file.h"

#include <cerrno>
#include <fstream>
#include <system_error>

// The keys of all records, in the order in which they are written. Each list serves reading and writing.
namespace platform {
namespace {

// What the streams leave in errno tells why, if anything does.
std::error_code last_error() {
    return {errno == 0 ? EIO : errno, std::generic_category()};
}

} // namespace

template<class Archive>
void fields(Archive& archive, Fault& fault) {
    archive.required("call", fault.call);
    archive("nth", CountFromOne{fault.nth});
    archive("from_then_on", fault.from_then_on);
    archive("error", OptionalNumber{fault.error});
    archive("argument", fault.argument);
    archive("may_miss", fault.may_miss);
}

template<class Archive>
void fields(Archive& archive, SystemVersion& version) {
    archive("major", version.major);
    archive("minor", version.minor);
    archive("build", version.build);
}

template<class Archive>
void fields(Archive& archive, Folders& folders) {
    archive("windows", folders.windows, check_path_on_c);
    archive("program_files", folders.program_files, check_path_on_c);
    archive("common_programs", folders.common_programs, check_path_on_c);
}

template<class Archive>
void fields(Archive& archive, Adapter& adapter) {
    archive("description", adapter.description);
    archive("addresses", DottedAddresses{adapter.addresses});
    archive("network", NetworkWord{adapter.real_sockets});
    archive("searches", adapter.searches);
}

template<class Archive>
void fields(Archive& archive, ServicePhase& phase) {
    archive.required("state", StateName{phase.state});
    archive("milliseconds", phase.milliseconds);
    archive("wait_hint", phase.wait_hint);
    archive("checkpoint", phase.checkpoint);
    archive("exit_code", phase.exit_code);
}

template<class Archive>
void fields(Archive& archive, Service& service) {
    archive.required("name", service.name);
    archive.required("now", service.now);
    archive("on_stop", service.on_stop, check_phases);
    archive("on_start", service.on_start, check_phases);
    archive("stop_error", service.stop_error);
    archive("start_error", service.start_error);
    archive("dependents", service.dependents);
}

template<class Archive>
void fields(Archive& archive, UsbInterface& usb) {
    archive.required("device_path", usb.device_path);
    archive("parent_id", usb.parent_id);
    archive("compatible_drivers", usb.compatible_drivers);
}

template<class Archive>
void fields(Archive& archive, ChildProgram& child) {
    archive.required("name", child.name);
    archive("runs_for_ms", child.runs_for_ms);
    archive("exit_code", child.exit_code);
}

template<class Archive>
void fields(Archive& archive, PrinterDriver& driver) {
    archive.required("name", driver.name);
    archive("environment", driver.environment, check_environment);
    archive("version", VersionText{driver.version});
    archive("inf_path", driver.inf_path);
}

template<class Archive>
void fields(Archive& archive, PrintQueue& queue) {
    archive.required("name", queue.name);
    archive.required("port", queue.port);
    archive.required("driver", queue.driver);
    archive("processor", queue.processor);
    archive("datatype", queue.datatype);
    archive("attributes", queue.attributes);
    archive("jobs", queue.jobs);
    archive("deleting", queue.deleting);
    archive("deny_open", queue.deny_open);
    archive("deny_delete", queue.deny_delete);
    archive("data", queue.data);
}

template<class Archive>
void fields(Archive& archive, PrintPort& port) {
    archive.required("name", port.name);
    archive.required("monitor", port.monitor);
    archive("description", port.description);
    archive("type", port.type);
    archive("host_address", port.host_address);
    archive("ip_address", port.ip_address);
    archive("protocol", port.protocol, check_protocol);
    archive("port_number", port.port_number, check_port_number);
    archive("snmp_enabled", port.snmp_enabled);
    archive("configuration", port.configuration);
}

template<class Archive>
void fields(Archive& archive, PortMonitor& monitor) {
    archive.required("name", monitor.name);
    archive("environment", monitor.environment, check_environment);
    archive("dll", monitor.dll);
    archive("standard_tcpip", monitor.standard_tcpip);
    archive("configuration_size", monitor.configuration_size, check_block_size);
}

template<class Archive>
void fields(Archive& archive, StoredPackage& package) {
    archive.required("inf_path", package.inf_path);
    archive("deny_delete", package.deny_delete);
}

template<class Archive>
void fields(Archive& archive, SpoolerState& spooler) {
    archive("drivers", spooler.drivers, check_names<PrinterDriver>);
    archive("queues", spooler.queues, check_names<PrintQueue>);
    archive("ports", spooler.ports, check_names<PrintPort>);
    archive("monitors", spooler.monitors, check_names<PortMonitor>);
    archive("processors", spooler.processors);
    archive("packages", spooler.packages);
    archive("default_printer", spooler.default_printer);
    archive("drivers_hold_packages", spooler.drivers_hold_packages);
}

template<class Archive>
void fields(Archive& archive, Machine& machine) {
    archive("system", SystemWord{machine.system});
    archive("version", machine.version);
    archive("code_page", CodePageNumber{machine.code_page});
    archive("locale", machine.locale_abbreviation, check_locale);
    archive("ui_language", machine.ui_language, check_language);
    archive("clock", ClockText{machine.clock});
    archive("folders", machine.folders);
    archive("current_folder", machine.current_folder, check_absolute_path);
    archive("program_name", machine.program_name, check_file_name);
    archive("environment", machine.environment, check_variables);
    archive("registry", machine.registry, check_registry_keys);
    archive("spooler", machine.spooler);
    archive("services", machine.services, check_names<Service>);
    archive("usb_interfaces", machine.usb_interfaces);
    archive("adapters", machine.adapters);
    archive("discovery_port_taken", machine.discovery_port_taken);
    archive("child_programs", machine.child_programs, check_names<ChildProgram>);
    archive("missing_strings", machine.missing_strings, check_string_ids);
    archive("missing_functions", machine.missing_functions);
    archive("faults", machine.faults);
}

// What a fresh machine has depends on its system, and so does what a driver has that names no environment.
Machine machine_of(const JsonDocument& document) {
    const Json& root = document.root;
    Machine machine = default_machine(
        root.is_object() && root.value("/system"_json_pointer, Json()) == "x86" ? System::x86 : System::x64);
    from_json_value(JsonPlace{document, root, ""}, machine);
    settle(machine);
    const Json drivers = root.value("/spooler/drivers"_json_pointer, Json::array());
    for (std::size_t i = 0; i < drivers.size(); ++i) {
        if (!drivers[i].contains("environment"))
            machine.spooler.drivers[i].environment = machine.spooler.environment;
    }
    return machine;
}

Machine parse_machine(std::string_view text, const std::string& file) {
    try {
        return machine_of(parse_json(text));
    } catch (const JsonError& error) {
        throw MachineFileError(file + ":" + std::to_string(error.spot.line) + ":" +
                               std::to_string(error.spot.column) + ": " + error.what());
    }
}

std::string machine_text(const Machine& machine) {
    Machine copy = machine; // the lists of fields take what they could also read into
    return json_value(copy).dump(2) + "\n";
}

Machine load_machine(const std::filesystem::path& file) {
    errno = 0;
    const std::optional<std::string> text = read_whole_file(file);
    if (!text)
        throw MachineFileError(file.string() + ": can't be read: " + last_error().message());
    return parse_machine(*text, file.string());
}

void save_machine(const Machine& machine, const std::filesystem::path& file) {
    std::string text;
    try {
        text = machine_text(machine);
    } catch (const JsonError& error) {
        throw MachineFileError(file.string() + ": " + error.what());
    }
    std::filesystem::path fresh = file;
    fresh += ".new";
    errno = 0;
    std::ofstream stream(fresh, std::ios::binary);
    stream << text;
    stream.close();
    std::error_code problem;
    if (!stream)
        problem = last_error();
    else
        std::filesystem::rename(fresh, file, problem);
    if (problem) {
        std::error_code ignored;
        std::filesystem::remove(fresh, ignored);
        throw MachineFileError(file.string() + ": can't be written: " + problem.message());
    }
}

} // namespace platform
