#include "harness/test_session.h"
#include "support/current_folder.h"
#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/library_search.h"
#include "support/registry_text.h"
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

// A size that is exactly the buffer's leaves no room for the terminator, whoever tells it.
TEST(SystemCalls, SizesAreNotBelieved) {
    TestSession test;
    test.machine.registry = {{u"Key", {{u"Value", {1, {'a', 0, 'b', 0}}}}}};
    test.machine.environment[u"TEMP"] = u"C:\\T";
    platform::Session& session = test.start();
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Key", 0, KEY_READ, &key), ERROR_SUCCESS);
    for (const std::uint32_t told : {4u, 5u, 6u, 1000u}) {
        session.gate.on_size = [told](const platform::JournalEntry& entry, std::uint32_t capacity,
                                      platform::ToldSize& size) {
            if (entry.call == "RegQueryValueExW") {
                size.told = told;
            } else {
                size.needed = capacity + 1; // so that the buffer is left unset
                size.told = capacity;
            }
        };
        WCHAR text[3];
        EXPECT_EQ(read_registry_text(key, u"Value", text, 4), ERROR_SUCCESS);
        EXPECT_EQ(std::u16string(text), u"ab");
        WCHAR folder[64] = {};
        EXPECT_EQ(get_current_folder(folder, 64), 0);
        EXPECT_EQ(folder[0], 0);
        EXPECT_EQ(find_temp_dir(folder, 64, 1), 0);
        EXPECT_EQ(folder[0], 0);
    }
    RegCloseKey(key);
}
