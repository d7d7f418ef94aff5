#include "harness/folder_fixture.h"

#include <vector>

namespace {

class FindFiles : public FolderTest {
protected:
    // The names in their order, with a blank between; "error <code>" when there are none.
    Text find(const WCHAR* pattern) const {
        WIN32_FIND_DATAW entry;
        const HANDLE search = CreateSearch(pattern, &entry);
        if (search == INVALID_HANDLE_VALUE) {
            const std::string code = std::to_string(GetLastError());
            return TEXT("error ") + Text(code.begin(), code.end());
        }
        Text names = entry.cFileName;
        while (FindNextFileW(search, &entry) != FALSE)
            names += TEXT(" ") + Text(entry.cFileName);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
        EXPECT_EQ(FindClose(search), TRUE);
        return names;
    }

    HANDLE CreateSearch(const WCHAR* pattern, WIN32_FIND_DATAW* entry) const {
        return FindFirstFileW(path(pattern).c_str(), entry);
    }
};

TEST_F(FindFiles, PatternsMatchByThePlatformsRules) {
    for (const WCHAR* name :
         {TEXT("b.inf"), TEXT("A.INF"), TEXT("_c.inf"), TEXT("a.b.inf"), TEXT("read"), TEXT("x.info")})
        write(name, "");
    CreateDirectoryW(path(TEXT("Sub.inf")).c_str(), nullptr);
    const struct {
        const WCHAR *pattern, *names;
    } cases[] = {
        {TEXT("*"), TEXT(". .. a.b.inf A.INF b.inf read Sub.inf x.info _c.inf")},
        {TEXT("*.*"), TEXT(". .. a.b.inf A.INF b.inf read Sub.inf x.info _c.inf")},
        {TEXT("*.INF"), TEXT("a.b.inf A.INF b.inf Sub.inf x.info _c.inf")}, // by its short name
        {TEXT("?.inf"), TEXT("A.INF b.inf")},
        {TEXT("??.inf"), TEXT("A.INF b.inf _c.inf")},
        {TEXT("read.*"), TEXT("read")},
        {TEXT("rea?????"), TEXT("read")},
        {TEXT("a*f"), TEXT("a.b.inf A.INF")},
        {TEXT("B.inf"), TEXT("b.inf")},
        {TEXT("*.tkp"), TEXT("error 2")},
        {TEXT("gone"), TEXT("error 2")},
        {TEXT("gone\\*"), TEXT("error 3")},
        {TEXT("s*\\*"), TEXT("error 123")},
        {TEXT(""), TEXT("error 2")}, // a folder's name with a separator behind it
        {TEXT("sub.inf\\*"), TEXT(". ..")},
    };
    for (const auto& one : cases)
        EXPECT_TRUE(find(one.pattern) == one.names) << testing::PrintToString(Text(one.pattern)) << " gave "
                                                    << testing::PrintToString(find(one.pattern));
}

TEST_F(FindFiles, EntriesTellKindAndSize) {
    write(TEXT("five"), "12345");
    CreateDirectoryW(path(TEXT("sub")).c_str(), nullptr);
    WIN32_FIND_DATAW entry;
    FindClose(CreateSearch(TEXT("five"), &entry));
    EXPECT_EQ(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_EQ(entry.nFileSizeLow, 5u);
    FindClose(CreateSearch(TEXT("sub"), &entry));
    EXPECT_EQ(entry.dwFileAttributes, DWORD{FILE_ATTRIBUTE_DIRECTORY});
}

TEST_F(FindFiles, NamesThatArentShortHaveAShortOneToo) {
    const struct {
        const WCHAR *name, *extension; // of the short name; null when there is none
    } cases[] = {
        {TEXT("Plain.Txt"), nullptr},      {TEXT("plain_12.t"), nullptr},
        {TEXT("plain"), nullptr},          {TEXT("nine_char.x"), TEXT(".X")},
        {TEXT("long.text"), TEXT(".TEX")}, {TEXT("two.points.a"), TEXT(".A")},
        {TEXT("a b"), TEXT("")},           {TEXT("plus+.c"), TEXT(".C")},
    };
    for (const auto& one : cases) {
        write(one.name, "found");
        WIN32_FIND_DATAW entry{};
        FindClose(CreateSearch(one.name, &entry));
        const Text found = entry.cAlternateFileName;
        EXPECT_EQ(!found.empty(), one.extension != nullptr) << testing::PrintToString(Text(one.name));
        if (one.extension == nullptr || found.empty())
            continue;
        const size_t point = found.find('.');
        EXPECT_TRUE(found.substr(point == Text::npos ? found.size() : point) == one.extension)
            << testing::PrintToString(found);
        EXPECT_EQ(read(found.c_str()), "found") << testing::PrintToString(found);
        EXPECT_TRUE(find(found.c_str()) == one.name) << testing::PrintToString(found);
    }
}

} // namespace
