// The INF language and the choice of install sections as this system's set-up library reads them.
#include "platform/machine/inf_language.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <setupapi.h>

#include <cstdio>

namespace {

std::string field(INFCONTEXT& line, DWORD index) {
    char text[4096] = {};
    return SetupGetStringFieldA(&line, index, text, sizeof text, nullptr) ? text : "";
}

std::string dump_section(HINF inf, const char* name) {
    std::string out = "[" + std::string(name) + "]";
    INFCONTEXT line;
    for (BOOL more = SetupFindFirstLineA(inf, name, nullptr, &line); more;
         more = SetupFindNextLine(&line, &line)) {
        const DWORD count = SetupGetFieldCount(&line);
        // A lone value is found under its own name too.
        const std::string key = field(line, 0);
        out += (count == 1 && key == field(line, 1) ? "" : key) + ":";
        for (DWORD i = 1; i <= count; ++i)
            out += (i == 1 ? "" : "|") + field(line, i);
        out += ";";
    }
    return out;
}

std::string dump(HINF inf) {
    std::string out;
    char name[256] = {};
    for (UINT index = 0; SetupEnumInfSectionsA(inf, index, name, sizeof name, nullptr); ++index)
        out += dump_section(inf, name);
    return out;
}

class Inf : public testing::Test {
protected:
    // What the library finds in a file of this text; `error` gets its SPAPI_E_... code.
    static std::string read(const std::string& text, DWORD& error) { return use(text, error, dump); }

    // What `look` tells of the open file, or "".
    template<class Look>
    static std::string use(const std::string& text, DWORD& error, const Look& look) {
        char folder[MAX_PATH], path[MAX_PATH];
        GetTempPathA(MAX_PATH, folder);
        GetTempFileNameA(folder, "inf", 0, path);
        std::FILE* file = std::fopen(path, "wb");
        if (file == nullptr)
            return "no file";
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
        const HINF inf = SetupOpenInfFileA(path, nullptr, INF_STYLE_WIN4, nullptr);
        error = inf == INVALID_HANDLE_VALUE ? 0x800F0000u | (GetLastError() & 0xFFFF) : 0;
        const std::string found = error == 0 ? look(inf) : "";
        if (error == 0)
            SetupCloseInfFile(inf);
        DeleteFileA(path);
        return found;
    }
};

TEST_F(Inf, IsReadLikeThis) {
    for (const InfLanguageCase& test : inf_language_cases) {
        SCOPED_TRACE(test.name);
        DWORD error = 0;
        const std::string found = read(inf_language_version + test.text, error);
        EXPECT_EQ(error, test.error);
        if (test.error == 0) {
            EXPECT_EQ(found.substr(found.find(';') + 1), test.found);
        }
    }
    DWORD error = 0;
    EXPECT_EQ(read("key=value\r\n" + inf_language_version, error), "");
    EXPECT_EQ(error, 0x800F0000u) << "an entry in front of the first section";
    EXPECT_EQ(read("[Other]\r\nkey=value\r\n", error), "");
    EXPECT_EQ(error, 0x800F0100u) << "no signature";
}

#ifdef _WIN64
TEST_F(Inf, InstallsTheSectionOfItsOwnPlatform) {
    for (const InfInstallCase& test : inf_install_cases) {
        DWORD error = 0;
        const std::string taken = use(inf_language_version + test.present, error, [](HINF inf) {
            char name[256] = {};
            return std::string(
                SetupDiGetActualSectionToInstallA(inf, "Label", name, sizeof name, nullptr, nullptr) ? name
                                                                                                     : "");
        });
        EXPECT_EQ(lstrcmpiA(taken.c_str(), test.taken), 0) << test.present << " gives " << taken;
    }
}
#endif

} // namespace
