#include "machine/little_endian.h"

#include <algorithm>

namespace platform {
namespace {

std::span<const std::uint8_t> bytes_of(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace

std::vector<std::uint8_t> utf16_bytes(std::u16string_view text) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(2 * text.size());
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    return bytes;
}

std::u16string utf16_text(std::span<const std::uint8_t> bytes) {
    std::u16string text(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
    return text;
}

std::u16string utf16_text(std::string_view bytes, std::endian order) {
    std::u16string text = utf16_text(bytes_of(bytes));
    if (order == std::endian::big)
        for (char16_t& unit : text)
            unit = static_cast<char16_t>((unit >> 8) | (unit << 8));
    return text;
}

std::string utf16_file(std::u16string_view text) {
    const std::vector<std::uint8_t> bytes = utf16_bytes(text);
    return "\xFF\xFE" + std::string(bytes.begin(), bytes.end());
}

std::optional<std::uint32_t> number_at(std::string_view bytes, std::size_t place, unsigned size) {
    if (place > bytes.size() || bytes.size() - place < size)
        return std::nullopt;
    return ByteReader(bytes.substr(place)).number(size);
}

void append_number(std::vector<std::uint8_t>& bytes, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

ByteReader::ByteReader(std::string_view bytes) : bytes_(bytes_of(bytes)) {}

std::span<const std::uint8_t> ByteReader::take(std::size_t count) {
    if (count > left()) {
        if (too_short_ != nullptr)
            too_short_(bytes_.size(), place_, count);
        short_ = true;
        return {};
    }
    place_ += count;
    return bytes_.subspan(place_ - count, count);
}

std::uint32_t ByteReader::number(unsigned bytes) {
    std::uint32_t value = 0;
    unsigned shift = 0;
    for (const std::uint8_t byte : take(bytes)) {
        value |= std::uint32_t{byte} << shift;
        shift += 8;
    }
    return value;
}

std::u16string ByteReader::text(std::size_t characters) {
    return utf16_text(take(2 * characters));
}

void ByteReader::align(std::size_t boundary) {
    place_ = std::min((place_ + boundary - 1) / boundary * boundary, bytes_.size());
}

} // namespace platform
