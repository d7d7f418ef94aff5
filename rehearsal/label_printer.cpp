#include "rehearsal/label_printer.h"

#include "calls/network/real_network.h"
#include "machine/slp_agent.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <netinet/in.h>
#include <ostream>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace rehearsal {
namespace {

// A descriptor that is closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int value = -1) : value_(value) {}
    Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Descriptor() {
        if (value_ >= 0)
            close(value_);
    }
    int get() const { return value_; }
    bool open() const { return value_ >= 0; }

private:
    int value_;
};

[[noreturn]] void give_up(const std::string& what) {
    const int code = errno;
    std::string hint;
    if (code == EACCES)
        hint = " (ports below 1024 need root's rights, or a network namespace)";
    if (code == EADDRNOTAVAIL)
        hint = " (no interface here has that address)";
    throw std::runtime_error(what + ": " + std::strerror(code) + hint);
}

sockaddr_in endpoint(const std::string& address, std::uint16_t port) {
    sockaddr_in native{};
    native.sin_family = AF_INET;
    native.sin_port = htons(port);
    if (inet_pton(AF_INET, address.c_str(), &native.sin_addr) != 1)
        throw std::runtime_error("'" + address + "' is no IPv4 address");
    return native;
}

// A socket bound to the address; the port may be shared with the other printers of the computer.
Descriptor bound_socket(int type, const std::string& address, std::uint16_t port) {
    sockaddr_in local = endpoint(address, port);
    Descriptor descriptor(socket(AF_INET, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const int on = 1;
    if (!descriptor.open() || setsockopt(descriptor.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        bind(descriptor.get(), reinterpret_cast<sockaddr*>(&local), sizeof local) != 0)
        give_up("can't use " + address + " port " + std::to_string(port));
    return descriptor;
}

std::uint16_t port_of(const Descriptor& descriptor) {
    sockaddr_in local{};
    socklen_t length = sizeof local;
    if (getsockname(descriptor.get(), reinterpret_cast<sockaddr*>(&local), &length) != 0)
        give_up("getsockname");
    return ntohs(local.sin_port);
}

std::string sender_of(const sockaddr_in& sender) {
    return platform::dotted(ntohl(sender.sin_addr.s_addr));
}

// RFC 2608, section 5: characters with a meaning in an attribute list are written as a backslash and two
// digits.
std::string escaped(const std::string& value) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char letter : value) {
        const auto byte = static_cast<unsigned char>(letter);
        const bool special = byte < 0x20 || byte == 0x7f || std::strchr("(),\\!<=>~", letter) != nullptr;
        if (special)
            text += {'\\', digits[byte >> 4], digits[byte & 15]};
        else
            text += letter;
    }
    return text;
}

} // namespace

std::string printer_attributes(const PrinterOptions& options) {
    if (options.empty)
        return {};
    std::string list = "(printer-name=" + escaped(options.name) + ")";
    if (!options.location.empty())
        list += ",(printer-location=" + escaped(options.location) + ")";
    return list + ",(ieee1284-id=MFG:Vorlane;MDL:" + escaped(options.model) + ";CLS:PRINTER;)";
}

struct LabelPrinter::State {
    State(const PrinterOptions& the_options, std::ostream& the_lines)
        : options(the_options), lines(the_lines) {}

    // Multicast comes in on a socket that is bound to the group, so that each printer of a computer gets its
    // copy; answers go out from the printer's own address, which also takes requests sent to it alone.
    void open_discovery();
    void open_raw();
    void answer(const Descriptor& incoming);
    void send_reply(const PrinterReply& reply, const platform::AttributeRequest& request,
                    const sockaddr_in& to);
    void begin_job();
    void continue_job();
    void end_job();

    const PrinterOptions options;
    std::ostream& lines;
    Descriptor group, own, listener, connection;
    std::string job_sender;
    std::ofstream job_file;
    std::uint64_t job_bytes = 0;
    unsigned jobs = 0;
    unsigned answers = 0;
};

void LabelPrinter::State::open_discovery() {
    own = bound_socket(SOCK_DGRAM, options.address, options.discovery_port);
    group = bound_socket(SOCK_DGRAM, std::string(platform::slp_group), port_of(own));
    ip_mreq membership{};
    membership.imr_multiaddr = endpoint(std::string(platform::slp_group), 0).sin_addr;
    membership.imr_interface = endpoint(options.address, 0).sin_addr;
    const int off = 0;
    if (setsockopt(group.get(), IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership) != 0 ||
        setsockopt(group.get(), IPPROTO_IP, IP_MULTICAST_ALL, &off, sizeof off) != 0)
        give_up("can't join " + std::string(platform::slp_group) + " from " + options.address);
}

void LabelPrinter::State::open_raw() {
    listener = bound_socket(SOCK_STREAM, options.address, options.raw_port);
    if (listen(listener.get(), 4) != 0)
        give_up("can't listen on " + options.address);
}

