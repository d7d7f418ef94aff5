#include "acceptance/pictures/picture.h"

#include <fstream>

namespace pictures {
namespace {

constexpr WORD bits_per_pixel = 24;

struct Pixels {
    BITMAPINFOHEADER form = {};
    std::vector<char> bytes;
};

// A bitmap's rows are whole numbers of four bytes.
std::size_t size_of(const BITMAPINFOHEADER& form) {
    return static_cast<std::size_t>((form.biWidth * form.biBitCount + 31) / 32 * 4 * form.biHeight);
}

std::string copy_screen(const RECT& place, Pixels& pixels) {
    pixels.form.biSize = sizeof pixels.form;
    pixels.form.biWidth = place.right - place.left;
    pixels.form.biHeight = place.bottom - place.top;
    pixels.form.biPlanes = 1;
    pixels.form.biBitCount = bits_per_pixel;
    pixels.form.biCompression = BI_RGB;
    BITMAPINFO information = {};
    information.bmiHeader = pixels.form;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(memory, &information, DIB_RGB_COLORS, &bits, nullptr, 0);
    std::string problem = "no bitmap could be made";
    if (bitmap != nullptr) {
        const HGDIOBJ before = SelectObject(memory, bitmap);
        problem = BitBlt(memory, 0, 0, pixels.form.biWidth, pixels.form.biHeight, screen, place.left,
                         place.top, SRCCOPY)
                      ? ""
                      : "the screen couldn't be read";
        GdiFlush();
        pixels.bytes.assign(static_cast<const char*>(bits),
                            static_cast<const char*>(bits) + size_of(pixels.form));
        SelectObject(memory, before);
        DeleteObject(bitmap);
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return problem;
}

template<class Header>
void put(std::ofstream& file, const Header& header) {
    file.write(reinterpret_cast<const char*>(&header), sizeof header);
}

} // namespace

std::string save_picture(HWND window, const std::filesystem::path& path) {
    RECT place = {};
    if (!GetWindowRect(window, &place))
        return "the window has gone";
    if (place.left < 0 || place.top < 0 || place.right > GetSystemMetrics(SM_CXSCREEN) ||
        place.bottom > GetSystemMetrics(SM_CYSCREEN))
        return "the window isn't wholly on the screen";
    Pixels pixels;
    if (const std::string problem = copy_screen(place, pixels); !problem.empty())
        return problem;
    BITMAPFILEHEADER header = {};
    header.bfType = 0x4D42; // "BM"
    header.bfOffBits = sizeof header + sizeof pixels.form;
    header.bfSize = header.bfOffBits + static_cast<DWORD>(pixels.bytes.size());
    std::ofstream file(path, std::ios::binary);
    put(file, header);
    put(file, pixels.form);
    file.write(pixels.bytes.data(), static_cast<std::streamsize>(pixels.bytes.size()));
    return file.flush() ? "" : "the picture's file couldn't be written";
}

} // namespace pictures
