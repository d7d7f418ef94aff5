#include "calls/run/session.h"
#include "machine/text.h"

#include <windows.h>

#include <cstring>

namespace {

using platform::same_name;
using platform::session;

struct RegistryKey : platform::Object {
    std::u16string path; // below HKEY_LOCAL_MACHINE; empty for the root itself
    REGSAM access = 0;
    const char* kind() const override { return "registry key"; }
};

// A key is there when it has values of its own or lies above one that does.
bool key_exists(std::u16string_view path) {
    for (const auto& [own, values] : session().machine.registry)
        if (same_name(std::u16string_view(own).substr(0, path.size()), path) &&
            (own.size() == path.size() || own[path.size()] == u'\\'))
            return true;
    return path.empty();
}

const platform::RegistryValue* find_value(std::u16string_view path, std::u16string_view name) {
    for (const auto& [own, values] : session().machine.registry)
        if (same_name(own, path))
            for (const auto& [value_name, value] : values)
                if (same_name(value_name, name))
                    return &value;
    return nullptr;
}

std::shared_ptr<RegistryKey> key_of(const platform::Call& call, HKEY key) {
    const auto value = reinterpret_cast<ULONG_PTR>(key);
    if (key == HKEY_LOCAL_MACHINE) {
        auto root = std::make_shared<RegistryKey>();
        root->access = KEY_READ;
        return root;
    }
    // The other roots are the eight values after HKEY_CLASSES_ROOT.
    if ((value & 0xfffffff0u) == 0x80000000u)
        call.refuse("only HKEY_LOCAL_MACHINE is there");
    return session().handles.find<RegistryKey>(key);
}

// The bytes and the size of a value, by the rules for size queries and for buffers that are too small.
LSTATUS give_value(const platform::Call& call, const platform::RegistryValue& value, LPBYTE data,
                   LPDWORD size) {
    if (size == nullptr)
        return ERROR_SUCCESS;
    const DWORD capacity = *size;
    const platform::ToldSize answer = call.size(value.data.size(), data == nullptr ? 0 : capacity);
    *size = answer.told;
    if (data == nullptr)
        return ERROR_SUCCESS;
    if (capacity < answer.needed) {
        std::memset(data, 0xCD, capacity);
        return ERROR_MORE_DATA;
    }
    if (!value.data.empty())
        std::memcpy(data, value.data.data(), value.data.size());
    return ERROR_SUCCESS;
}

} // namespace

LSTATUS RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result) {
    platform::Call call("RegOpenKeyExW", platform::shown(path));
    if (call.fails(ERROR_ACCESS_DENIED))
        return static_cast<LSTATUS>(call.error());
    if (options != 0 || (access & ~REGSAM{KEY_READ}) != 0)
        call.refuse("only reading is modelled");
    const auto parent = key_of(call, key);
    if (!parent)
        return ERROR_INVALID_HANDLE;
    auto opened = std::make_shared<RegistryKey>();
    opened->access = access;
    opened->path = parent->path;
    std::u16string_view below = path == nullptr ? std::u16string_view() : path;
    if (below.ends_with(u'\\'))
        below.remove_suffix(1);
    if (!opened->path.empty() && !below.empty())
        opened->path += u'\\';
    opened->path += below;
    if (!key_exists(opened->path)) {
        *result = nullptr;
        return ERROR_FILE_NOT_FOUND;
    }
    *result = static_cast<HKEY>(session().handles.open(std::move(opened)));
    return ERROR_SUCCESS;
}

LSTATUS RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    platform::Call call("RegQueryValueExW", platform::shown(name));
    if (call.fails(ERROR_FILE_NOT_FOUND))
        return static_cast<LSTATUS>(call.error());
    if (reserved != nullptr || (data != nullptr && size == nullptr))
        return ERROR_INVALID_PARAMETER;
    const auto opened = key_of(call, key);
    if (!opened)
        return ERROR_INVALID_HANDLE;
    if ((opened->access & KEY_QUERY_VALUE) == 0)
        return ERROR_ACCESS_DENIED;
    const platform::RegistryValue* value = find_value(opened->path, name == nullptr ? u"" : name);
    if (value == nullptr)
        return ERROR_FILE_NOT_FOUND;
    if (type != nullptr)
        *type = value->type;
    return give_value(call, *value, data, size);
}

// Closing can't be made to fail on demand: nobody could close the key after that.
LSTATUS RegCloseKey(HKEY key) {
    platform::Call call("RegCloseKey");
    if (key == HKEY_LOCAL_MACHINE)
        return ERROR_SUCCESS;
    if (std::dynamic_pointer_cast<RegistryKey>(session().handles.peek(key)) == nullptr)
        session().gate.misuse("RegCloseKey of what is no open key");
    else if (session().handles.close(key))
        return ERROR_SUCCESS;
    return ERROR_INVALID_HANDLE;
}
