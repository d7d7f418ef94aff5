// Draws the program's two pictures: the banner of the main dialog and the icon. `make pictures` runs it when
// the design changes; the files that it writes are kept beside the resource scripts.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

struct Colour {
    int red, green, blue;
    bool operator==(const Colour&) const = default;
};

constexpr Colour ink{31, 58, 95};
constexpr Colour paper{255, 255, 255};
constexpr Colour accent{232, 126, 34};
constexpr Colour shade{64, 98, 143};
constexpr Colour edge{140, 150, 164};

struct Picture {
    int width, height;
    std::vector<Colour> pixels;
    std::vector<bool> opaque;

    Picture(int width_, int height_, Colour fill)
        : width(width_), height(height_), pixels(static_cast<size_t>(width_ * height_), fill),
          opaque(pixels.size(), true) {}
    size_t at(int x, int y) const { return static_cast<size_t>(y * width + x); }
};

struct Point {
    double x, y;
};
using Stroke = std::vector<Point>;

// Shades between two colours are kept to sixteen, so that the palette stays small.
Colour mix(Colour from, Colour to, double part) {
    part = std::round(std::clamp(part, 0.0, 1.0) * 15) / 15;
    auto channel = [part](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * part)); };
    return {channel(from.red, to.red), channel(from.green, to.green), channel(from.blue, to.blue)};
}

double distance(Point point, Point from, Point to) {
    double dx = to.x - from.x, dy = to.y - from.y;
    double length = dx * dx + dy * dy;
    double along = length > 0 ? ((point.x - from.x) * dx + (point.y - from.y) * dy) / length : 0;
    along = std::clamp(along, 0.0, 1.0);
    return std::hypot(point.x - from.x - along * dx, point.y - from.y - along * dy);
}

Stroke arc(Point centre, double radius_x, double radius_y, double from, double to) {
    Stroke stroke;
    constexpr int steps = 24;
    for (int i = 0; i <= steps; ++i) {
        double angle = (from + (to - from) * i / steps) * 3.14159265358979 / 180;
        stroke.push_back({centre.x + radius_x * std::cos(angle), centre.y + radius_y * std::sin(angle)});
    }
    return stroke;
}

// Letters as strokes in a box that is 1 high; y points down.
struct Letter {
    double width;
    std::vector<Stroke> strokes;
};

std::vector<Letter> company_name() {
    Letter v{0.86, {{{0, 0}, {0.43, 1}, {0.86, 0}}}};
    Letter o{0.96, {arc({0.48, 0.5}, 0.48, 0.5, 0, 360)}};
    Letter r{0.66,
             {{{0, 1}, {0, 0}, {0.36, 0}},
              arc({0.36, 0.27}, 0.27, 0.27, -90, 90),
              {{0.36, 0.54}, {0, 0.54}},
              {{0.34, 0.54}, {0.66, 1}}}};
    Letter l{0.54, {{{0, 0}, {0, 1}, {0.54, 1}}}};
    Letter a{0.86, {{{0, 1}, {0.43, 0}, {0.86, 1}}, {{0.16, 0.66}, {0.70, 0.66}}}};
    Letter n{0.74, {{{0, 1}, {0, 0}, {0.74, 1}, {0.74, 0}}}};
    Letter e{0.56, {{{0.56, 0}, {0, 0}, {0, 1}, {0.56, 1}}, {{0, 0.5}, {0.48, 0.5}}}};
    return {v, o, r, l, a, n, e};
}

void draw_stroke(Picture& picture, const Stroke& stroke, Point origin, double scale, double width) {
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            double nearest = 1e9;
            for (size_t i = 0; i + 1 < stroke.size(); ++i) {
                Point from{origin.x + stroke[i].x * scale, origin.y + stroke[i].y * scale};
                Point to{origin.x + stroke[i + 1].x * scale, origin.y + stroke[i + 1].y * scale};
                nearest = std::min(nearest, distance({x + 0.5, y + 0.5}, from, to));
            }
            double cover = width / 2 - nearest + 0.5;
            Colour& pixel = picture.pixels[picture.at(x, y)];
            Colour drawn = mix(ink, paper, cover);
            // Where strokes meet, the lighter of the two stays.
            if (cover > 0 && drawn.red > pixel.red)
                pixel = drawn;
        }
    }
}

void fill(Picture& picture, int left, int top, int right, int bottom, Colour colour) {
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            picture.pixels[picture.at(x, y)] = colour;
            picture.opaque[picture.at(x, y)] = true;
        }
    }
}

Picture draw_banner() {
    Picture banner(173, 22, ink);
    double x = 34;
    for (const Letter& letter : company_name()) {
        for (const Stroke& stroke : letter.strokes)
            draw_stroke(banner, stroke, {x, 6.5}, 9, 1.7);
        x += letter.width * 9 + 6.5;
    }
    // A label with its bars, and the accent that runs along the foot.
    fill(banner, 6, 4, 26, 16, paper);
    int column = 8;
    for (int bar : {1, 2, 1, 1, 2, 1}) {
        fill(banner, column, 6, column + bar, 12, ink);
        column += bar + 1;
    }
    fill(banner, 8, 13, 18, 14, edge);
    fill(banner, 22, 6, 24, 14, accent);
    fill(banner, 0, 19, 173, 20, shade);
    fill(banner, 0, 20, 173, 22, accent);
    return banner;
}

