// What the program tells the platform's loader about itself. The linker doesn't know the record;
// tools/finish_program.cpp enters it into the program's header.
#include <windows.h>

#include <cstddef>
#include <cstdint>

extern "C" std::uintptr_t __stack_chk_guard;

namespace {

// The start of IMAGE_LOAD_CONFIG_DIRECTORY, with pointers where the package has numbers, so that it needs no
// code to be filled in. The package also still calls the load flags reserved.
struct LoadConfig {
    DWORD size;
    DWORD time_stamp;
    WORD major_version, minor_version;
    DWORD global_flags_clear, global_flags_set;
    DWORD critical_section_timeout;
    std::uintptr_t decommit_free_block, decommit_total_free, lock_prefix_table, maximum_allocation,
        virtual_memory_threshold;
    std::uintptr_t affinity_mask; // on 32 bits it stands behind the heap flags; both are 0
    DWORD heap_flags;
    WORD service_pack;
    WORD dependent_load_flags;
    const void* edit_list;
    const void* security_cookie;
};
static_assert(offsetof(LoadConfig, dependent_load_flags) == offsetof(IMAGE_LOAD_CONFIG_DIRECTORY, Reserved1));
static_assert(offsetof(LoadConfig, security_cookie) == offsetof(IMAGE_LOAD_CONFIG_DIRECTORY, SecurityCookie));

// LOAD_LIBRARY_SEARCH_SYSTEM32: the libraries of the import table come from the system folder alone.
constexpr WORD search_system_folder = 0x800;

} // namespace

extern "C" {
extern const LoadConfig load_config;
const LoadConfig load_config = {
    .size = sizeof(LoadConfig),
    .dependent_load_flags = search_system_folder,
    .security_cookie = &__stack_chk_guard, // newer systems put a random value there before start-up
};
}
