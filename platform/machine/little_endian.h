// Little-endian numbers and 16-bit text, as the platform's files, blocks and registry values hold them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// UTF-16LE, without a terminator unless the text has one. Of bytes an odd one at the end is left out.
std::vector<std::uint8_t> utf16_bytes(std::u16string_view text);
std::u16string utf16_text(std::span<const std::uint8_t> bytes);
std::u16string utf16_text(std::string_view bytes, std::endian order = std::endian::little);
std::string utf16_file(std::u16string_view text); // UTF-16LE behind its mark

// Of 1 to 4 bytes; nothing when some of them lie beyond the end.
std::optional<std::uint32_t> number_at(std::string_view bytes, std::size_t place, unsigned size);
void append_number(std::vector<std::uint8_t>& bytes, std::uint32_t value); // 4 bytes

// Reads from a block in order. What the block is too short for reads as zero, and is noted; a reader made
// with a routine has that called first, which may throw.
class ByteReader {
public:
    using TooShort = void (*)(std::size_t size, std::size_t place, std::size_t wanted);

    explicit ByteReader(std::span<const std::uint8_t> bytes, TooShort too_short = nullptr)
        : bytes_(bytes), too_short_(too_short) {}
    explicit ByteReader(std::string_view bytes);

    bool short_of_bytes() const { return short_; }
    std::size_t place() const { return place_; }
    std::size_t left() const { return bytes_.size() - place_; }

    std::span<const std::uint8_t>
    take(std::size_t count);              // empty, and nothing is taken, when there are fewer
    std::uint32_t number(unsigned bytes); // of 1 to 4 bytes
    std::u16string text(std::size_t characters);
    void align(std::size_t boundary); // padding may be missing at the very end

private:
    std::span<const std::uint8_t> bytes_;
    TooShort too_short_ = nullptr;
    std::size_t place_ = 0;
    bool short_ = false;
};

} // namespace platform