// A printer from the front with a label coming out, on a grid of 16 by 16 cells, so that every size is sharp.
Picture draw_icon(int size) {
    Picture icon(size, size, {0, 0, 0});
    std::fill(icon.opaque.begin(), icon.opaque.end(), false);
    int cell = size / 16;
    auto box = [&](int left, int top, int right, int bottom, Colour colour) {
        fill(icon, left * cell, top * cell, right * cell, bottom * cell, colour);
    };
    box(1, 3, 15, 11, ink);
    box(2, 2, 14, 3, shade);
    box(2, 4, 14, 5, shade);
    box(12, 6, 13, 7, accent);
    box(3, 8, 13, 9, {12, 24, 42});
    box(4, 8, 12, 15, edge);
    fill(icon, 4 * cell + 1, 8 * cell, 12 * cell - 1, 15 * cell - 1, paper);
    for (int column : {5, 7, 8, 10})
        box(column, 9, column + 1, 12, ink);
    box(5, 13, 9, 14, accent);
    // The upper corners of the body are taken off.
    for (int corner = 0; corner < cell; ++corner) {
        icon.opaque[icon.at(2 * cell, 2 * cell)] = cell == 1;
        icon.opaque[icon.at(14 * cell - 1, 2 * cell)] = cell == 1;
    }
    return icon;
}

class Bytes {
public:
    void word(uint32_t value) { put(value, 2); }
    void dword(uint32_t value) { put(value, 4); }
    void byte(uint32_t value) { put(value, 1); }
    void append(const Bytes& other) { data_ += other.data_; }
    uint32_t size() const { return static_cast<uint32_t>(data_.size()); }
    const std::string& data() const { return data_; }

private:
    void put(uint32_t value, int count) {
        for (int i = 0; i < count; ++i)
            data_ += static_cast<char>(value >> (8 * i) & 0xFF);
    }
    std::string data_;
};

std::vector<Colour> palette_of(const Picture& picture) {
    std::vector<Colour> palette;
    for (Colour colour : picture.pixels) {
        if (std::find(palette.begin(), palette.end(), colour) == palette.end())
            palette.push_back(colour);
    }
    return palette;
}

// BITMAPINFOHEADER, palette and pixels, bottom row first, rows padded to 4 bytes. An icon's header counts the
// rows of its mask too.
Bytes bitmap(const Picture& picture, int bits, bool as_icon) {
    std::vector<Colour> palette = palette_of(picture);
    if (palette.size() > 1u << bits) {
        std::cerr << palette.size() << " colours don't fit into " << bits << " bits\n";
        std::exit(1);
    }
    Bytes out;
    out.dword(40);
    out.dword(static_cast<uint32_t>(picture.width));
    out.dword(static_cast<uint32_t>(as_icon ? picture.height * 2 : picture.height));
    out.word(1);
    out.word(static_cast<uint32_t>(bits));
    for (int field = 0; field < 4; ++field)
        out.dword(0);
    out.dword(as_icon ? 0 : static_cast<uint32_t>(palette.size()));
    out.dword(0);
    // Icons are read by more than one hand, and not all of them honour a short palette.
    if (as_icon)
        palette.resize(1u << bits, Colour{0, 0, 0});
    for (Colour colour : palette)
        out.dword(static_cast<uint32_t>(colour.red << 16 | colour.green << 8 | colour.blue));
    for (int y = picture.height - 1; y >= 0; --y) {
        uint32_t packed = 0;
        int filled = 0;
        uint32_t row_start = out.size();
        for (int x = 0; x < picture.width; ++x) {
            auto found = std::find(palette.begin(), palette.end(), picture.pixels[picture.at(x, y)]);
            packed = packed << bits | static_cast<uint32_t>(found - palette.begin());
            filled += bits;
            if (filled == 8 || x + 1 == picture.width) {
                out.byte(packed << (8 - filled));
                packed = 0;
                filled = 0;
            }
        }
        while ((out.size() - row_start) % 4 != 0)
            out.byte(0);
    }
    return out;
}

// One bit a pixel, set where the background shows through.
Bytes mask(const Picture& picture) {
    Bytes out;
    for (int y = picture.height - 1; y >= 0; --y) {
        for (int x = 0; x < (picture.width + 31) / 32 * 32; x += 8) {
            uint32_t bits = 0;
            for (int bit = 0; bit < 8; ++bit) {
                bool clear = x + bit >= picture.width || !picture.opaque[picture.at(x + bit, y)];
                bits = bits << 1 | (clear && x + bit < picture.width ? 1u : 0u);
            }
            out.byte(bits);
        }
    }
    return out;
}

void write_file(const std::string& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file << bytes.data();
    if (!file.flush()) {
        std::cerr << "can't write " << path << "\n";
        std::exit(1);
    }
}

Bytes bitmap_file(const Picture& picture) {
    Bytes image = bitmap(picture, 8, false);
    uint32_t colours = static_cast<uint32_t>(palette_of(picture).size());
    Bytes out;
    out.word(0x4D42);
    out.dword(14 + image.size());
    out.dword(0);
    out.dword(14 + 40 + 4 * colours);
    out.append(image);
    return out;
}

Bytes icon_file(const std::vector<int>& sizes) {
    Bytes directory, images;
    directory.word(0);
    directory.word(1);
    directory.word(static_cast<uint32_t>(sizes.size()));
    for (int size : sizes) {
        Picture icon = draw_icon(size);
        Bytes image = bitmap(icon, 4, true);
        image.append(mask(icon));
        directory.byte(static_cast<uint32_t>(size));
        directory.byte(static_cast<uint32_t>(size));
        directory.word(16);
        directory.word(1);
        directory.word(4);
        directory.dword(image.size());
        directory.dword(static_cast<uint32_t>(6 + 16 * sizes.size()) + images.size());
        images.append(image);
    }
    directory.append(images);
    return directory;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: draw_pictures FOLDER\n";
        return 2;
    }
    std::string folder = argv[1];
    write_file(folder + "/banner.bmp", bitmap_file(draw_banner()));
    write_file(folder + "/trk_setup.ico", icon_file({16, 32, 48}));
    return 0;
}
