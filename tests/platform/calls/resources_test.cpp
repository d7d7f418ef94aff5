// The program's own texts, which every build of the tests carries, in the language that the thread asks for.
#include "harness/calls_fixture.h"

#include "resources/resource_ids.h"

namespace {

class Languages : public CallsTest {
protected:
    static LANGID choose(LANGID language) {
        using SetLanguage = LANGID(WINAPI*)(LANGID);
        const FARPROC found = GetProcAddress(GetModuleHandleW(TEXT("kernel32.dll")), "SetThreadUILanguage");
        if (found == nullptr)
            return 0;
        return reinterpret_cast<SetLanguage>(reinterpret_cast<void (*)()>(found))(language);
    }
    ~Languages() override { choose(0x0409); }

    static Text load(UINT id) {
        WCHAR text[260] = {};
        const int length = LoadStringW(GetModuleHandleW(nullptr), id, text, 260);
        EXPECT_EQ(text[length], 0);
        return Text(text, static_cast<std::size_t>(length));
    }
};

TEST_F(Languages, TheThreadsLanguageChoosesTheText) {
    const struct {
        const char* name;
        LANGID language;
        const WCHAR* refresh;
        const WCHAR* none; // null: neither the language nor American English has the block
    } cases[] = {
        {"American", 0x0409, TEXT("Refresh"), nullptr},
        {"British", 0x0809, TEXT("Refresh"), TEXT("None")},
        {"German", 0x0407, TEXT("Aktualisieren"), TEXT("Keine")},
        {"Swiss German", 0x0807, TEXT("Aktualisieren"), TEXT("Keine")},
        {"French", 0x040C, TEXT("Actualiser"), TEXT("Aucune")},
        {"Spanish", 0x0C0A, TEXT("Actualizar"), TEXT("Ninguna")},
        {"Chinese", 0x0804, TEXT("\u5237\u65B0"), TEXT("\u65E0")},
        {"Japanese", 0x0411, TEXT("\u66F4\u65B0"), TEXT("\u306A\u3057")},
        {"Russian", 0x0419, TEXT("Refresh"), nullptr},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        EXPECT_EQ(choose(one.language), one.language);
        EXPECT_EQ(load(IDS_REFRESH), one.refresh);
        if (one.none != nullptr) {
            EXPECT_EQ(load(IDS_NONE), one.none);
        }
    }
}

TEST_F(Languages, ATextCanBeMissingFromItsBlock) {
    choose(0x0409);
    EXPECT_EQ(load(IDS_INSTALLED_PRINTERS), Text()) << "only other languages have it";
    EXPECT_EQ(load(9999), Text()) << "there is no such block";
    choose(0x0809);
    EXPECT_NE(load(IDS_INSTALLED_PRINTERS), Text());
}

using Resources = CallsTest;

TEST_F(Resources, TextsAreCutAndTerminated) {
    const HINSTANCE program = GetModuleHandleW(nullptr);
    WCHAR text[5] = {'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(LoadStringW(program, IDS_CAPTION, text, 4), 3);
    EXPECT_EQ(Text(text, 5), (Text{'V', 'o', 'r', 0, 'x'}));
    EXPECT_EQ(LoadStringW(program, IDS_CAPTION, text, 1), 0);
    EXPECT_EQ(text[0], 0);
}

TEST_F(Resources, AreFoundByName) {
    const HINSTANCE program = GetModuleHandleW(nullptr);
    EXPECT_NE(LoadIconW(program, MAKEINTRESOURCEW(IDI_SETUP)), nullptr);
    SetLastError(0);
    EXPECT_EQ(LoadIconW(program, MAKEINTRESOURCEW(4711)), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
}

} // namespace
