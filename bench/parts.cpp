// Runs one part of the program over the layer, as often as wanted, to be measured from outside. The machine's
// drive C is made in the current folder.
#include "calls/run/session.h"
#include "deploy/program_files.h"
#include "discovery/network_search.h"
#include "discovery/slp.h"
#include "package/driver_inf.h"
#include "state/app_state.h"
#include "support/install_log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>

#include <windows.h>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void give_up(const char* what) {
    std::fprintf(stderr, "trk_bench: %s\n", what);
    std::exit(1);
}

// Nobody, who forces each flushed line to the disk if there is a file to force.
class BenchUser : public platform::User {
public:
    ~BenchUser() override {
        if (flushed >= 0)
            close(flushed);
    }
    bool act() override { return false; }
    void box(const platform::BoxView&) override {}
    void file_flushed() override {
        if (flushed >= 0 && fdatasync(flushed) != 0)
            give_up("the log can't be flushed");
    }
    int flushed = -1;
};

// A machine whose drive C lies in a folder of its own below the current one.
struct Bench {
    platform::Machine machine = platform::default_machine();
    BenchUser user;
    fs::path drive_c = "drive_c";
    fs::path log = drive_c / "Windows/Temp/trk_install.log";

    platform::SessionOptions options(const fs::path& medium) {
        fs::remove_all(drive_c);
        fs::create_directories(log.parent_path());
        fs::create_directories(drive_c / "Program Files");
        fs::create_directories(drive_c / "ProgramData/Microsoft/Windows/Start Menu/Programs");
        platform::SessionOptions options;
        options.drive_c = drive_c;
        options.medium = medium;
        options.resources = TRK_RESOURCE_FILE;
        return options;
    }
    std::string log_text() const {
        std::ifstream file(log, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

void open_bench_log() {
    WCHAR path[256];
    app.log_handle = open_log(TEXT("trk_install"), TEXT(".log"), path, 256);
    if (app.log_handle == INVALID_HANDLE_VALUE)
        give_up("no log");
}

// Without a log, as the composing of its lines is another part.
void read_replies(long times) {
    Bench bench;
    const platform::Session session(bench.machine, bench.options({}), bench.user);
    // The fields in front of the text aren't looked at.
    const std::string reply = std::string(20, '\0') +
                              "(printer-name=Shelf A),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;)" +
                              std::string(8, '\0');
    char address[printer_address_capacity];
    char name[printer_name_capacity];
    for (long i = 0; i < times; ++i)
        if (!read_slp_reply(reinterpret_cast<const BYTE*>(reply.data()), static_cast<int>(reply.size()),
                            "MDL:Label_100_Series;", 0x0700000a, address, name))
            give_up("the reply isn't taken");
    if (std::strcmp(address, "10.0.0.7") != 0 || std::strcmp(name, "Shelf A") != 0)
        give_up("the reply is misread");
}

void log_lines(long times) {
    Bench bench;
    const platform::Session session(bench.machine, bench.options({}), bench.user);
    open_bench_log();
    for (long i = 0; i < times; ++i)
        log_line(TEXT("Printer found %S %S\r\n"), "10.0.0.7", "Shelf A");
    close_log();
    if (fs::file_size(bench.log) != static_cast<std::uintmax_t>(times) * 32)
        give_up("the log has other lines");
}

// The INF files of a folder, of which none is a printer's.
void scan_infs(const fs::path& folder) {
    Bench bench;
    const platform::Session session(bench.machine, bench.options(folder), bench.user);
    char driver[256];
    char manufacturer[256];
    char model[256];
    char file[512];
    WCHAR path[256];
    DriverVersion version = 0;
    DWORD has_usb = 0;
    if (find_driver_inf(driver, sizeof driver, manufacturer, sizeof manufacturer, model, sizeof model, path,
                        file, 0, &version, &has_usb, 0))
        give_up("a driver was found");
}

// Prints how many lines the log has.
void deploy(const fs::path& medium) {
    Bench bench;
    const platform::Session session(bench.machine, bench.options(medium), bench.user);
    open_bench_log();
    bench.user.flushed = open(bench.log.c_str(), O_WRONLY | O_CLOEXEC);
    if (!deploy_program_files(TEXT("Wrenchbay"), TEXT("Label 100 Driver"), "lbl.inf", "Label_100_Series", 1))
        give_up("not deployed");
    close_log();
    const std::string log = bench.log_text();
    std::printf("%td\n", std::count(log.begin(), log.end(), '\n'));
}

// What the log costs without the program: lines of that length, each forced to the disk.
void write_lines(const char* file, long count) {
    const int descriptor = open(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    const std::string line = std::string(98, 'x') + "\r\n";
    for (long i = 0; i < count; ++i)
        if (write(descriptor, line.data(), line.size()) < 0 || fdatasync(descriptor) != 0)
            give_up("a line can't be written");
    close(descriptor);
}

// On the loopback interface, where nobody answers.
void search() {
    Bench bench;
    bench.machine.adapters = {{.addresses = {"127.0.0.1"}, .real_sockets = true}};
    const platform::Session session(bench.machine, bench.options({}), bench.user);
    if (!find_slp("Label_100_Series", [](const char*, const char*) {}))
        give_up("the search failed");
}

int run(int count, char** words) {
    const std::string_view part = count > 1 ? words[1] : "";
    const auto number = [&](int place) { return std::strtol(words[place], nullptr, 10); };
    if (part == "search" && count == 2)
        search();
    else if (part == "reply" && count == 3)
        read_replies(number(2));
    else if (part == "line" && count == 3)
        log_lines(number(2));
    else if (part == "scan" && count == 3)
        scan_infs(words[2]);
    else if (part == "deploy" && count == 3)
        deploy(words[2]);
    else if (part == "lines" && count == 4)
        write_lines(words[2], number(3));
    else
        give_up("reply TIMES | line TIMES | scan FOLDER | search | deploy MEDIUM | lines FILE COUNT");
    return 0;
}

} // namespace

int main(int count, char** words) {
    try {
        return run(count, words);
    } catch (const std::exception& error) {
        give_up(error.what());
    }
}
