#include "windows/pe_file.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace pe {
namespace {

constexpr size_t import_directory = 1, resource_directory = 2, relocation_directory = 5, delay_directory = 13;
constexpr uint32_t is_subdirectory = 0x80000000;

uint64_t read_number(const Bytes& bytes, size_t offset, size_t size) {
    if (offset > bytes.size() || bytes.size() - offset < size)
        throw std::runtime_error("the file ends too early");
    uint64_t value = 0;
    for (size_t i = size; i > 0; --i)
        value = value << 8 | bytes[offset + i - 1];
    return value;
}

std::string lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

} // namespace

Bytes read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error(path + " can't be read; `make windows` builds the programs");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

uint32_t little_endian(const Bytes& bytes, size_t offset, size_t size) {
    return static_cast<uint32_t>(read_number(bytes, offset, size));
}

Program::Program(const std::string& path) : bytes_(read_file(path)) {
    header_ = raw(0x3C, 4);
    if (raw(0, 2) != 0x5A4D || raw(header_, 4) != 0x4550)
        throw std::runtime_error(path + " is no portable executable");
    optional_ = header_ + 24;
    wide_ = raw(optional_, 2) == 0x20B;
    directories_ = optional_ + (wide_ ? 112 : 96);
    size_t entry = optional_ + raw(header_ + 20, 2);
    for (uint64_t left = raw(header_ + 6, 2); left > 0; --left, entry += 40) {
        std::string name;
        for (size_t i = 0; i < 8 && raw(entry + i, 1) != 0; ++i)
            name += static_cast<char>(raw(entry + i, 1));
        auto field = [&](size_t at) { return static_cast<uint32_t>(raw(entry + at, 4)); };
        sections_.push_back({name, field(12), field(8), field(20), field(16), field(36)});
    }
}

uint64_t Program::raw(size_t offset, size_t size) const {
    return read_number(bytes_, offset, size);
}

uint32_t Program::header_word(size_t offset) const {
    return static_cast<uint32_t>(raw(optional_ + offset, 2));
}

uint32_t Program::time_stamp() const {
    return static_cast<uint32_t>(raw(header_ + 8, 4));
}

uint64_t Program::image_base() const {
    return wide_ ? raw(optional_ + 24, 8) : raw(optional_ + 28, 4);
}

const Section* Program::section_at(uint32_t address) const {
    for (const Section& section : sections_)
        if (address >= section.address && address - section.address < section.virtual_size)
            return &section;
    return nullptr;
}

uint32_t Program::directory_address(size_t index) const {
    return static_cast<uint32_t>(raw(directories_ + index * 8, 4));
}

uint32_t Program::directory_size(size_t index) const {
    return static_cast<uint32_t>(raw(directories_ + index * 8 + 4, 4));
}

size_t Program::file_offset(uint32_t address, size_t size) const {
    const Section* section = section_at(address);
    if (section == nullptr || address - section->address + size > section->raw_size)
        throw std::runtime_error("an address outside the file's sections");
    return section->file_offset + (address - section->address);
}

uint64_t Program::number(uint32_t address, size_t size) const {
    return raw(file_offset(address, size), size);
}

std::string Program::text(uint32_t address) const {
    std::string out;
    while (number(address, 1) != 0)
        out += static_cast<char>(number(address++, 1));
    return out;
}

// `names` lists the functions, and `slots` is the list that the loader replaces by addresses. Both end with
// 0.
Import Program::import_at(uint32_t name, uint32_t names, uint32_t slots) const {
    const uint32_t size = wide_ ? 8 : 4;
    Import import{lower(text(name)), {}, {}, slots};
    for (uint32_t at = 0; number(names + at, size) != 0; at += size) {
        const uint64_t entry = number(names + at, size);
        const bool by_number = entry >> (wide_ ? 63 : 31) != 0;
        import.functions.push_back(by_number ? "#" + std::to_string(entry & 0xFFFF)
                                             : text(static_cast<uint32_t>(entry) + 2));
        import.slots.push_back(number(slots + at, size));
    }
    return import;
}

std::vector<Import> Program::imports() const {
    std::vector<Import> out;
    for (uint32_t row = directory_address(import_directory); number(row + 12, 4) != 0; row += 20) {
        auto field = [&](uint32_t at) { return static_cast<uint32_t>(number(row + at, 4)); };
        out.push_back(import_at(field(12), field(0), field(16)));
    }
    return out;
}

