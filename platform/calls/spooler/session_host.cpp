// The spooler's host in a rehearsal: the session's gate, handles and machine. What is in the machine needs no
// saving.
#include "calls/files/disk.h"
#include "calls/files/paths.h"
#include "calls/run/session.h"
#include "calls/system/service_state.h"
#include "machine/text.h"
#include "machine/whole_file.h"
#include "spooler_calls/spooler_call.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t longest_store_path = 32767; // the store isn't bound to MAX_PATH

struct SpoolerArea {
    std::mutex lock;
};

struct SpoolerHandle : Object, OpenedPrinter {
    explicit SpoolerHandle(OpenedPrinter printer) : OpenedPrinter(std::move(printer)) {}
    const char* kind() const override { return monitor ? "port monitor" : "printer"; }
};

class MachineFiles : public PackageFiles {
public:
    std::optional<std::string> read(const std::u16string& path) override {
        const RealPath place = real_path(path.c_str(), longest_store_path);
        if (place.error != 0 || !place.exists || place.folder)
            return std::nullopt;
        return read_whole_file(place.real);
    }

    bool write(const std::u16string& path, const std::string& bytes) override {
        return make_folders(path) && write_file(real_path(path.c_str(), longest_store_path), bytes) == 0;
    }

    bool remove_folder(const std::u16string& path) override {
        const RealPath place = real_path(path.c_str(), longest_store_path);
        if (place.error != 0 || place.read_only || place.root)
            return false;
        std::error_code error;
        fs::remove_all(place.real, error);
        return !error;
    }

    std::u16string from_ansi(std::string_view bytes) override { return platform::from_ansi(bytes); }

private:
    // Every folder above the last name, one by one, since names are matched without regard to case.
    static bool make_folders(const std::u16string& path) {
        for (std::size_t end = path.find(u'\\', 3); end != path.npos; end = path.find(u'\\', end + 1)) {
            const RealPath folder = real_path(path.substr(0, end).c_str(), longest_store_path);
            if (folder.error != 0 || (!folder.exists && make_folder(folder) != 0))
                return false;
        }
        return true;
    }
};

} // namespace

struct SpoolerCall::Host {
    Call call;
    std::unique_lock<std::mutex> lock = {};
};

SpoolerCall::SpoolerCall(const char* name, std::string argument)
    : host_(new Host{Call(name, std::move(argument))}) {}

SpoolerCall::~SpoolerCall() = default;

bool SpoolerCall::fails(std::uint32_t default_error) {
    const bool struck = host_->call.fails(default_error);
    error_ = host_->call.error();
    return struck;
}

ToldSize SpoolerCall::told_size(std::size_t needed, std::size_t capacity) {
    return host_->call.size(needed, capacity);
}

BOOL SpoolerCall::refuse(const std::string& why) {
    host_->call.refuse(why);
}

bool SpoolerCall::spooler_away() {
    const std::uint32_t service = service_state(u"Spooler");
    if (service == 0 || service == SERVICE_RUNNING)
        return false;
    fail(RPC_S_SERVER_UNAVAILABLE);
    return true;
}

BOOL SpoolerCall::fail(std::uint32_t error) {
    error_ = error;
    return failed(error);
}

SpoolerState& SpoolerCall::state() {
    if (!host_->lock.owns_lock())
        host_->lock = std::unique_lock(session().area<SpoolerArea>().lock);
    return session().machine.spooler;
}

const Machine& SpoolerCall::machine() {
    return session().machine;
}

bool SpoolerCall::save() {
    return true;
}

HANDLE SpoolerCall::open(OpenedPrinter printer) {
    return session().handles.open(std::make_shared<SpoolerHandle>(std::move(printer)));
}

std::shared_ptr<const OpenedPrinter> SpoolerCall::find(HANDLE handle, bool monitor) {
    auto opened = session().handles.find<SpoolerHandle>(handle);
    if (opened && opened->monitor == monitor)
        return opened;
    fail(ERROR_INVALID_HANDLE);
    return nullptr;
}

BOOL SpoolerCall::close(HANDLE handle) {
    const auto open = session().handles.peek(handle);
    if (open && std::dynamic_pointer_cast<SpoolerHandle>(open) == nullptr)
        session().gate.misuse(std::string("ClosePrinter of a ") + open->kind());
    else if (session().handles.close(handle))
        return TRUE;
    return fail(ERROR_INVALID_HANDLE);
}

std::string handle_kind(HANDLE handle) {
    const auto open = session().handles.peek(handle);
    return open ? open->kind() : "";
}

std::u16string handle_name(HANDLE handle) {
    const auto open = std::dynamic_pointer_cast<SpoolerHandle>(session().handles.peek(handle));
    return open ? open->name : u"";
}

std::unique_ptr<PackageFiles> package_files() {
    return std::make_unique<MachineFiles>();
}

} // namespace platform
