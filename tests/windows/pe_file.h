// Reads Windows programs and compiled resource files as bytes, without help from the tools that made them.
// Whatever lies outside the file throws std::runtime_error.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace pe {

using Bytes = std::vector<uint8_t>;

Bytes read_file(const std::string& path);

struct Section {
    std::string name;
    uint32_t address, virtual_size; // relative to the image's start, in bytes
    uint32_t file_offset, raw_size;
    uint32_t flags;
};

// One library of the import table, or of the table of libraries that are loaded at their first use.
struct Import {
    std::string library; // in lower case
    std::vector<std::string> functions;
    std::vector<uint64_t> slots; // what the file holds where the functions' addresses will stand
    uint32_t first_slot;         // its address
};

struct ResourceKey {
    uint32_t type, id, language;
    auto operator<=>(const ResourceKey&) const = default;
};
using Resources = std::map<ResourceKey, Bytes>;

constexpr uint32_t bitmap_type = 2, icon_type = 3, dialog_type = 5, string_type = 6, icon_group_type = 14,
                   version_type = 16, manifest_type = 24;

class Program {
public:
    explicit Program(const std::string& path);

    bool is_64() const { return wide_; }
    uint32_t header_word(size_t offset) const; // 16 bits of the optional header
    uint32_t time_stamp() const;
    uint64_t image_base() const;
    const std::vector<Section>& sections() const { return sections_; }
    const Section* section_at(uint32_t address) const; // null outside all sections
    uint32_t directory_address(size_t index) const;
    uint32_t directory_size(size_t index) const;
    uint64_t number(uint32_t address, size_t size) const; // little-endian, at an image address

    std::vector<Import> imports() const;
    std::vector<Import> delayed_imports() const;
    std::vector<uint32_t> relocated_addresses() const;
    Resources resources() const;
    bool contains(const std::string& text) const; // anywhere in the file

private:
    size_t file_offset(uint32_t address, size_t size) const;
    uint64_t raw(size_t offset, size_t size) const;
    std::string text(uint32_t address) const;
    Import import_at(uint32_t name, uint32_t names, uint32_t slots) const;
    void collect_resources(uint32_t table, int level, ResourceKey key, Resources& out) const;

    Bytes bytes_;
    size_t header_ = 0, optional_ = 0, directories_ = 0;
    bool wide_ = false;
    std::vector<Section> sections_;
};

// The entries of a .res file.
Resources read_resource_file(const std::string& path);

// All texts by language and id, from the blocks of sixteen that the tables are kept in.
std::map<uint32_t, std::map<uint32_t, std::u16string>> string_table(const Resources& resources);

uint32_t little_endian(const Bytes& bytes, size_t offset, size_t size);

} // namespace pe
