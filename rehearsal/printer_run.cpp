#include "rehearsal/printer_run.h"

#include "rehearsal/exit_status.h"

#include <array>
#include <csignal>
#include <iostream>
#include <stdexcept>

#include <sys/signalfd.h>
#include <unistd.h>

namespace rehearsal {
namespace {

// The signals that end the printer, as a descriptor to wait on.
int ending_descriptor() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

void serve(LabelPrinter& printer, const PrinterOptions& options, int signals) {
    // A pipe or terminal that nobody reads any more shows as an error on it, without being asked for.
    const std::array<pollfd, 2> interrupts = {pollfd{signals, POLLIN, 0}, pollfd{STDOUT_FILENO, 0, 0}};
    const int wait = static_cast<int>(options.seconds) * 1000;
    while (printer.step(wait, interrupts) == LabelPrinter::Step::served) {
        if (options.count != 0 && printer.answers() >= options.count)
            return;
    }
}

} // namespace

int run_printer(const PrinterOptions& options) {
    // Writing to a pipe without a reader must not kill; the loop sees it and ends.
    std::signal(SIGPIPE, SIG_IGN);
    const int signals = ending_descriptor();
    int status = ended_well;
    try {
        LabelPrinter printer(options, std::cout);
        serve(printer, options, signals);
    } catch (const std::runtime_error& error) {
        std::cerr << "trk printer: " << error.what() << '\n';
        status = wrong_usage;
    }
    close(signals);
    return status;
}

} // namespace rehearsal
