#include "rehearsal/check/inf_view.h"

#include "calls/text/ansi_text.h"
#include "machine/little_endian.h"
#include "machine/text.h"
#include "package/driver_inf.h"
#include "rehearsal/check/program_view.h"
#include "state/app_state.h"
#include "support/install_log.h"
#include "support/text.h"

#include <windows.h>

#include <algorithm>

namespace rehearsal::check {
namespace {

constexpr int field_bytes = sizeof(app.driver.driverName) - 1; // the size that the program passes

constexpr std::u16string_view environment_names[] = {u"Windows NT x86", u"Windows x64", u"Windows ARM64"};

// In front of each file's part of the log. No reader writes such a line.
constexpr char log_mark[] = "\x01";

SetupReading read_as_setup(const WCHAR* path) {
    std::vector<char> driver(field_bytes), section(field_bytes), model(field_bytes);
    DriverVersion version = 0;
    DWORD has_usb = 0;
    SetupReading reading;
    log_line(TEXT("%S"), log_mark);
    reading.accepted = read_inf_driver(path, driver.data(), field_bytes, section.data(), field_bytes,
                                       model.data(), field_bytes, &version, &has_usb) != 0;
    reading.driver_name = driver.data();
    reading.models_section = section.data();
    reading.model = model.data();
    reading.version = version;
    reading.has_usb = has_usb != 0;
    return reading;
}

// UTF-16 and UTF-8 by their marks, all else in the ANSI code page, as the system does it.
std::u16string decoded_inf(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE"))
        return platform::utf16_text(bytes.substr(2));
    return bytes.starts_with("\xEF\xBB\xBF") ? platform::to_utf16(bytes.substr(3))
                                             : platform::from_ansi(bytes);
}

// The names that the setup's own search for INF files delivers.
std::vector<std::u16string> found_names() {
    std::vector<std::u16string> names;
    WIN32_FIND_DATAW entry = {};
    const HANDLE search = FindFirstFileW(TEXT("D:\\medium\\Drivers\\*.inf"), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return names;
    do {
        names.emplace_back(entry.cFileName);
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    return names;
}

bool ends_in_inf(const std::string& path) {
    return path.size() >= 4 && same_text(path.substr(path.size() - 4), ".inf");
}

void read_as_system(DriverInf& file) {
    file.parsed = file.inf.parse(file.text);
    if (!file.parsed)
        file.inf = {};
    for (std::size_t i = 0; i < environment_count; ++i)
        platform::read_inf_package(file.text, environment_names[i], file.packages[i]);
}

// Gives each file that was read its part of the log.
void share_log(const std::string& log, std::vector<DriverInf>& files) {
    std::size_t begin = log.find(log_mark);
    for (DriverInf& file : files) {
        if (!file.entry->is_file() || begin == log.npos)
            continue;
        const std::size_t end = log.find(log_mark, begin + 1);
        file.setup.log = log.substr(begin + 1, end == log.npos ? end : end - begin - 1);
        begin = end;
    }
}

DriverInfs read_driver_infs(const Medium& medium) {
    DriverInfs infs;
    const std::string log = with_program(medium, [&] {
        for (const std::u16string& name : found_names()) {
            DriverInf file;
            file.entry = medium.find("Drivers/" + platform::to_utf8(name));
            if (file.entry == nullptr)
                continue;
            file.by_short_name = !ends_in_inf(file.entry->path);
            if (file.entry->is_file()) {
                file.setup = read_as_setup((u"D:\\medium\\Drivers\\" + name).c_str());
                file.text = decoded_inf(medium.bytes(*file.entry));
            }
            infs.files.push_back(std::move(file));
        }
    });
    share_log(log, infs.files);
    for (DriverInf& file : infs.files)
        read_as_system(file);
    return infs;
}

} // namespace

const char* name_of(Environment environment) {
    constexpr const char* names[] = {"x86", "amd64", "arm64"};
    return names[environment];
}

std::string shown_version(std::uint64_t version) {
    std::string out;
    for (int shift = 48; shift >= 0; shift -= 16)
        out += (out.empty() ? "" : ".") + std::to_string((version >> shift) & 0xFFFF);
    return out;
}

const DriverInfs& driver_infs(const Medium& medium) {
    return medium.kept<DriverInfs>(read_driver_infs);
}

const DriverInf* taken_inf(const DriverInfs& infs) {
    const auto taken = std::find_if(infs.files.begin(), infs.files.end(),
                                    [](const DriverInf& file) { return file.setup.accepted; });
    return taken == infs.files.end() ? nullptr : &*taken;
}

Place place_in(const DriverInf& inf, const platform::TextPlace& place) {
    return {inf.entry->path, place.line, place.column};
}

std::u16string in_code_page(const Medium& medium, std::string_view bytes, std::uint32_t code_page) {
    std::u16string text;
    platform::Machine machine = platform::default_machine();
    machine.code_page = code_page;
    with_program(
        medium, [&] { text = platform::from_ansi(bytes); }, machine);
    return text;
}

} // namespace rehearsal::check
