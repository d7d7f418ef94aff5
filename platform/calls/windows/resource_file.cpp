#include "calls/windows/resource_file.h"

#include "machine/little_endian.h"
#include "machine/text.h"

namespace platform {
namespace {

constexpr std::uint16_t number_follows = 0xFFFF; // in the place of a text's first character
constexpr std::uint32_t has_font = 0x40;         // DS_SETFONT

void too_short(std::size_t size, std::size_t place, std::size_t wanted) {
    throw ResourceError("the resource ends after " + std::to_string(size) + " bytes, " +
                        std::to_string(wanted) + " more are needed at " + std::to_string(place));
}

class Reader : public ByteReader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : ByteReader(bytes, too_short) {}

    std::uint16_t word() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t long_word() { return number(4); }
    int coordinate() { return static_cast<std::int16_t>(word()); }
    void align() { ByteReader::align(4); }

    // A number, a text, or nothing.
    ResourceName name() {
        ResourceName result;
        std::uint16_t unit = word();
        if (unit == number_follows) {
            result.id = word();
            return result;
        }
        for (; unit != 0; unit = word())
            result.text.push_back(static_cast<char16_t>(unit));
        return result;
    }
};

ResourceName upper_name(ResourceName name) {
    name.text = upper_case(name.text);
    return name;
}

ResourceEntry read_entry(Reader& file) {
    const std::size_t start = file.place();
    const std::uint32_t data_size = file.long_word();
    const std::uint32_t header_size = file.long_word();
    if (header_size < 8)
        throw ResourceError("a resource header of " + std::to_string(header_size) + " bytes");
    Reader header(file.take(header_size - 8));
    ResourceEntry entry;
    entry.type = upper_name(header.name());
    entry.name = upper_name(header.name());
    // The header is aligned as a whole; the sizes in front of it are two long words.
    header.align();
    header.long_word(); // data version
    header.word();      // memory flags
    entry.language = header.word();
    const auto data = file.take(data_size);
    entry.data.assign(data.begin(), data.end());
    file.align();
    if (file.place() == start)
        throw ResourceError("an empty resource header");
    return entry;
}

ControlTemplate read_control(Reader& bytes, bool extended) {
    bytes.align();
    ControlTemplate control;
    if (extended) {
        bytes.long_word(); // help id
        control.extended_style = bytes.long_word();
        control.style = bytes.long_word();
    } else {
        control.style = bytes.long_word();
        control.extended_style = bytes.long_word();
    }
    control.left = bytes.coordinate();
    control.top = bytes.coordinate();
    control.width = bytes.coordinate();
    control.height = bytes.coordinate();
    control.id = extended ? bytes.long_word() : bytes.word();
    control.window_class = upper_name(bytes.name());
    const ResourceName title = bytes.name();
    control.text = title.text;
    control.image = title.id;
    bytes.take(bytes.word()); // creation data, which no control here takes
    return control;
}

void read_styles(Reader& bytes, DialogTemplate& dialog, bool extended) {
    if (!extended) {
        dialog.style = bytes.long_word();
        dialog.extended_style = bytes.long_word();
        return;
    }
    bytes.long_word(); // version 1 and the mark
    bytes.long_word(); // help id
    dialog.extended_style = bytes.long_word();
    dialog.style = bytes.long_word();
}

bool is_extended(std::span<const std::uint8_t> bytes) {
    Reader start(bytes);
    return start.word() == 1 && start.word() == number_follows;
}

} // namespace

std::vector<ResourceEntry> read_resource_file(std::span<const std::uint8_t> bytes) {
    Reader file(bytes);
    std::vector<ResourceEntry> entries;
    const ResourceEntry mark = read_entry(file);
    if (mark.type != ResourceName{} || !mark.data.empty())
        throw ResourceError("no 32-bit resource file");
    while (file.left() > 0)
        entries.push_back(read_entry(file));
    return entries;
}

std::u16string read_block_string(std::span<const std::uint8_t> block, unsigned index) {
    Reader reader(block);
    for (unsigned passed = 0; passed < index; ++passed)
        reader.take(std::size_t{2} * reader.word());
    return reader.text(reader.word());
}

DialogTemplate read_dialog_template(std::span<const std::uint8_t> data) {
    const bool extended = is_extended(data);
    Reader bytes(data);
    DialogTemplate dialog;
    read_styles(bytes, dialog, extended);
    const std::uint16_t count = bytes.word();
    dialog.left = bytes.coordinate();
    dialog.top = bytes.coordinate();
    dialog.width = bytes.coordinate();
    dialog.height = bytes.coordinate();
    dialog.has_menu = bytes.name() != ResourceName{};
    dialog.has_class = bytes.name() != ResourceName{};
    dialog.caption = bytes.name().text;
    if ((dialog.style & has_font) != 0) {
        dialog.font_points = bytes.word();
        if (extended)
            bytes.take(4); // weight, italics, character set
        dialog.font = bytes.name().text;
    }
    for (std::uint16_t index = 0; index < count; ++index)
        dialog.controls.push_back(read_control(bytes, extended));
    return dialog;
}

} // namespace platform
