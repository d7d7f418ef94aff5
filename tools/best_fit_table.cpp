// best_fit_table FOLDER: writes the layer's table of best fits (platform/calls/text/best_fit_table.cpp) to
// standard output, made from the code-page files c_NNN.nls in FOLDER. `make best_fit` runs it.
//
// Such a file holds 16-bit words, little-endian: a header of 13 (its own length, the code page, bytes to a
// character, the default byte, the default character, ...), then the distance from there to the last table,
// then 256 characters of single bytes; 1 and 256 more where the display differs, or 0; then 0, or the number
// of lead-byte ranges with 256 offsets and a table of 256 characters for each lead byte, the offsets counted
// from where they stand. The last table begins behind one more word: for each character the byte, or the word
// lead * 256 + trail, that stands for it. A character that doesn't come back from there the same is a best
// fit.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr unsigned code_pages[] = {1250, 1251, 1252, 932,
                                   936,  949,  950}; // their bits in the table, from the lowest
constexpr std::size_t header_words = 13;

class CodePageFile {
public:
    explicit CodePageFile(std::string bytes) : bytes_(std::move(bytes)) {}

    // Out of the file's range reads as 0, which good() tells from a good file.
    unsigned word(std::size_t index) const { return byte(2 * index) | byte(2 * index + 1) << 8; }

    bool good(unsigned code_page) const {
        const std::size_t entries = word(2) == 1 ? 65536 : 131072;
        return word(0) == header_words && word(1) == code_page && bytes_.size() >= 2 * to_bytes() + entries;
    }

    // What the code page writes for the character; nothing for the default byte.
    std::optional<unsigned> written(unsigned character) const {
        const std::size_t place = 2 * to_bytes();
        const unsigned bytes = word(2) == 1 ? byte(place + character) : word(to_bytes() + character);
        return bytes == word(3) || bytes == 0 ? std::nullopt : std::optional(bytes);
    }

    unsigned character(unsigned bytes) const {
        const std::size_t ranges = singles + 256 + 1 + (word(singles + 256) == 0 ? 0 : 256);
        const std::size_t offsets = ranges + 1;
        if (word(ranges) == 0 || word(offsets + (bytes >> 8)) == 0 || bytes < 256)
            return word(singles + bytes);
        return word(offsets + word(offsets + (bytes >> 8)) + (bytes & 0xFF));
    }

private:
    static constexpr std::size_t singles = header_words + 1;

    unsigned byte(std::size_t index) const {
        return index < bytes_.size() ? static_cast<unsigned char>(bytes_[index]) : 0;
    }
    std::size_t to_bytes() const { return header_words + word(header_words) + 1; }

    std::string bytes_;
};

// By character and what is written for it, the code pages that do so.
using Fits = std::map<std::pair<unsigned, unsigned>, unsigned>;

bool add_fits(Fits& fits, const std::string& folder, unsigned bit) {
    const std::string path = folder + "/c_" + std::to_string(code_pages[bit]) + ".nls";
    std::ifstream in(path, std::ios::binary);
    const CodePageFile file({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
    if (!file.good(code_pages[bit])) {
        std::fprintf(stderr, "best_fit_table: %s: no file of this code page\n", path.c_str());
        return false;
    }
    for (unsigned character = 1; character < 65536; ++character) {
        const auto bytes = file.written(character);
        if (bytes && file.character(*bytes) != character)
            fits[{character, file.character(*bytes)}] |= 1u << bit;
    }
    return true;
}

using FitList = std::vector<std::pair<unsigned, unsigned>>;

// Neighbours in which both characters count up are one run.
void print_runs(unsigned pages, const FitList& list) {
    for (std::size_t place = 0, column = 0; place < list.size(); ++column) {
        const auto [first, written] = list[place];
        std::size_t length = 1;
        while (place + length < list.size() && list[place + length].first == first + length &&
               list[place + length].second == written + length)
            ++length;
        std::printf("%s{%u, %zu, 0x%04X, 0x%04X},",
                    column % 4 != 0 ? " "
                    : column == 0   ? "    "
                                    : "\n    ",
                    pages, length, first, written);
        place += length;
    }
    std::printf("\n");
}

void print(const Fits& fits) {
    std::map<unsigned, FitList> by_pages;
    for (const auto& [fit, pages] : fits)
        by_pages[pages].push_back(fit);
    std::puts("// Made by tools/best_fit_table.cpp from the code-page files of Debian's package libwine; "
              "`make best_fit`\n"
              "// compares the two. Not to be edited.\n"
              "#include \"calls/text/best_fit_table.h\"\n\n#include <iterator>\n\n"
              "// clang-format off\n"
              "namespace platform {\n\n"
              "const BestFitRun best_fit_runs[] = {");
    for (const auto& [pages, list] : by_pages) {
        std::printf("    //");
        for (unsigned bit = 0; bit < std::size(code_pages); ++bit)
            if ((pages >> bit & 1) != 0)
                std::printf(" %u", code_pages[bit]);
        std::printf("\n");
        print_runs(pages, list);
    }
    std::puts("};\n"
              "const std::size_t best_fit_run_count = std::size(best_fit_runs);\n\n"
              "} // namespace platform");
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: best_fit_table FOLDER\n");
        return 2;
    }
    Fits fits;
    for (unsigned bit = 0; bit < std::size(code_pages); ++bit)
        if (!add_fits(fits, arguments[1], bit))
            return 1;
    print(fits);
    return std::ferror(stdout) == 0 ? 0 : 1;
}
