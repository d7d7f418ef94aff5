#include "rehearsal/pages/dialog_layouts.h"

#include "machine/little_endian.h"
#include "machine/whole_file.h"
#include "rehearsal/embedded_resources.h"
#include "rehearsal/pages/base64.h"

#include <iterator>
#include <map>
#include <span>

namespace rehearsal::pages {
namespace {

// RT_BITMAP and RT_DIALOG
constexpr std::uint16_t bitmap_type = 2;
constexpr std::uint16_t dialog_type = 5;

struct Resources {
    Resources();
    std::map<int, platform::DialogTemplate> dialogs;
    std::map<int, std::vector<std::uint8_t>> bitmaps;
};

Resources::Resources() {
    const std::string all = platform::read_whole_file(embedded_resources()).value_or("");
    for (platform::ResourceEntry& entry :
         platform::read_resource_file({reinterpret_cast<const std::uint8_t*>(all.data()), all.size()})) {
        if (entry.type.id == dialog_type)
            dialogs.emplace(entry.name.id, platform::read_dialog_template(entry.data));
        else if (entry.type.id == bitmap_type)
            bitmaps.emplace(entry.name.id, std::move(entry.data));
    }
}

const Resources& resources() {
    static const Resources all;
    return all;
}

std::uint32_t number(std::span<const std::uint8_t> bytes, std::size_t place, unsigned size) {
    return platform::ByteReader(bytes.subspan(place)).number(size);
}

// A resource has no BITMAPFILEHEADER, which tells a file's size and where the pixels begin: behind
// BITMAPINFOHEADER and the colour table.
std::vector<std::uint8_t> bitmap_file(std::span<const std::uint8_t> bitmap) {
    constexpr std::uint32_t file_header = 14, info_header = 40;
    if (bitmap.size() < info_header)
        return {};
    const std::uint32_t header = number(bitmap, 0, 4), depth = number(bitmap, 14, 2);
    std::uint32_t colours = number(bitmap, 32, 4);
    if (colours == 0 && depth <= 8)
        colours = 1U << depth;
    std::vector<std::uint8_t> file{'B', 'M'};
    platform::append_number(file, static_cast<std::uint32_t>(file_header + bitmap.size()));
    platform::append_number(file, 0);
    platform::append_number(file, file_header + header + 4 * colours);
    file.insert(file.end(), bitmap.begin(), bitmap.end());
    return file;
}

} // namespace

const platform::DialogTemplate* dialog_layout(int id) {
    const auto found = resources().dialogs.find(id);
    return found == resources().dialogs.end() ? nullptr : &found->second;
}

const platform::ControlTemplate* control_layout(int dialog, int id) {
    const platform::DialogTemplate* const layout = dialog_layout(dialog);
    if (layout != nullptr)
        for (const platform::ControlTemplate& control : layout->controls)
            if (control.id == static_cast<std::uint32_t>(id))
                return &control;
    return nullptr;
}

std::string picture_url(std::uint16_t id) {
    const auto found = resources().bitmaps.find(id);
    return found == resources().bitmaps.end() ? std::string()
                                              : "data:image/bmp;base64," + base64(bitmap_file(found->second));
}

} // namespace rehearsal::pages
