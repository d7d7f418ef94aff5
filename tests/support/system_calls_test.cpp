#include "harness/test_session.h"
#include "support/known_folder.h"
#include "support/library_search.h"
#include "support/system_text.h"

#include <gtest/gtest.h>

#include <shlobj.h>

// What the small routines ask of the system.

TEST(SystemCalls, LibrariesComeFromTheSystemsFolderWhereItCanBeSaid) {
    const struct {
        platform::SystemVersion version;
        const char* faulty;
        const char* flags; // "" where nothing is asked
    } table[] = {{{6, 2, 9200}, "", "2048"},
                 {{6, 1, 7601}, "", "2048"},
                 {{10, 0, 0}, "", "2048"},
                 {{6, 0, 6002}, "", ""},
                 {{5, 1, 2600}, "", ""},
                 {{6, 2, 9200}, "GetVersionExW", ""},
                 {{6, 2, 9200}, "GetModuleHandleW", ""},
                 {{6, 2, 9200}, "GetProcAddress", ""}};
    for (const auto& row : table) {
        TestSession test;
        test.machine.version = row.version;
        test.machine.faults = {{row.faulty, 1, true, 126, ""}};
        platform::Session& session = test.start();
        limit_library_search();
        std::string flags;
        for (const platform::JournalEntry& entry : session.gate.journal())
            if (entry.call == "SetDefaultDllDirectories")
                flags += entry.argument;
        EXPECT_EQ(flags, row.flags) << row.version.major << "." << row.version.minor << row.faulty;
    }
}

TEST(SystemCalls, AFolderWithoutAPathIsMissing) {
    for (const std::uint32_t result : {0x80070005u, 1u}) { // a failure, and a success that hands nothing out
        TestSession test;
        test.machine.faults = {{"SHGetKnownFolderPath", 1, true, result, ""}};
        test.start();
        EXPECT_EQ(find_known_folder(FOLDERID_ProgramFiles, u"X"), nullptr);
        EXPECT_EQ(test.log(), "Get X failed " + std::to_string(static_cast<std::int32_t>(result)) + "\r\n");
    }
}

TEST(SystemCalls, TextsOfErrorsAreInTheUsersLanguage) {
    TestSession test;
    platform::Session& session = test.start();
    WCHAR* const text = system_text(5);
    EXPECT_EQ(std::u16string(text), u"Access is denied.\r\n");
    LocalFree(text);
    EXPECT_EQ(session.gate.journal().back().call, "LocalFree");
    EXPECT_EQ(system_text(0xdead), nullptr);
    EXPECT_EQ(session.gate.journal().back().argument, "57005 language 1024");
}
