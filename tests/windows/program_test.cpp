// What an administrator's system is shown of the two programs: their headers, their imports and their
// resources, as they lie in dist/.
#include "windows/pe_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

namespace {

using pe::Program;

constexpr uint32_t section_execute = 0x20000000, section_write = 0x80000000;
constexpr size_t load_config_directory = 10;

struct Built {
    const char* name;
    const char* file;
    bool is_64;
    const char16_t* banner;
    const char16_t* other_banner;
    size_t largest; // bytes of the file
};

void PrintTo(const Built& built, std::ostream* out) {
    *out << built.name;
}

const Built programs[] = {
    {"i686", TRK_DIST "/trk_setup.exe", false, u"Vorlane Installer 32 --- ", u"Vorlane Installer 64 --- ",
     80000},
    {"x86_64", TRK_DIST "/trk_setup64.exe", true, u"Vorlane Installer 64 --- ", u"Vorlane Installer 32 --- ",
     88000},
};

struct Linked {
    const char* name;
    const char* file;
};

void PrintTo(const Linked& linked, std::ostream* out) {
    *out << linked.name;
}

// The programs, and a program for each target that names every routine of the library.
const Linked linked_files[] = {
    {"i686", TRK_DIST "/trk_setup.exe"},
    {"x86_64", TRK_DIST "/trk_setup64.exe"},
    {"library_i686", TRK_BUILDS "/windows-i686/src/trk_link_all.exe"},
    {"library_x86_64", TRK_BUILDS "/windows-x86_64/src/trk_link_all.exe"},
};

std::string wide_bytes(const std::u16string& text) {
    std::string out;
    for (char16_t unit : text) {
        out += static_cast<char>(unit & 0xFF);
        out += static_cast<char>(unit >> 8);
    }
    return out;
}

bool contains_text(const pe::Bytes& bytes, const std::u16string& text) {
    const std::string wanted = wide_bytes(text);
    return std::search(bytes.begin(), bytes.end(), wanted.begin(), wanted.end(),
                       [](uint8_t byte, char c) { return byte == static_cast<uint8_t>(c); }) != bytes.end();
}

class WindowsProgram : public testing::TestWithParam<Built> {
protected:
    Program program{GetParam().file};
};

INSTANTIATE_TEST_SUITE_P(Both, WindowsProgram, testing::ValuesIn(programs),
                         [](const auto& built) { return std::string(built.param.name); });

TEST_P(WindowsProgram, HeaderAsksForVistaAndProtection) {
    EXPECT_EQ(program.is_64(), GetParam().is_64);
    EXPECT_EQ(program.header_word(68), 2) << "a window program without a console";
    EXPECT_EQ(program.header_word(48), 6) << "subsystem version, major";
    EXPECT_EQ(program.header_word(50), 0) << "subsystem version, minor";
    EXPECT_EQ(program.header_word(40), 6) << "system version, major";
    const uint32_t characteristics = program.header_word(70);
    EXPECT_TRUE(characteristics & 0x0040) << "may be loaded anywhere";
    EXPECT_TRUE(characteristics & 0x0100) << "data isn't run";
    EXPECT_EQ((characteristics & 0x0020) != 0, GetParam().is_64) << "the whole 64-bit address space";
    EXPECT_EQ(program.time_stamp(), 0);
}

TEST_P(WindowsProgram, NoSectionIsWrittenAndRun) {
    ASSERT_FALSE(program.sections().empty());
    for (const pe::Section& section : program.sections())
        EXPECT_NE(section.flags & (section_execute | section_write), section_execute | section_write)
            << section.name;
}

TEST_P(WindowsProgram, LoadConfigurationLimitsTheLoader) {
    const uint32_t config = program.directory_address(load_config_directory);
    ASSERT_NE(config, 0);
    EXPECT_EQ(program.directory_size(load_config_directory), program.number(config, 4));
    EXPECT_EQ(program.number(config + (program.is_64() ? 0x4E : 0x36), 2), 0x800) << "system folder alone";

    // The guard word starts as the value that the loader knows to replace, where it can be written.
    const uint64_t pointer =
        program.is_64() ? program.number(config + 0x58, 8) : program.number(config + 0x3C, 4);
    const auto guard = static_cast<uint32_t>(pointer - program.image_base());
    const pe::Section* section = program.section_at(guard);
    ASSERT_NE(section, nullptr);
    EXPECT_TRUE(section->flags & section_write);
    EXPECT_EQ(program.number(guard, program.is_64() ? 8 : 4),
              program.is_64() ? 0x00002B992DDFA232 : uint64_t{0xBB40E64E});
}

TEST_P(WindowsProgram, BannerTellsWhichProgramItIs) {
    EXPECT_TRUE(program.contains(wide_bytes(GetParam().banner)));
    EXPECT_FALSE(program.contains(wide_bytes(GetParam().other_banner)));
}

struct AllowList {
    std::set<std::string> loaded, delayed; // libraries
    std::map<std::string, std::set<std::string>> functions;
};

AllowList read_allow_list() {
    AllowList list;
    std::ifstream in(TRK_TEST_SOURCES "/windows/vista_imports.txt");
    std::string line, library;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string word;
        if (line.empty() || line[0] == '#')
            continue;
        if (line[0] == ' ') {
            while (words >> word)
                list.functions[library].insert(word);
            continue;
        }
        words >> word >> library;
        (word == "loaded" ? list.loaded : list.delayed).insert(library);
    }
    return list;
}

