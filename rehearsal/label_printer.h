// trk printer: a label printer to rehearse with, on real sockets. It answers searches for raw printers by SLP
// and takes print data on a TCP port. Several printers share a computer, each with an address of its own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <poll.h>
#include <span>
#include <string>
#include <vector>

namespace rehearsal {

// What a printer answers in place of its attributes, however malformed.
struct PrinterReply {
    bool as_it_is = false;              // `datagram` is sent; else a well-formed reply with `attributes`
    std::string attributes;             // an attribute list, nothing escaped; up to 65535 bytes
    std::vector<std::uint8_t> datagram; // up to 65507 bytes
    unsigned times = 1;                 // it is sent
};

struct PrinterOptions {
    std::string address = "127.0.0.1"; // dotted; of loopback or of an interface that the rehearsal made
    std::string model = "Label_100_Series";
    std::string name = "Label printer";
    std::string location; // empty: not told
    bool empty = false;   // an agent with nothing to offer: it answers with an empty attribute list
    std::optional<std::vector<PrinterReply>>
        replies;                        // to each search, in their order; an empty list: silence
    std::uint16_t discovery_port = 427; // 0: any free one, as the ready line tells
    std::uint16_t raw_port = 9100;      // likewise
    std::filesystem::path save;         // folder for the jobs' bytes; empty: they are only counted
    unsigned delay = 0;                 // milliseconds that pass before an answer goes out
    unsigned count = 0;                 // end after so many answers; 0: no such limit
    unsigned seconds = 600;             // end after so long without any event
};

class LabelPrinter {
public:
    // Opens the sockets. Throws std::runtime_error, with what a person can do about it, when that fails or
    // when traffic from the address could leave the computer. What happens is told on `lines`, a line each.
    LabelPrinter(const PrinterOptions& options, std::ostream& lines);
    ~LabelPrinter();

    enum class Step { nothing, served, interrupted };
    // Waits for at most so long and serves what came. An event on one of the interrupts ends the wait
    // unserved.
    Step step(int milliseconds, std::span<const pollfd> interrupts = {});

    std::uint16_t discovery_port() const;
    std::uint16_t raw_port() const;
    unsigned answers() const; // searches answered so far

private:
    struct State;
    std::unique_ptr<State> state_;
};

// The attribute list of the printer's answers, with the characters that have a meaning in it escaped.
std::string printer_attributes(const PrinterOptions& options);

} // namespace rehearsal
