#include "calls/windows/resources.h"

#include "calls/run/session.h"
#include "calls/system/locale_state.h"
#include "machine/text.h"
#include "machine/whole_file.h"

#include <windows.h>

#include <algorithm>

namespace platform {
namespace {

constexpr std::uint16_t primary_language_bits = 0x3FF;
constexpr std::uint16_t english_us = 1033;
constexpr std::uint16_t cursor_group_resource = 12;

std::vector<ResourceEntry> load_entries() {
    const std::filesystem::path& path = session().options.resources;
    const auto bytes = read_whole_file(path);
    if (!bytes)
        session().gate.refuse("the resource file '" + path.string() + "' can't be read");
    try {
        return read_resource_file({reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()});
    } catch (const ResourceError& error) {
        session().gate.refuse("the resource file '" + path.string() + "': " + error.what());
    }
}

// Read once a session, by the first call that needs a resource.
struct Resources {
    const std::vector<ResourceEntry> entries = load_entries();
};

std::u16string find_string(const Call& call, UINT id) {
    const std::vector<std::uint32_t>& missing = session().machine.missing_strings;
    if (std::find(missing.begin(), missing.end(), id) != missing.end())
        return {};
    constexpr UINT block_size = 16;
    const ResourceEntry* block =
        find_resource(string_resource, {static_cast<std::uint16_t>(id / block_size + 1), {}});
    if (block == nullptr)
        return {};
    try {
        return read_block_string(block->data, id % block_size);
    } catch (const ResourceError& error) {
        call.refuse(error.what());
    }
}

// Loaded images are never released by the program; their handles only tell them apart.
template<class Handle>
Handle image_handle(std::uint16_t type, const ResourceName& name) {
    return reinterpret_cast<Handle>(static_cast<std::uintptr_t>(type) << 20 | name.id | 1u << 19);
}

// A cursor or icon of the system's own, or an icon of the program's; 0 with the error set when there is none.
template<class Handle>
Handle load_shared_image(HINSTANCE instance, std::uint16_t type, const ResourceName& name) {
    constexpr std::uint16_t first_of_system = 32512;
    constexpr std::uint16_t last_of_system = 32518;
    if (instance == nullptr && name.text.empty() && name.id >= first_of_system && name.id <= last_of_system)
        return image_handle<Handle>(type, name);
    if (instance != nullptr && find_resource(type, name) != nullptr)
        return image_handle<Handle>(type, name);
    set_last_error(ERROR_RESOURCE_NAME_NOT_FOUND);
    return nullptr;
}

} // namespace

void* system_cursor(std::uint16_t id) {
    return image_handle<void*>(cursor_group_resource, {id, {}});
}

const ResourceEntry* find_resource(std::uint16_t type, const ResourceName& name) {
    const std::uint16_t language = current_ui_language();
    const auto primary = static_cast<std::uint16_t>(language & primary_language_bits);
    const ResourceEntry* best = nullptr;
    int best_rank = 0;
    for (const ResourceEntry& entry : session().area<Resources>().entries) {
        if (entry.type != ResourceName{type, {}} || entry.name != name)
            continue;
        const int rank = entry.language == language                            ? 4
                         : entry.language == primary                           ? 3
                         : (entry.language & primary_language_bits) == primary ? 2
                         : entry.language == english_us                        ? 1
                                                                               : 0;
        if (rank > best_rank) {
            best = &entry;
            best_rank = rank;
        }
    }
    return best;
}

ResourceName resource_name(const char16_t* name) {
    const auto value = reinterpret_cast<std::uintptr_t>(name);
    if (value <= 0xFFFF)
        return {static_cast<std::uint16_t>(value), {}};
    return {0, upper_case(name)};
}

std::string shown_name(const char16_t* name) {
    const ResourceName resource = resource_name(name);
    return resource.text.empty() ? std::to_string(resource.id) : to_utf8(resource.text);
}

std::unique_ptr<DialogTemplate> find_dialog_template(const Call& call, const char16_t* name) {
    const ResourceEntry* entry = find_resource(dialog_resource, resource_name(name));
    if (entry == nullptr)
        return nullptr;
    try {
        return std::make_unique<DialogTemplate>(read_dialog_template(entry->data));
    } catch (const ResourceError& error) {
        call.refuse(error.what());
    }
}

} // namespace platform

using namespace platform;

int LoadStringW(HINSTANCE, UINT id, LPWSTR buffer, int capacity) {
    Call call("LoadStringW", std::to_string(id));
    if (call.fails(ERROR_RESOURCE_NAME_NOT_FOUND))
        return 0;
    if (buffer == nullptr || capacity < 1)
        call.refuse("only the form that copies into a buffer is modelled");
    const std::u16string text = find_string(call, id);
    if (text.empty()) {
        set_last_error(ERROR_RESOURCE_NAME_NOT_FOUND);
        return 0;
    }
    const std::size_t length = text.copy(buffer, static_cast<std::size_t>(capacity) - 1);
    buffer[length] = 0;
    return static_cast<int>(length);
}

HCURSOR LoadCursorW(HINSTANCE instance, LPCWSTR name) {
    Call call("LoadCursorW", shown_name(name));
    if (call.fails(ERROR_RESOURCE_NAME_NOT_FOUND))
        return nullptr;
    return load_shared_image<HCURSOR>(instance, cursor_group_resource, resource_name(name));
}

HICON LoadIconW(HINSTANCE instance, LPCWSTR name) {
    Call call("LoadIconW", shown_name(name));
    if (call.fails(ERROR_RESOURCE_NAME_NOT_FOUND))
        return nullptr;
    return load_shared_image<HICON>(instance, icon_group_resource, resource_name(name));
}