void LabelPrinter::State::answer(const Descriptor& incoming) {
    std::array<std::uint8_t, 65536> buffer;
    sockaddr_in sender{};
    socklen_t length = sizeof sender;
    auto* from = reinterpret_cast<sockaddr*>(&sender);
    const ssize_t received = recvfrom(incoming.get(), buffer.data(), buffer.size(), 0, from, &length);
    if (received < 0)
        return;
    const auto request =
        platform::parse_attribute_request({buffer.data(), static_cast<std::size_t>(received)});
    if (!request) {
        lines << "no attribute request from " << sender_of(sender) << ": " << received << " bytes"
              << std::endl;
        return;
    }
    if (!platform::concerns_raw_printer(*request, options.address)) {
        lines << "a search that isn't for this printer from " << sender_of(sender) << std::endl;
        return;
    }
    if (options.delay != 0)
        poll(nullptr, 0, static_cast<int>(options.delay));
    ++answers;
    const std::vector<PrinterReply> usual = {{false, printer_attributes(options), {}, 1}};
    for (const PrinterReply& reply : options.replies.value_or(usual))
        send_reply(reply, *request, sender);
}

void LabelPrinter::State::send_reply(const PrinterReply& reply, const platform::AttributeRequest& request,
                                     const sockaddr_in& to) {
    const std::vector<std::uint8_t> bytes =
        reply.as_it_is ? reply.datagram : platform::attribute_reply(request, reply.attributes);
    ssize_t sent = 0;
    for (unsigned time = 0; time < reply.times && sent >= 0; ++time)
        sent = sendto(own.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL,
                      reinterpret_cast<const sockaddr*>(&to), sizeof to);
    if (sent < 0) {
        lines << "no answer to " << sender_of(to) << ": " << std::strerror(errno) << std::endl;
        return;
    }
    lines << "answered " << sender_of(to) << " with " << bytes.size() << " bytes"
          << (reply.times == 1 ? "" : ", " + std::to_string(reply.times) + " times") << std::endl;
}

void LabelPrinter::State::begin_job() {
    sockaddr_in sender{};
    socklen_t length = sizeof sender;
    connection = Descriptor(
        accept4(listener.get(), reinterpret_cast<sockaddr*>(&sender), &length, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!connection.open())
        return;
    job_sender = sender_of(sender);
    job_bytes = 0;
    ++jobs;
    if (!options.save.empty())
        job_file.open(options.save / ("job-" + std::to_string(jobs) + ".raw"), std::ios::binary);
}

void LabelPrinter::State::continue_job() {
    std::array<char, 65536> buffer;
    const ssize_t received = recv(connection.get(), buffer.data(), buffer.size(), 0);
    if (received < 0 && errno == EAGAIN)
        return;
    if (received <= 0) {
        end_job();
        return;
    }
    job_bytes += static_cast<std::uint64_t>(received);
    if (job_file.is_open())
        job_file.write(buffer.data(), received);
}

void LabelPrinter::State::end_job() {
    connection = Descriptor();
    // A file that couldn't be opened or written is in a failed state by now.
    const bool kept = options.save.empty() || (job_file.close(), !job_file.fail());
    job_file.clear();
    lines << "job " << jobs << " from " << job_sender << ": " << job_bytes << " bytes"
          << (kept ? "" : ", not saved") << std::endl;
}

LabelPrinter::LabelPrinter(const PrinterOptions& options, std::ostream& lines)
    : state_(std::make_unique<State>(options, lines)) {
    const std::uint32_t address = ntohl(endpoint(options.address, 0).sin_addr.s_addr);
    if (const std::string reason = platform::why_unsafe(address); !reason.empty())
        throw std::runtime_error(reason);
    if (!options.save.empty() && !std::filesystem::is_directory(options.save))
        throw std::runtime_error("no folder " + options.save.string());
    state_->open_discovery();
    state_->open_raw();
    lines << "ready " << options.address << " slp " << discovery_port() << " raw " << raw_port() << " "
          << (options.empty ? "nothing to offer" : options.model + " " + options.name) << std::endl;
}

LabelPrinter::~LabelPrinter() = default;

LabelPrinter::Step LabelPrinter::step(int milliseconds, std::span<const pollfd> interrupts) {
    // One job at a time, as a printer has one engine; further ones wait in the listener's queue.
    State& state = *state_;
    const bool printing = state.connection.open();
    std::vector<pollfd> waits = {{state.group.get(), POLLIN, 0},
                                 {state.own.get(), POLLIN, 0},
                                 {printing ? state.connection.get() : state.listener.get(), POLLIN, 0}};
    waits.insert(waits.end(), interrupts.begin(), interrupts.end());
    if (poll(waits.data(), waits.size(), milliseconds) <= 0)
        return Step::nothing;
    for (std::size_t index = 3; index < waits.size(); ++index) {
        if (waits[index].revents != 0)
            return Step::interrupted;
    }
    if (waits[0].revents != 0)
        state.answer(state.group);
    if (waits[1].revents != 0)
        state.answer(state.own);
    if (waits[2].revents != 0 && printing)
        state.continue_job();
    else if (waits[2].revents != 0)
        state.begin_job();
    return Step::served;
}

std::uint16_t LabelPrinter::discovery_port() const {
    return port_of(state_->own);
}

std::uint16_t LabelPrinter::raw_port() const {
    return port_of(state_->listener);
}

unsigned LabelPrinter::answers() const {
    return state_->answers;
}

} // namespace rehearsal
