#include "rehearsal/embedded_resources.h"

#include <stdexcept>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

// The assembler takes the file as it is; a list of its bytes as a source would be compiled for seconds.
__asm__(".section .rodata\n"
        ".balign 8\n"
        "trk_resources:\n"
        ".incbin \"" TRK_RESOURCE_FILE "\"\n"
        "trk_resources_end:\n"
        ".previous\n");

extern "C" {
extern const char trk_resources[];
extern const char trk_resources_end[];
}

namespace rehearsal {
namespace {

int open_in_memory() {
    const auto size = static_cast<std::size_t>(trk_resources_end - trk_resources);
    const int descriptor = memfd_create("resources", MFD_CLOEXEC);
    if (descriptor < 0 || write(descriptor, trk_resources, size) != static_cast<ssize_t>(size))
        throw std::runtime_error("no memory for the resources");
    return descriptor;
}

} // namespace

std::filesystem::path embedded_resources() {
    static const int descriptor = open_in_memory();
    return "/proc/self/fd/" + std::to_string(descriptor);
}

} // namespace rehearsal