std::vector<Import> Program::delayed_imports() const {
    std::vector<Import> out;
    if (directory_address(delay_directory) == 0)
        return out;
    for (uint32_t row = directory_address(delay_directory); number(row + 4, 4) != 0; row += 32) {
        auto field = [&](uint32_t at) { return static_cast<uint32_t>(number(row + at, 4)); };
        out.push_back(import_at(field(4), field(16), field(12)));
    }
    return out;
}

std::vector<uint32_t> Program::relocated_addresses() const {
    std::vector<uint32_t> out;
    const uint32_t start = directory_address(relocation_directory);
    const uint32_t end = start + directory_size(relocation_directory);
    for (uint32_t block = start; start != 0 && block < end;) {
        const auto page = static_cast<uint32_t>(number(block, 4));
        const auto size = static_cast<uint32_t>(number(block + 4, 4));
        if (size < 8)
            throw std::runtime_error("a relocation block without an end");
        for (uint32_t at = 8; at < size; at += 2) {
            const auto entry = static_cast<uint32_t>(number(block + at, 2));
            if (entry >> 12 != 0) // 0 only pads the block
                out.push_back(page + (entry & 0xFFF));
        }
        block += size;
    }
    return out;
}

Resources Program::resources() const {
    Resources out;
    collect_resources(0, 0, {}, out);
    return out;
}

// Three levels: type, id, language. All of ours have numbers.
void Program::collect_resources(uint32_t table, int level, ResourceKey key, Resources& out) const {
    const uint32_t base = directory_address(resource_directory);
    const auto named = number(base + table + 12, 2);
    const auto count = named + number(base + table + 14, 2);
    for (uint32_t row = table + 16; row < table + 16 + count * 8; row += 8) {
        const auto id = static_cast<uint32_t>(number(base + row, 4));
        const auto target = static_cast<uint32_t>(number(base + row + 4, 4));
        (level == 0 ? key.type : level == 1 ? key.id : key.language) = id;
        const bool deeper = (target & is_subdirectory) != 0;
        if (deeper != (level < 2))
            throw std::runtime_error("a resource tree of another depth");
        if (deeper) {
            collect_resources(target & ~is_subdirectory, level + 1, key, out);
            continue;
        }
        const auto address = static_cast<uint32_t>(number(base + target, 4));
        const auto size = static_cast<uint32_t>(number(base + target + 4, 4));
        const size_t offset = file_offset(address, size);
        out[key] = Bytes(bytes_.begin() + static_cast<std::ptrdiff_t>(offset),
                         bytes_.begin() + static_cast<std::ptrdiff_t>(offset + size));
    }
}

bool Program::contains(const std::string& text) const {
    return std::search(bytes_.begin(), bytes_.end(), text.begin(), text.end(),
                       [](uint8_t byte, char c) { return byte == static_cast<uint8_t>(c); }) != bytes_.end();
}

Resources read_resource_file(const std::string& path) {
    const Bytes bytes = read_file(path);
    Resources out;
    for (size_t at = 0; at < bytes.size();) {
        const uint32_t size = little_endian(bytes, at, 4);
        const uint32_t header = little_endian(bytes, at + 4, 4);
        if (little_endian(bytes, at + 8, 2) != 0xFFFF || little_endian(bytes, at + 12, 2) != 0xFFFF)
            throw std::runtime_error("a resource with a name in place of a number");
        const ResourceKey key{little_endian(bytes, at + 10, 2), little_endian(bytes, at + 14, 2),
                              little_endian(bytes, at + 22, 2)};
        if (at + header + size > bytes.size())
            throw std::runtime_error("the file ends too early");
        const auto data = bytes.begin() + static_cast<std::ptrdiff_t>(at + header);
        if (key.type != 0) // the first entry only marks the format
            out[key] = Bytes(data, data + size);
        at = (at + header + size + 3) / 4 * 4;
    }
    return out;
}

std::map<uint32_t, std::map<uint32_t, std::u16string>> string_table(const Resources& resources) {
    std::map<uint32_t, std::map<uint32_t, std::u16string>> out;
    for (const auto& [key, bytes] : resources) {
        if (key.type != string_type)
            continue;
        size_t at = 0;
        for (uint32_t row = 0; row < 16; ++row) {
            const uint32_t length = little_endian(bytes, at, 2);
            std::u16string text;
            for (uint32_t i = 0; i < length; ++i)
                text += static_cast<char16_t>(little_endian(bytes, at + 2 + 2 * i, 2));
            at += 2 + 2 * length;
            if (length != 0)
                out[key.language][(key.id - 1) * 16 + row] = text;
        }
    }
    return out;
}

} // namespace pe
