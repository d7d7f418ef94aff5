// Resource files made here byte by byte: what a file cut short gives, and which language a thread gets.
#include "harness/test_session.h"

#include "calls/windows/resource_file.h"
#include "calls/windows/resources.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using platform::ResourceError;
using Bytes = std::vector<std::uint8_t>;

void put_word(Bytes& bytes, unsigned value) {
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

void put_long(Bytes& bytes, std::uint32_t value) {
    put_word(bytes, value & 0xFFFF);
    put_word(bytes, value >> 16);
}

void put_text(Bytes& bytes, std::u16string_view text) {
    for (const char16_t unit : text)
        put_word(bytes, unit);
    put_word(bytes, 0);
}

void align(Bytes& bytes) {
    while (bytes.size() % 4 != 0)
        bytes.push_back(0);
}

void put_entry(Bytes& file, unsigned type, unsigned name, unsigned language, const Bytes& data) {
    put_long(file, static_cast<std::uint32_t>(data.size()));
    put_long(file, 32);
    for (const unsigned number : {type, name}) {
        put_word(file, 0xFFFF);
        put_word(file, number);
    }
    put_long(file, 0);
    put_word(file, 0);
    put_word(file, language);
    put_long(file, 0);
    put_long(file, 0);
    file.insert(file.end(), data.begin(), data.end());
    align(file);
}

// A block of strings whose text at `index` is the given one; the others have none.
Bytes block_with(unsigned index, std::u16string_view text) {
    Bytes block;
    for (unsigned place = 0; place < 16; ++place) {
        put_word(block, place == index ? static_cast<unsigned>(text.size()) : 0);
        if (place == index)
            for (const char16_t unit : text)
                put_word(block, unit);
    }
    return block;
}

// The extended form, with one push button and one picture.
Bytes extended_dialog() {
    Bytes dialog;
    put_word(dialog, 1);
    put_word(dialog, 0xFFFF);
    put_long(dialog, 0); // help
    put_long(dialog, 0); // extended style
    put_long(dialog, DS_SETFONT | WS_CAPTION);
    put_word(dialog, 2);
    for (const unsigned coordinate : {0u, 0u, 100u, 50u})
        put_word(dialog, coordinate);
    put_word(dialog, 0); // menu
    put_word(dialog, 0); // class
    put_text(dialog, u"Extended");
    put_word(dialog, 8);
    put_word(dialog, 400);
    put_word(dialog, 0x0100);
    put_text(dialog, u"MS Shell Dlg");
    const struct {
        std::uint32_t style;
        std::uint32_t id;
        unsigned window_class;
    } controls[] = {{WS_VISIBLE | WS_TABSTOP, 70001, 0x80}, {WS_VISIBLE | SS_BITMAP, 9, 0x82}};
    for (const auto& control : controls) {
        align(dialog);
        put_long(dialog, 0);
        put_long(dialog, 0);
        put_long(dialog, control.style);
        for (const unsigned coordinate : {0xFFFEu, 7u, 50u, 14u})
            put_word(dialog, coordinate);
        put_long(dialog, control.id);
        put_word(dialog, 0xFFFF);
        put_word(dialog, control.window_class);
        if (control.window_class == 0x82) {
            put_word(dialog, 0xFFFF);
            put_word(dialog, 104);
        } else {
            put_text(dialog, u"Go");
        }
        put_word(dialog, 0);
    }
    return dialog;
}

TEST(ResourceFile, BothFormsOfDialogTemplatesAreRead) {
    const platform::DialogTemplate dialog = platform::read_dialog_template(extended_dialog());
    EXPECT_EQ(dialog.caption, u"Extended");
    EXPECT_EQ(dialog.font, u"MS Shell Dlg");
    EXPECT_EQ(dialog.font_points, 8);
    ASSERT_EQ(dialog.controls.size(), 2u);
    EXPECT_EQ(dialog.controls[0].id, 70001u);
    EXPECT_EQ(dialog.controls[0].text, u"Go");
    EXPECT_EQ(dialog.controls[0].left, -2);
    EXPECT_EQ(dialog.controls[0].height, 14);
    EXPECT_EQ(dialog.controls[1].image, 104);
    EXPECT_EQ(dialog.controls[1].window_class.id, 0x82);
}

TEST(ResourceFile, EveryCutIsNoticed) {
    const Bytes dialog = extended_dialog();
    for (std::size_t length = 0; length < dialog.size(); ++length)
        EXPECT_THROW(platform::read_dialog_template(std::span(dialog).first(length)), ResourceError)
            << length;

    const Bytes block = block_with(15, u"last");
    for (std::size_t length = 0; length < block.size(); ++length)
        EXPECT_THROW(platform::read_block_string(std::span(block).first(length), 15), ResourceError)
            << length;

    Bytes file;
    put_entry(file, 0, 0, 0, {});
    const std::size_t mark = file.size();
    put_entry(file, 6, 1, 1033, block);
    ASSERT_EQ(platform::read_resource_file(file).size(), 1u);
    for (std::size_t length = 0; length < file.size(); ++length) {
        if (length == mark)
            continue; // a whole file, without entries
        EXPECT_THROW(platform::read_resource_file(std::span(file).first(length)), ResourceError) << length;
    }
    EXPECT_THROW(platform::read_resource_file(std::span(file).subspan(mark)), ResourceError)
        << "no mark in front";
}

class Resources : public testing::Test {
protected:
    // String 33 in some languages, told apart by the text; string 34 in one only.
    Resources() {
        Bytes file;
        put_entry(file, 0, 0, 0, {});
        const struct {
            unsigned language;
            std::u16string_view text;
        } texts[] = {{3084, u"Canadian"}, {7, u"German"},     {12, u"French"},
                     {1033, u"American"}, {2057, u"British"}, {3082, u"Iberian"}};
        for (const auto& [language, text] : texts)
            put_entry(file, 6, 3, language, block_with(1, text));
        put_entry(file, 6, 4, 2057, block_with(0, u"British only"));
        TestSession::write(file_path_, std::string(file.begin(), file.end()));
    }

    void start(std::uint16_t language) {
        test_.machine.ui_language = language;
        platform::SessionOptions options;
        options.drive_c = test_.drive_c;
        options.resources = file_path_;
        session_.emplace(test_.machine, options, test_.user);
    }

    static std::u16string load(UINT id) {
        WCHAR text[32] = {};
        const int length = LoadStringW(nullptr, id, text, 32);
        return {text, static_cast<std::size_t>(length)};
    }

    TestSession test_;
    std::filesystem::path file_path_ = test_.folder.path / "strings.res";
    std::optional<platform::Session> session_;
};

TEST_F(Resources, TheLanguageFallsBackWithinItsFamilyThenToEnglish) {
    const struct {
        const char* name;
        std::uint16_t language;
        std::u16string text;
    } cases[] = {{"exact", 2057, u"British"},
                 {"primary alone", 1031, u"German"},
                 {"exact before primary", 3084, u"Canadian"},
                 {"primary before its family", 1036, u"French"},
                 {"any of the family", 2058, u"Iberian"},
                 {"no such language", 1049, u"American"}};
    for (const auto& [name, language, text] : cases) {
        start(language);
        EXPECT_EQ(load(33), text) << name;
        session_.reset();
    }
}

TEST_F(Resources, ABlockThatLacksTheTextEndsTheSearch) {
    start(1033);
    EXPECT_EQ(load(34), u"") << "the block is there, the text isn't";
    EXPECT_EQ(load(48), u"British only") << "the whole block is only in the family";
    EXPECT_EQ(load(400), u"");
    session_.reset();
    start(1031);
    EXPECT_EQ(load(48), u"") << "neither the family nor American English has the block";
}

TEST_F(Resources, TheMachineCanLeaveStringsOut) {
    test_.machine.missing_strings = {48};
    start(1033);
    EXPECT_EQ(load(33), u"American");
    EXPECT_EQ(load(48), u"");
}

TEST_F(Resources, AnUnreadableFileStopsTheRun) {
    TestSession::write(file_path_, "no resources");
    start(1033);
    EXPECT_THROW(load(33), platform::RunStopped);
    EXPECT_NE(session_->gate.stop_reason().find("strings.res"), std::string::npos);
}

} // namespace
