// Lays out the answer of an enumeration as the platform does: the fixed records in front, their texts behind
// them, all in the caller's one buffer.
#pragma once

#include "machine/told_size.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

template<class Record>
class RecordBuffer {
public:
    // A new record, all zero.
    Record& add() { return records_.emplace_back(); }

    // A text for a pointer field of the last record; 16-bit text of whatever type the field points to.
    template<class Char>
    void text(Char* Record::*field, std::u16string_view text) {
        static_assert(sizeof(Char) == sizeof(char16_t));
        Record& record = records_.back();
        const auto offset =
            reinterpret_cast<std::uintptr_t>(&(record.*field)) - reinterpret_cast<std::uintptr_t>(&record);
        texts_.push_back({(records_.size() - 1) * sizeof(Record) + offset, std::u16string(text)});
        text_bytes_ += (text.size() + 1) * sizeof(char16_t);
    }

    std::size_t count() const { return records_.size(); }
    std::size_t bytes() const { return records_.size() * sizeof(Record) + text_bytes_; }

    // The buffer has room for bytes().
    void write(void* buffer) const {
        auto* const begin = static_cast<std::uint8_t*>(buffer);
        std::size_t end = records_.size() * sizeof(Record);
        if (!records_.empty())
            std::memcpy(begin, records_.data(), end);
        for (const Text& text : texts_) {
            const void* const place = begin + end;
            const std::size_t size = (text.text.size() + 1) * sizeof(char16_t);
            std::memcpy(begin + text.pointer_at, &place, sizeof(place));
            std::memcpy(begin + end, text.text.c_str(), size);
            end += size;
        }
    }

private:
    struct Text {
        std::size_t pointer_at; // where the pointer to it stands, from the buffer's begin
        std::u16string text;
    };
    std::vector<Record> records_;
    std::vector<Text> texts_;
    std::size_t text_bytes_ = 0;
};

// The records into the caller's buffer of `size` bytes, or false. The size that it must have, which is
// `told`.needed and no less than that of the records, and the count are stored in any case; a buffer that is
// too small is poisoned.
template<class Record, class Count>
bool deliver_records(const RecordBuffer<Record>& records, void* buffer, Count size, Count* needed,
                     Count* returned, ToldSize told) {
    *needed = static_cast<Count>(told.told);
    *returned = static_cast<Count>(told.more);
    if (size < told.needed) {
        if (buffer != nullptr)
            std::memset(buffer, 0xCD, size);
        return false;
    }
    if (records.count() != 0)
        records.write(buffer);
    *returned = static_cast<Count>(records.count() + told.more);
    return true;
}

} // namespace platform
