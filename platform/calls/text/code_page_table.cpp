#include "calls/text/code_page_table.h"

#include "calls/text/best_fit.h"

#include <iconv.h>

#include <atomic>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>

namespace platform {
namespace {

struct Range {
    unsigned first = 1, last = 0; // empty unless given
};

// What differs between the converter's view and the platform's: bytes without a character have one here.
struct OwnCharacter {
    std::uint8_t byte;
    char16_t character;
};

// Byte pairs for characters that users draw themselves, which the converter doesn't know. They are numbered
// in the order of the pairs, from `character` on; a pair that has a character already is left out.
struct OwnArea {
    Range leads, trails;
    char16_t character = 0;
};

struct CodePageFacts {
    std::uint32_t code_page;
    const char* converter;
    char16_t unknown = u'?';
    Range leads[2] = {};
    OwnCharacter own[5] = {};
    Range unused = {}; // bytes that are never a trail byte
    OwnArea areas[4] = {};
};

constexpr CodePageFacts known[] = {
    {1250, "CP1250", u'?', {}, {{0x81, 0x81}, {0x83, 0x83}, {0x88, 0x88}, {0x90, 0x90}, {0x98, 0x98}}},
    {1251, "CP1251", u'?', {}, {{0x98, 0x98}}},
    {1252, "CP1252", u'?', {}, {{0x81, 0x81}, {0x8D, 0x8D}, {0x8F, 0x8F}, {0x90, 0x90}, {0x9D, 0x9D}}},
    {932,
     "CP932",
     0x30FB,
     {{0x81, 0x9F}, {0xE0, 0xFC}},
     {{0x80, 0x80}, {0xA0, 0xF8F0}, {0xFD, 0xF8F1}, {0xFE, 0xF8F2}, {0xFF, 0xF8F3}}},
    {936,
     "CP936",
     u'?',
     {{0x81, 0xFE}},
     {{0x80, 0x20AC}, {0xFF, 0xF8F5}},
     {0x7F, 0x7F},
     {{{0xAA, 0xAF}, {0xA1, 0xFE}, 0xE000},
      {{0xF8, 0xFE}, {0xA1, 0xFE}, 0xE234},
      {{0xA1, 0xA7}, {0x40, 0xA0}, 0xE4C6},
      {{0xA2, 0xFE}, {0x40, 0xFE}, 0xE766}}}, // gaps in the rows of the standard
    {949,
     "UHC",
     u'?',
     {{0x81, 0xFE}},
     {{0x80, 0x80}, {0xFF, 0xF8F7}},
     {},
     {{{0xC9, 0xC9}, {0xA1, 0xFE}, 0xE000}, {{0xFE, 0xFE}, {0xA1, 0xFE}, 0xE05E}}},
    {950,
     "CP950",
     u'?',
     {{0x81, 0xFE}},
     {{0x80, 0x80}, {0xFF, 0xF8F8}},
     {0x7F, 0xA0},
     {{{0xFA, 0xFE}, {0x40, 0xFE}, 0xE000},
      {{0x8E, 0xA0}, {0x40, 0xFE}, 0xE311},
      {{0x81, 0x8D}, {0x40, 0xFE}, 0xEEB8}}},
};

class Converter {
public:
    explicit Converter(const char* name) : handle_(iconv_open("UTF-16LE", name)) {}
    ~Converter() {
        if (good())
            iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    bool good() const { return handle_ != iconv_t(-1); }

    // The one character that the bytes make, if they do.
    std::optional<char16_t> character(const std::uint8_t* bytes, std::size_t count) {
        char in[2] = {static_cast<char>(bytes[0]), static_cast<char>(count > 1 ? bytes[1] : 0)};
        std::uint8_t out[8];
        char* from = in;
        char* to = reinterpret_cast<char*>(out);
        std::size_t from_left = count, to_left = sizeof out;
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        const std::size_t result = iconv(handle_, &from, &from_left, &to, &to_left);
        // Some converters hold a character back until they know that no combining one follows.
        if (result == std::size_t(-1) || iconv(handle_, nullptr, nullptr, &to, &to_left) == std::size_t(-1) ||
            from_left != 0 || sizeof out - to_left != 2)
            return std::nullopt;
        return static_cast<char16_t>(out[0] | (out[1] << 8));
    }

private:
    iconv_t handle_;
};

void add_single_bytes(CodePageTable& table, Converter& converter, const CodePageFacts& facts) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        const auto value = static_cast<std::uint8_t>(byte);
        if (!table.lead[byte])
            table.single[byte] = converter.character(&value, 1).value_or(facts.unknown);
    }
    for (const OwnCharacter& own : facts.own)
        if (own.byte != 0)
            table.single[own.byte] = own.character;
    table.single[0x5C] = u'\\'; // the Asian code pages show it as a currency sign, and mean a backslash
    table.single[0x7E] = u'~';
}

bool in(const Range& range, unsigned byte) {
    return byte >= range.first && byte <= range.last;
}

void add_own_areas(CodePageTable& table, const CodePageFacts& facts) {
    for (const OwnArea& area : facts.areas) {
        char16_t character = area.character;
        for (unsigned lead = area.leads.first; lead <= area.leads.last; ++lead)
            for (unsigned trail = area.trails.first; trail <= area.trails.last; ++trail)
                if (!in(facts.unused, trail) && table.pairs[lead * 256 + trail] == 0)
                    table.pairs[lead * 256 + trail] = character++;
    }
}

void add_pairs(CodePageTable& table, Converter& converter) {
    table.pairs.assign(65536, 0);
    for (unsigned pair = 0x8140; pair < 65536; ++pair) {
        const std::uint8_t bytes[2] = {static_cast<std::uint8_t>(pair >> 8),
                                       static_cast<std::uint8_t>(pair & 0xFF)};
        if (table.lead[bytes[0]] && bytes[1] >= 0x40)
            table.pairs[pair] = converter.character(bytes, 2).value_or(u'\0');
    }
}

// Where several byte pairs make one character, the platform writes the lowest. Never written are in code page
// 932 the rows ED and EE, which repeat what stands in rows FA to FC, and in code page 950 the symbols that
// come again as box lines or numerals.
unsigned rank(const CodePageTable& table, unsigned pair) {
    const bool repeated = (table.code_page == 932 && pair >= 0xED40 && pair <= 0xEEFC) ||
                          (table.code_page == 950 && pair >= 0xA2A4 && pair <= 0xA2CE);
    return repeated ? pair + 65536 : pair;
}

void add_bytes(CodePageTable& table) {
    table.bytes.assign(65536, 0);
    for (unsigned pair = 0; pair < table.pairs.size(); ++pair) {
        const char16_t character = table.pairs[pair];
        std::uint16_t& bytes = table.bytes[character];
        if (character != 0 && (bytes == 0 || rank(table, pair) < rank(table, bytes)))
            bytes = static_cast<std::uint16_t>(pair);
    }
    for (unsigned byte = 1; byte < 256; ++byte)
        if (!table.lead[byte] && (table.single[byte] != table.unknown || byte == u'?'))
            table.bytes[table.single[byte]] = static_cast<std::uint16_t>(byte);
}

void add_nearest(CodePageTable& table) {
    table.nearest = table.bytes;
    for (const BestFit& fit : best_fits(table.code_page))
        table.nearest[fit.character] = table.bytes[fit.written];
}

std::unique_ptr<CodePageTable> make_table(const CodePageFacts& facts) {
    Converter converter(facts.converter);
    if (!converter.good())
        return nullptr;
    auto table = std::make_unique<CodePageTable>();
    table->code_page = facts.code_page;
    table->unknown = facts.unknown;
    table->single.assign(256, 0);
    for (const Range& range : facts.leads)
        for (unsigned byte = range.first; byte <= range.last; ++byte)
            table->lead[byte] = true;
    add_single_bytes(*table, converter, facts);
    if (facts.leads[0].last != 0) {
        add_pairs(*table, converter);
        add_own_areas(*table, facts);
    }
    add_bytes(*table);
    add_nearest(*table);
    return table;
}

// Nearly every call with a text asks for a table, so that one that is there is found without a lock.
struct Making {
    std::atomic<const CodePageTable*> made = nullptr;
    std::unique_ptr<CodePageTable> table;
};

const CodePageTable* made_table(Making& making, const CodePageFacts& facts) {
    if (const CodePageTable* const made = making.made.load(std::memory_order_acquire))
        return made;
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    if (!making.table)
        making.table = make_table(facts);
    making.made.store(making.table.get(), std::memory_order_release);
    return making.table.get();
}

} // namespace

const CodePageTable* code_page_table(std::uint32_t code_page) {
    static Making making[std::size(known)];
    for (std::size_t index = 0; index < std::size(known); ++index)
        if (known[index].code_page == code_page)
            return made_table(making[index], known[index]);
    return nullptr;
}

} // namespace platform
