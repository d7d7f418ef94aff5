// Open handles and platform-allocated memory, with their ledgers. Handles have kinds; using a closed one or
// one of another kind is noted as a misuse at the gate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

namespace platform {

// What stands behind a handle. Areas derive their objects from it; `kind` names it in ledgers and messages.
struct Object {
    virtual ~Object() = default;
    virtual const char* kind() const = 0;
};

class HandleTable {
public:
    // A new handle value for the object: never 0, never reused in a session.
    void* open(std::shared_ptr<Object> object);
    // The object of kind T behind a handle, else null. A closed or foreign handle is a misuse at the gate.
    template<class T>
    std::shared_ptr<T> find(const void* handle) {
        return as<T>(find_object(handle, typeid(T).name()));
    }
    // The same without a note when the handle isn't open.
    template<class T>
    std::shared_ptr<T> peek_as(const void* handle) const {
        return as<T>(peek(handle));
    }
    // Takes the handle out; false, and a misuse, when it isn't open.
    bool close(const void* handle);
    // The same without a note, for calls that merely ask whether a handle is good.
    std::shared_ptr<Object> peek(const void* handle) const;
    std::string kind_of(const void* handle) const; // "no object" where none is open
    std::vector<std::string> open_kinds() const;   // what a test's end looks at

private:
    // Nearly always the object is of the very type, which is quickly seen.
    template<class T>
    static std::shared_ptr<T> as(std::shared_ptr<Object> object) {
        if (object && typeid(*object) == typeid(T))
            return std::static_pointer_cast<T>(std::move(object));
        return std::dynamic_pointer_cast<T>(std::move(object));
    }
    std::shared_ptr<Object> find_object(const void* handle, const char* wanted);

    mutable std::mutex mutex_;
    std::map<std::uintptr_t, std::shared_ptr<Object>> objects_;
    std::uintptr_t next_ = 0x100;
};

class MemoryLedger {
public:
    ~MemoryLedger();
    // A block of `bytes` (at least 1), noted under the allocator's name ("HeapAlloc"). The bytes are poisoned
    // unless zeroed.
    void* allocate(std::size_t bytes, const char* allocator, bool zeroed);
    // False, and a misuse, when the block isn't live or came from another allocator. Null is accepted.
    bool release(void* block, const char* allocator);
    // How many bytes a live block has from `place` to its end; nothing when no block holds the place.
    std::optional<std::size_t> bytes_from(const void* place) const;
    std::vector<std::string> live() const; // "HeapAlloc 512"

private:
    struct Block {
        std::string allocator;
        std::size_t bytes = 0;
    };
    mutable std::mutex mutex_;
    std::map<void*, Block> blocks_;
};

} // namespace platform
