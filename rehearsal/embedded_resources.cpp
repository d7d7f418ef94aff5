#include "rehearsal/embedded_resources.h"

#include "rehearsal/unfinished.h"

#include <cstdlib>
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

void write_resources(int descriptor) {
    const auto size = static_cast<std::size_t>(trk_resources_end - trk_resources);
    if (descriptor < 0 || write(descriptor, trk_resources, size) != static_cast<ssize_t>(size))
        throw std::runtime_error("no memory for the resources");
}

// Where /proc isn't mounted, as in a bare root folder, a file in memory has no path.
const std::filesystem::path& temporary_file() {
    static std::string name = (std::filesystem::temp_directory_path() / "trk-resources-XXXXXX").string();
    static const int descriptor = mkstemp(name.data());
    static const Unfinished file(name); // goes with the process
    static const bool written = (write_resources(descriptor), close(descriptor) == 0);
    if (!written)
        throw std::runtime_error(name + ": can't be written");
    return file.path();
}

std::string open_in_memory() {
    const int descriptor = memfd_create("resources", MFD_CLOEXEC);
    write_resources(descriptor);
    return "/proc/self/fd/" + std::to_string(descriptor);
}

} // namespace

std::filesystem::path embedded_resources() {
    static const std::string in_memory = open_in_memory();
    return access(in_memory.c_str(), R_OK) == 0 ? std::filesystem::path(in_memory) : temporary_file();
}

} // namespace rehearsal
