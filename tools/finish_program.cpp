// Enters into a linked Windows program's header what the linker doesn't know: the load configuration and the
// table of libraries that are loaded at their first use. Both are found by their symbols, which are then
// taken off; the usual tool for that would put the time of day into the header.
//
//   finish_program PROGRAM
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class Image {
public:
    explicit Image(std::vector<char> bytes) : bytes_(std::move(bytes)) {
        header_ = number(0x3C, 4);
        if (number(header_, 4) != 0x4550)
            throw std::runtime_error("no portable executable");
        optional_header_ = header_ + 24;
        directories_ = optional_header_ + (number(optional_header_, 2) == 0x20B ? 112 : 96);
        section_table_ = optional_header_ + number(header_ + 20, 2);
    }

    // The address of a symbol, relative to the image's start. 32-bit names carry an underscore in front.
    uint32_t address_of(const std::string& name) const {
        const size_t table = number(header_ + 12, 4), count = number(header_ + 16, 4);
        const std::string wanted = number(header_ + 4, 2) == 0x14C ? "_" + name : name;
        for (size_t index = 0; index < count; ++index) {
            const size_t entry = table + index * 18;
            const uint32_t section = number(entry + 12, 2);
            if (section != 0 && section < 0x8000 && symbol_name(entry, table + count * 18) == wanted)
                return number(section_table_ + (section - 1) * 40 + 12, 4) + number(entry + 8, 4);
            index += number(entry + 17, 1); // auxiliary entries
        }
        throw std::runtime_error("no symbol " + wanted);
    }

    void set_directory(uint32_t index, uint32_t address, uint32_t size) {
        put(directories_ + index * 8, address);
        put(directories_ + index * 8 + 4, size);
    }

    uint32_t number_at_address(uint32_t address) const {
        const uint32_t count = number(header_ + 6, 2);
        for (uint32_t section = 0; section < count; ++section) {
            const size_t entry = section_table_ + section * 40;
            const uint32_t start = number(entry + 12, 4);
            if (address >= start && address - start < number(entry + 16, 4))
                return number(number(entry + 20, 4) + (address - start), 4);
        }
        throw std::runtime_error("an address outside all sections");
    }

    // The symbols are the last thing in the file.
    void strip_symbols() {
        const uint32_t table = number(header_ + 12, 4);
        if (table == 0)
            return;
        for (uint32_t section = 0; section < number(header_ + 6, 2); ++section) {
            const size_t entry = section_table_ + section * 40;
            if (number(entry + 20, 4) + number(entry + 16, 4) > table)
                throw std::runtime_error("a section behind the symbols");
            if (number(entry, 1) == '/')
                throw std::runtime_error("a section whose name stands with the symbols");
        }
        constexpr uint32_t lines_symbols_and_debug_stripped = 0x4 | 0x8 | 0x200;
        put(header_ + 12, 0);
        put(header_ + 16, 0);
        put(header_ + 20, number(header_ + 20, 4) | lines_symbols_and_debug_stripped << 16);
        bytes_.resize(table);
    }

    // The sum of all 16-bit words with the carry added in, and the file's length; its own field counts as 0.
    void set_checksum() {
        const size_t field = optional_header_ + 64;
        put(field, 0);
        uint32_t sum = 0;
        for (size_t at = 0; at < bytes_.size(); at += 2) {
            sum += number(at, bytes_.size() - at < 2 ? 1 : 2);
            sum = (sum & 0xFFFF) + (sum >> 16);
        }
        put(field, sum + static_cast<uint32_t>(bytes_.size()));
    }

    const std::vector<char>& bytes() const { return bytes_; }

private:
    uint32_t number(size_t at, size_t size) const {
        if (at > bytes_.size() || bytes_.size() - at < size)
            throw std::runtime_error("the file ends too early");
        uint32_t value = 0;
        std::memcpy(&value, bytes_.data() + at, size);
        return value;
    }

    void put(size_t at, uint32_t value) {
        number(at, sizeof value);
        std::memcpy(bytes_.data() + at, &value, sizeof value);
    }

    // Names of more than eight characters stand in the string table behind the symbols.
    std::string symbol_name(size_t entry, size_t strings) const {
        if (number(entry, 4) != 0) {
            number(entry, 1);
            return {bytes_.data() + entry, strnlen(bytes_.data() + entry, 8)};
        }
        const size_t start = strings + number(entry + 4, 4);
        number(start, 1);
        return {bytes_.data() + start, strnlen(bytes_.data() + start, bytes_.size() - start)};
    }

    std::vector<char> bytes_;
    size_t header_ = 0, optional_header_ = 0, directories_ = 0, section_table_ = 0;
};

constexpr uint32_t load_configuration = 10;
constexpr uint32_t delay_import = 13;

void finish(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("can't be read");
    Image image({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
    in.close();

    const uint32_t config = image.address_of("load_config");
    image.set_directory(load_configuration, config,
                        image.number_at_address(config)); // it begins with its size
    const uint32_t start = image.address_of("delay_import_start");
    image.set_directory(delay_import, start, image.address_of("delay_import_end") - start);

    image.strip_symbols();
    image.set_checksum();

    std::ofstream out(path, std::ios::binary);
    out.write(image.bytes().data(), static_cast<std::streamsize>(image.bytes().size()));
    if (!out.flush())
        throw std::runtime_error("can't be written");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: finish_program PROGRAM\n";
        return 2;
    }
    try {
        finish(argv[1]);
    } catch (const std::exception& error) {
        std::cerr << argv[1] << ": " << error.what() << "\n";
        return 1;
    }
    return 0;
}