class LinkedFile : public testing::TestWithParam<Linked> {
protected:
    Program program{GetParam().file};
};

INSTANTIATE_TEST_SUITE_P(All, LinkedFile, testing::ValuesIn(linked_files),
                         [](const auto& linked) { return std::string(linked.param.name); });

TEST_P(LinkedFile, ImportsOnlyWhatVistaHas) {
    const AllowList allowed = read_allow_list();
    auto check = [&](const std::vector<pe::Import>& imports, const std::set<std::string>& libraries) {
        ASSERT_FALSE(imports.empty());
        for (const pe::Import& import : imports) {
            EXPECT_TRUE(libraries.contains(import.library)) << import.library;
            for (const std::string& function : import.functions)
                EXPECT_TRUE(allowed.functions.at(import.library).contains(function))
                    << import.library << " " << function;
        }
    };
    check(program.imports(), allowed.loaded);
    check(program.delayed_imports(), allowed.delayed);
}

// A slot of a library that isn't loaded yet leads to the code that loads it, wherever the image lies.
TEST_P(LinkedFile, DelayedSlotsLeadToCode) {
    const std::vector<uint32_t> relocated = program.relocated_addresses();
    const std::set<uint32_t> moved(relocated.begin(), relocated.end());
    ASSERT_FALSE(moved.empty());
    for (const pe::Import& import : program.delayed_imports()) {
        for (size_t i = 0; i < import.slots.size(); ++i) {
            const std::string what = import.library + " " + import.functions[i];
            ASSERT_GT(import.slots[i], program.image_base()) << what;
            const auto target = static_cast<uint32_t>(import.slots[i] - program.image_base());
            const pe::Section* section = program.section_at(target);
            ASSERT_NE(section, nullptr) << what;
            EXPECT_TRUE(section->flags & section_execute) << what;
            const auto slot = static_cast<uint32_t>(import.first_slot + i * (program.is_64() ? 8 : 4));
            EXPECT_TRUE(moved.contains(slot)) << what;
            EXPECT_TRUE(program.section_at(slot)->flags & section_write) << what;
        }
    }
}

TEST_P(WindowsProgram, CarriesTheLayersResources) {
    pe::Resources expected = pe::read_resource_file(TRK_RESOURCE_FILE);
    pe::Resources actual = program.resources();
    const auto find = [](const pe::Resources& all, uint32_t type) {
        return std::find_if(all.begin(), all.end(),
                            [type](const auto& entry) { return entry.first.type == type; });
    };
    // The version block names the program's own file.
    const auto version = find(actual, pe::version_type);
    ASSERT_NE(version, actual.end());
    EXPECT_TRUE(contains_text(version->second, GetParam().is_64 ? u"trk_setup64.exe" : u"trk_setup.exe"));
    EXPECT_TRUE(contains_text(version->second, u"Vorlane Inc"));
    EXPECT_EQ(pe::little_endian(version->second, 40 + 8, 4), 0) << "version, major and minor";
    EXPECT_EQ(pe::little_endian(version->second, 40 + 12, 4), 36) << "version, build and revision";
    actual.erase(version);
    expected.erase(find(expected, pe::version_type));

    ASSERT_EQ(actual.size(), expected.size());
    for (const auto& [key, bytes] : expected)
        EXPECT_EQ(actual[key], bytes)
            << "type " << key.type << " id " << key.id << " language " << key.language;
}

