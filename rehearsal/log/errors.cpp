#include "rehearsal/log/errors.h"

#include <algorithm>
#include <cstdio>

namespace rehearsal::logs {
namespace {

constexpr char as_administrator[] =
    "Run the setup as an administrator and look whether a policy or a protection program forbids the step.";
constexpr char start_spooler[] = "Start the service Print Spooler and run the setup again.";
constexpr char copy_medium[] =
    "Copy the whole distribution folder to a local drive and run the setup from there.";
constexpr char free_memory[] = "Close programs or restart the machine, then run the setup again.";
constexpr char check_files[] = "Compare the distribution folder with its master; a file of it is missing.";
constexpr char fix_catalog[] =
    "The package's maker has to sign it anew: INF and files must be those that the catalogue lists.";
constexpr char trust_signer[] = "Install the signer's certificate as a trusted publisher, or use a package "
                                "with a signature that is trusted.";
constexpr char remove_old_driver[] =
    "Remove the old driver and its queues in the print management, restart the spooler, run the setup again.";
constexpr char check_network[] =
    "Look whether a network adapter is up, then press Refresh or type the printer's address.";
constexpr char medium_maker[] =
    "The medium's maker has to correct the driver's INF; rehearse the medium before it is given out again.";

constexpr ErrorCode codes[] = {
    {0, "ERROR_SUCCESS", "The system gave no reason.", ""},
    {1, "ERROR_INVALID_FUNCTION", "The function isn't one of this device or system.", ""},
    {2, "ERROR_FILE_NOT_FOUND", "The file isn't there.", check_files},
    {3, "ERROR_PATH_NOT_FOUND", "A folder of the path isn't there.", check_files},
    {5, "ERROR_ACCESS_DENIED", "Access was denied.", as_administrator},
    {6, "ERROR_INVALID_HANDLE", "The handle isn't valid.", ""},
    {8, "ERROR_NOT_ENOUGH_MEMORY", "There wasn't enough memory.", free_memory},
    {13, "ERROR_INVALID_DATA", "The data isn't valid.", medium_maker},
    {14, "ERROR_OUTOFMEMORY", "There wasn't enough memory.", free_memory},
    {15, "ERROR_INVALID_DRIVE", "The drive isn't there.", copy_medium},
    {18, "ERROR_NO_MORE_FILES", "There are no more files.", ""},
    {19, "ERROR_WRITE_PROTECT", "The medium is write-protected.", "Take the write protection off the drive."},
    {21, "ERROR_NOT_READY", "The drive isn't ready.", copy_medium},
    {23, "ERROR_CRC", "The data on the drive is damaged.", copy_medium},
    {31, "ERROR_GEN_FAILURE", "A device doesn't work.", ""},
    {32, "ERROR_SHARING_VIOLATION", "Another program has the file open.",
     "Close the tools and the remover of the earlier installation, then run the setup again."},
    {33, "ERROR_LOCK_VIOLATION", "Another program has locked a part of the file.",
     "Close the program that uses the file, then run the setup again."},
    {38, "ERROR_HANDLE_EOF", "The end of the file was reached.", ""},
    {39, "ERROR_HANDLE_DISK_FULL", "The drive is full.",
     "Make room on the system drive and run the setup again."},
    {50, "ERROR_NOT_SUPPORTED", "The request isn't supported.", ""},
    {53, "ERROR_BAD_NETPATH", "The network path wasn't found.", copy_medium},
    {54, "ERROR_NETWORK_BUSY", "The network is busy.", copy_medium},
    {64, "ERROR_NETNAME_DELETED", "The network share went away.", copy_medium},
    {65, "ERROR_NETWORK_ACCESS_DENIED", "Access to the network was denied.", copy_medium},
    {67, "ERROR_BAD_NET_NAME", "The network share wasn't found.", copy_medium},
    {80, "ERROR_FILE_EXISTS", "The file is there already.", ""},
    {87, "ERROR_INVALID_PARAMETER", "A parameter isn't valid.", ""},
    {110, "ERROR_OPEN_FAILED", "The file or device can't be opened.", ""},
    {111, "ERROR_BUFFER_OVERFLOW", "A name is too long.", "Shorten the name of the driver, port or folder."},
    {112, "ERROR_DISK_FULL", "The drive is full.", "Make room on the system drive and run the setup again."},
    {120, "ERROR_CALL_NOT_IMPLEMENTED", "The function isn't there on this system.", ""},
    {122, "ERROR_INSUFFICIENT_BUFFER", "The data doesn't fit.", ""},
    {123, "ERROR_INVALID_NAME", "A name has characters that the system forbids.", medium_maker},
    {124, "ERROR_INVALID_LEVEL", "The level of the call isn't one of this system.", ""},
    {126, "ERROR_MOD_NOT_FOUND", "A library wasn't found.", check_files},
    {127, "ERROR_PROC_NOT_FOUND", "A function wasn't found in its library.", ""},
    {131, "ERROR_NEGATIVE_SEEK", "The place in the file lies in front of its beginning.", ""},
    {145, "ERROR_DIR_NOT_EMPTY", "The folder isn't empty.", ""},
    {161, "ERROR_BAD_PATHNAME", "The path isn't valid.", copy_medium},
    {170, "ERROR_BUSY", "What is asked for is in use.",
     "Wait until no job is printed, then run the setup again."},
    {183, "ERROR_ALREADY_EXISTS", "It is there already.", ""},
    {193, "ERROR_BAD_EXE_FORMAT", "The program or library isn't for this system.", medium_maker},
    {203, "ERROR_ENVVAR_NOT_FOUND", "The variable isn't there.", ""},
    {206, "ERROR_FILENAME_EXCED_RANGE", "The path is too long.",
     "Run the setup from a folder with a shorter path."},
    {225, "ERROR_VIRUS_INFECTED", "A protection program stopped the file.",
     "Let the protection program's administrator look at the file and allow it."},
    {232, "ERROR_NO_DATA", "There is no data.", ""},
    {234, "ERROR_MORE_DATA", "There is more data.", ""},
    {259, "ERROR_NO_MORE_ITEMS", "There is no more data.", ""},
    {267, "ERROR_DIRECTORY", "The folder's name isn't valid.", ""},
    {288, "ERROR_NOT_OWNER", "The caller doesn't own the mutex.", ""},
    {317, "ERROR_MR_MID_NOT_FOUND", "The system has no text for a code.", ""},
    {577, "ERROR_INVALID_IMAGE_HASH", "A file's signature doesn't hold.", fix_catalog},
    {740, "ERROR_ELEVATION_REQUIRED", "The program needs an administrator's rights.", as_administrator},
    {995, "ERROR_OPERATION_ABORTED", "The operation was broken off.", ""},
    {1004, "ERROR_INVALID_FLAGS", "Flags of the call aren't valid.", ""},
    {1051, "ERROR_DEPENDENT_SERVICES_RUNNING", "Services that need this one are running.",
     "Stop those services first."},
    {1052, "ERROR_INVALID_SERVICE_CONTROL", "The service doesn't take this control.", ""},
    {1053, "ERROR_SERVICE_REQUEST_TIMEOUT", "The service didn't answer in time.", start_spooler},
    {1056, "ERROR_SERVICE_ALREADY_RUNNING", "The service is running already.", ""},
    {1058, "ERROR_SERVICE_DISABLED", "The service is disabled.",
     "Set the service's start type to automatic, start it, and run again."},
    {1060, "ERROR_SERVICE_DOES_NOT_EXIST", "There is no such service.", ""},
    {1061, "ERROR_SERVICE_CANNOT_ACCEPT_CTRL", "The service takes no control at this moment.",
     "Wait until the service has started or stopped, then try again."},
    {1062, "ERROR_SERVICE_NOT_ACTIVE", "The service isn't started.", start_spooler},
    {1113, "ERROR_NO_UNICODE_TRANSLATION", "A character has no counterpart in the code page.", ""},
    {1117, "ERROR_IO_DEVICE", "The drive can't be read or written.", copy_medium},
    {1168, "ERROR_NOT_FOUND", "It wasn't found.", ""},
    {1223, "ERROR_CANCELLED", "The user broke off.", ""},
    {1275, "ERROR_DRIVER_BLOCKED", "The system blocks this driver.",
     "Ask the driver's maker for a newer version."},
    {1400, "ERROR_INVALID_WINDOW_HANDLE", "The window isn't there.", ""},
    {1407, "ERROR_CANNOT_FIND_WND_CLASS", "A window class isn't there.", ""},
    {1421, "ERROR_CONTROL_ID_NOT_FOUND", "The control isn't there.", ""},
    {1450, "ERROR_NO_SYSTEM_RESOURCES", "The system has no resources left.", free_memory},
    {1455, "ERROR_COMMITMENT_LIMIT", "The paging file is too small.", free_memory},
    {1460, "ERROR_TIMEOUT", "The time ran out.", ""},
    {1722, "RPC_S_SERVER_UNAVAILABLE", "The print spooler can't be reached.", start_spooler},
    {1726, "RPC_S_CALL_FAILED", "The print spooler broke off the call.", start_spooler},
    {1727, "RPC_S_CALL_FAILED_DNE", "The print spooler didn't take the call.", start_spooler},
    {1753, "EPT_S_NOT_REGISTERED", "The print spooler isn't ready for calls.", start_spooler},
    {1780, "RPC_X_NULL_REF_POINTER", "A null pointer was given to the spooler.", ""},
    {1784, "ERROR_INVALID_USER_BUFFER", "The buffer isn't valid for the operation.", ""},
    {1795, "ERROR_PRINTER_DRIVER_ALREADY_INSTALLED", "The printer driver is installed already.", ""},
    {1796, "ERROR_UNKNOWN_PORT", "The port isn't known to the spooler.",
     "Look further up why the port wasn't made."},
    {1797, "ERROR_UNKNOWN_PRINTER_DRIVER", "The printer driver isn't known to the spooler.",
     "Look in the print management whether the driver of the package is installed for this system."},
    {1798, "ERROR_UNKNOWN_PRINTPROCESSOR", "The print processor isn't known to the spooler.",
     "Repair the system's own print processor winprint."},
    {1801, "ERROR_INVALID_PRINTER_NAME", "The printer's name isn't valid.", medium_maker},
    {1802, "ERROR_PRINTER_ALREADY_EXISTS", "A printer of that name is there already.",
     "Rename or remove the printer of that name; one in another case of letters counts too."},
    {1804, "ERROR_INVALID_DATATYPE", "The data type isn't valid.", ""},
    {1805, "ERROR_INVALID_ENVIRONMENT", "The environment isn't valid.", medium_maker},
    {1812, "ERROR_RESOURCE_DATA_NOT_FOUND", "The program has no such resource.", ""},
    {1813, "ERROR_RESOURCE_TYPE_NOT_FOUND", "The program has no such resource type.", ""},
    {1814, "ERROR_RESOURCE_NAME_NOT_FOUND", "The program has no resource of that name.", ""},
    {1815, "ERROR_RESOURCE_LANG_NOT_FOUND", "The program has no resource in that language.", ""},
    {1816, "ERROR_NOT_ENOUGH_QUOTA", "A quota is used up.", free_memory},
    {1905, "ERROR_PRINTER_DELETED", "The printer has been deleted.", ""},
    {1906, "ERROR_INVALID_PRINTER_STATE", "The printer's state forbids the operation.", ""},
    {1930, "ERROR_KM_DRIVER_BLOCKED", "A policy forbids drivers of the old kind.",
     "Ask the driver's maker for a current one."},
    {3001, "ERROR_PRINTER_DRIVER_IN_USE", "The printer driver is in use.", remove_old_driver},
    {3005, "ERROR_PRINT_PROCESSOR_ALREADY_INSTALLED", "The print processor is installed already.", ""},
    {3006, "ERROR_PRINT_MONITOR_ALREADY_INSTALLED", "The port monitor is installed already.", ""},
    {3007, "ERROR_INVALID_PRINT_MONITOR", "The port monitor lacks functions that it must have.",
     medium_maker},
    {3008, "ERROR_PRINT_MONITOR_IN_USE", "The port monitor is in use.", ""},
    {3009, "ERROR_PRINTER_HAS_JOBS_QUEUED", "The printer still has jobs.",
     "Delete the jobs or wait for them, then try again."},
    {3010, "ERROR_SUCCESS_REBOOT_REQUIRED", "It is done once the machine has been restarted.",
     "Restart the machine."},
    {3012, "ERROR_PRINTER_NOT_FOUND", "No printer was found.", ""},
    {3013, "ERROR_PRINTER_DRIVER_WARNED", "The system warns of this printer driver.", medium_maker},
    {3014, "ERROR_PRINTER_DRIVER_BLOCKED", "The system blocks this printer driver.", medium_maker},
    {3015, "ERROR_PRINTER_DRIVER_PACKAGE_IN_USE", "The driver package is in use.", remove_old_driver},
    {3016, "ERROR_CORE_DRIVER_PACKAGE_NOT_FOUND",
     "A driver package of the system that this one needs is missing.",
     "Let the system fetch its driver packages, then run the setup again."},
    {10004, "WSAEINTR", "The network call was broken off.", check_network},
    {10013, "WSAEACCES", "The network call was forbidden.",
     "Allow the setup in the firewall, or type the printer's address."},
    {10014, "WSAEFAULT", "An address of the network call isn't valid.", ""},
    {10022, "WSAEINVAL", "An argument of the network call isn't valid.", ""},
    {10035, "WSAEWOULDBLOCK", "The network call would have to wait.", ""},
    {10038, "WSAENOTSOCK", "What was used isn't a socket.", ""},
    {10040, "WSAEMSGSIZE", "A datagram was too long.", ""},
    {10042, "WSAENOPROTOOPT", "The socket's option isn't one of this system.", ""},
    {10043, "WSAEPROTONOSUPPORT", "The protocol isn't supported.", check_network},
    {10044, "WSAESOCKTNOSUPPORT", "The kind of socket isn't supported.", check_network},
    {10047, "WSAEAFNOSUPPORT", "The kind of address isn't supported.", check_network},
    {10048, "WSAEADDRINUSE", "The network port is in use.",
     "Close the other program that searches for printers, then press Refresh."},
    {10049, "WSAEADDRNOTAVAIL", "The adapter's address isn't available.", check_network},
    {10050, "WSAENETDOWN", "The network is down.", check_network},
    {10051, "WSAENETUNREACH", "The network can't be reached.", check_network},
    {10055, "WSAENOBUFS", "The network has no memory left.", free_memory},
    {10060, "WSAETIMEDOUT", "Nothing answered in time.", check_network},
    {10065, "WSAEHOSTUNREACH", "The other end can't be reached.", check_network},
    {10091, "WSASYSNOTREADY", "The network isn't ready.", check_network},
    {10092, "WSAVERNOTSUPPORTED", "The version of the sockets isn't supported.", ""},
    {10093, "WSANOTINITIALISED", "The sockets weren't started.", ""},
    {0x80004001, "E_NOTIMPL", "It isn't implemented.", ""},
    {0x80004002, "E_NOINTERFACE", "The interface isn't there.", ""},
    {0x80004003, "E_POINTER", "A pointer isn't valid.", ""},
    {0x80004005, "E_FAIL", "The system gave no further reason.", ""},
    {0x8000FFFF, "E_UNEXPECTED", "Something unexpected happened in the system.", ""},
    {0x80040154, "REGDB_E_CLASSNOTREG", "A component of the system isn't registered.",
     "Repair the system's shell components."},
    {0x800401F0, "CO_E_NOTINITIALIZED", "The component library wasn't started.", ""},
    {0x80070005, "E_ACCESSDENIED", "Access was denied.", as_administrator},
    {0x8007000E, "E_OUTOFMEMORY", "There wasn't enough memory.", free_memory},
    {0x80070057, "E_INVALIDARG", "A parameter isn't valid.", ""},
    {0x80096010, "TRUST_E_BAD_DIGEST", "A file isn't the one that was signed.", fix_catalog},
    {0x800B0100, "TRUST_E_NOSIGNATURE", "There is no signature.", fix_catalog},
    {0x800B0101, "CERT_E_EXPIRED", "The signer's certificate has expired.", fix_catalog},
    {0x800B0109, "CERT_E_UNTRUSTEDROOT", "The signer's root isn't trusted on this machine.", trust_signer},
    {0x800B010A, "CERT_E_CHAINING", "The signer's certificate leads to no trusted root.", trust_signer},
    {0x800B0110, "CERT_E_WRONG_USAGE", "The signer's certificate isn't one for signing drivers.",
     fix_catalog},
    {0x800B0111, "TRUST_E_EXPLICIT_DISTRUST", "The signer is distrusted on this machine.", trust_signer},
    {0xE0000203, "ERROR_NO_DRIVER_SELECTED", "No driver of the package fits.", medium_maker},
    {0xE000020B, "ERROR_NO_SUCH_DEVINST", "The device isn't there.", ""},
    {0xE0000219, "ERROR_NO_ASSOCIATED_SERVICE", "The package names no service for its device.", medium_maker},
    {0xE000022F, "ERROR_NO_CATALOG_FOR_OEM_INF", "The package has no catalogue with a signature.",
     fix_catalog},
    {0xE0000241, "ERROR_AUTHENTICODE_TRUSTED_PUBLISHER", "The signer is a trusted publisher.", ""},
    {0xE0000242, "ERROR_AUTHENTICODE_TRUST_NOT_ESTABLISHED", "Nobody has said whether the signer is trusted.",
     trust_signer},
    {0xE0000243, "ERROR_AUTHENTICODE_PUBLISHER_NOT_TRUSTED", "The signer isn't a trusted publisher.",
     trust_signer},
    {0xE0000244, "ERROR_SIGNATURE_OSATTRIBUTE_MISMATCH",
     "The package isn't signed for this system's version.", fix_catalog},
    {0xE0000247, "ERROR_DRIVER_STORE_ADD_FAILED", "The package couldn't be added to the driver store.",
     "Look into the system's own log of device installations (setupapi.dev.log) for the reason."},
    {0xE000024B, "ERROR_FILE_HASH_NOT_IN_CATALOG", "A file of the package isn't the one that was signed.",
     fix_catalog},
};

const ErrorCode* find_code(std::uint32_t code) {
    const auto found = std::find_if(std::begin(codes), std::end(codes),
                                    [code](const ErrorCode& one) { return one.code == code; });
    return found == std::end(codes) ? nullptr : found;
}

NamedError named(std::uint32_t code, bool is_result, const ErrorCode& known, const std::string& name) {
    return {code, is_result, name, known.meaning, known.remedy};
}

} // namespace

std::span<const ErrorCode> error_codes() {
    return codes;
}

NamedError name_error(std::uint32_t code) {
    constexpr std::uint32_t win32_result = 0x80070000u;
    constexpr std::uint32_t setup_result = 0x800F0000u;
    constexpr std::uint32_t setup_code = 0xE0000000u;
    const bool is_result = (code & 0x80000000u) != 0;
    if (const ErrorCode* known = find_code(code))
        return named(code, is_result, *known, known->name);
    const std::uint32_t number = code & 0xffffu;
    if ((code & 0xffff0000u) == win32_result) {
        if (const ErrorCode* known = find_code(number))
            return named(code, true, *known, std::string("HRESULT_FROM_WIN32(") + known->name + ")");
    }
    // SPAPI_E_... is the result that stands for the set-up code ERROR_... with the same number.
    if ((code & 0xffff0000u) == setup_result) {
        if (const ErrorCode* known = find_code(setup_code | number))
            return named(code, true, *known,
                         std::string("SPAPI_E_") + (known->name + std::char_traits<char>::length("ERROR_")));
    }
    return {code, is_result, "", "", ""};
}

std::string shown_error(const NamedError& error) {
    char number[16];
    std::snprintf(number, sizeof number, error.is_result ? "0x%08X" : "%u", error.code);
    return error.name.empty() ? std::string("error ") + number : error.name + " (" + number + ")";
}

std::string errors_as_markdown() {
    std::string page = "| Code | Name | Meaning | Remedy |\n|---|---|---|---|\n";
    for (const ErrorCode& one : codes) {
        char number[16];
        std::snprintf(number, sizeof number, one.code > 0xffffu ? "0x%08X" : "%u", one.code);
        page += std::string("| ") + number + " | `" + one.name + "` | " + one.meaning + " | " +
                (*one.remedy == 0 ? " " : one.remedy) + " |\n";
    }
    return page;
}

} // namespace rehearsal::logs
