#include "calls/run/handles.h"

#include "calls/run/session.h"

#include <cstdlib>
#include <cstring>

namespace platform {

void* HandleTable::open(std::shared_ptr<Object> object) {
    const std::lock_guard lock(mutex_);
    const std::uintptr_t value = next_;
    next_ += 4;
    objects_[value] = std::move(object);
    return reinterpret_cast<void*>(value);
}

std::shared_ptr<Object> HandleTable::peek(const void* handle) const {
    const std::lock_guard lock(mutex_);
    const auto found = objects_.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == objects_.end() ? nullptr : found->second;
}

std::shared_ptr<Object> HandleTable::find_object(const void* handle, const char* wanted) {
    std::shared_ptr<Object> object = peek(handle);
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    if (!object && value != 0 && value != UINTPTR_MAX)
        session().gate.misuse("handle " + std::to_string(value) + " isn't open (wanted " + wanted + ")");
    return object;
}

bool HandleTable::close(const void* handle) {
    const std::lock_guard lock(mutex_);
    if (objects_.erase(reinterpret_cast<std::uintptr_t>(handle)) == 1)
        return true;
    session().gate.misuse("close of handle " + std::to_string(reinterpret_cast<std::uintptr_t>(handle)) +
                          ", which isn't open");
    return false;
}

std::string HandleTable::kind_of(const void* handle) const {
    const auto object = peek(handle);
    return object ? object->kind() : "no object";
}

std::vector<std::string> HandleTable::open_kinds() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> kinds;
    for (const auto& [value, object] : objects_)
        kinds.emplace_back(object->kind());
    return kinds;
}

MemoryLedger::~MemoryLedger() {
    for (const auto& [block, facts] : blocks_)
        std::free(block);
}

void* MemoryLedger::allocate(std::size_t bytes, const char* allocator, bool zeroed) {
    void* block = std::malloc(bytes == 0 ? 1 : bytes);
    if (block == nullptr)
        return nullptr;
    std::memset(block, zeroed ? 0 : 0xCD, bytes);
    const std::lock_guard lock(mutex_);
    blocks_[block] = {allocator, bytes};
    return block;
}

bool MemoryLedger::release(void* block, const char* allocator) {
    if (block == nullptr)
        return true;
    {
        const std::lock_guard lock(mutex_);
        const auto found = blocks_.find(block);
        if (found != blocks_.end() && found->second.allocator == allocator) {
            blocks_.erase(found);
            std::free(block);
            return true;
        }
    }
    session().gate.misuse(std::string("a block given back to ") + allocator + " that didn't come from it");
    return false;
}

std::optional<std::size_t> MemoryLedger::bytes_from(const void* place) const {
    const std::lock_guard lock(mutex_);
    const auto at = reinterpret_cast<std::uintptr_t>(place);
    for (const auto& [block, facts] : blocks_) {
        const auto start = reinterpret_cast<std::uintptr_t>(block);
        if (at >= start && at < start + facts.bytes)
            return start + facts.bytes - at;
    }
    return std::nullopt;
}

std::vector<std::string> MemoryLedger::live() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> blocks;
    for (const auto& [block, facts] : blocks_)
        blocks.push_back(facts.allocator + " " + std::to_string(facts.bytes));
    return blocks;
}

} // namespace platform