TEST_P(WindowsProgram, ManifestAsksForAnAdministratorAndNothingElse) {
    const pe::Resources resources = program.resources();
    const auto manifest = resources.find({pe::manifest_type, 1, 1033});
    ASSERT_NE(manifest, resources.end());
    const std::string text(manifest->second.begin(), manifest->second.end());
    EXPECT_NE(text.find("level=\"requireAdministrator\""), std::string::npos);
    EXPECT_NE(text.find("{e2011457-1546-43c5-a5fe-008deee3d3f0}"), std::string::npos) << "Windows Vista";
    EXPECT_NE(text.find("{35138b9a-5d96-4fbd-8e2d-a2440225f93a}"), std::string::npos) << "Windows 7";
    size_t systems = 0;
    for (size_t at = 0; (at = text.find("supportedOS", at)) != std::string::npos; ++at)
        ++systems;
    EXPECT_EQ(systems, 2);
    EXPECT_EQ(text.find("dependentAssembly"), std::string::npos);
}

TEST(Resources, PicturesHaveTheirSizes) {
    const pe::Resources resources = pe::read_resource_file(TRK_RESOURCE_FILE);
    const pe::Bytes& banner = resources.at({pe::bitmap_type, 104, 1033});
    EXPECT_EQ(pe::little_endian(banner, 4, 4), 173);
    EXPECT_EQ(pe::little_endian(banner, 8, 4), 22);
    std::set<uint32_t> sizes;
    for (const auto& [key, bytes] : resources)
        if (key.type == pe::icon_type)
            sizes.insert(pe::little_endian(bytes, 4, 4));
    EXPECT_EQ(sizes, (std::set<uint32_t>{16, 32, 48}));
}

TEST(Resources, DialogsAreEnglishAndStartHidden) {
    std::set<uint32_t> ids;
    for (const auto& [key, bytes] : pe::read_resource_file(TRK_RESOURCE_FILE)) {
        if (key.type != pe::dialog_type)
            continue;
        EXPECT_EQ(key.language, 1033);
        ids.insert(key.id);
        // A pop-up window with caption, system menu, modal frame and font, not visible.
        EXPECT_EQ(pe::little_endian(bytes, 0, 4), 0x80C800C0) << key.id;
    }
    EXPECT_EQ(ids, (std::set<uint32_t>{101, 104, 105}));
}

// The placeholders of a text, in their order.
std::u16string placeholders(const std::u16string& text) {
    std::u16string out;
    for (size_t i = 0; i + 1 < text.size(); ++i)
        if (text[i] == u'%')
            out += text[i + 1];
    return out;
}

TEST(Resources, EveryLanguageHasEveryTextWithTheSamePlaceholders) {
    const auto tables = pe::string_table(pe::read_resource_file(TRK_RESOURCE_FILE));
    std::set<uint32_t> languages;
    for (const auto& [language, texts] : tables)
        languages.insert(language);
    ASSERT_EQ(languages, (std::set<uint32_t>{4, 7, 10, 12, 1033, 1041, 2057}));

    const auto& english = tables.at(2057);
    EXPECT_EQ(english.size(), 48);
    for (const auto& [language, texts] : tables) {
        for (const auto& [id, text] : english) {
            const bool left_out = language == 1033 && id >= 430;
            ASSERT_EQ(texts.contains(id), !left_out) << language << " " << id;
            if (left_out)
                continue;
            EXPECT_EQ(placeholders(texts.at(id)), placeholders(text)) << language << " " << id;
            const bool never_translated = id == 103 || (id >= 106 && id <= 111) || id == 401 || id == 403;
            if (never_translated || language == 1033) {
                EXPECT_EQ(texts.at(id), text) << language << " " << id;
            }
            EXPECT_LT(texts.at(id).size(), 260) << "the program loads at most 259 characters";
        }
        EXPECT_EQ(texts.size(), language == 1033 ? 39 : 48) << language;
    }
}

TEST_P(WindowsProgram, StaysSmall) {
    const size_t size = pe::read_file(GetParam().file).size();
    std::cout << GetParam().file << " has " << size << " bytes\n";
    EXPECT_LE(size, GetParam().largest);
}

} // namespace
