#include "harness/folder_fixture.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <iterator>

namespace {

class Shell : public FolderTest {
protected:
    int copy(const WCHAR* from, const WCHAR* to) const {
        return run(FO_COPY, FOF_SILENT | FOF_NOCONFIRMATION | FOF_FILESONLY | FOF_NOERRORUI | FOF_NORECURSION,
                   path(from), path(to));
    }
    int remove(const WCHAR* name) const {
        return run(FO_DELETE, FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI, path(name), Text());
    }

private:
    static int run(UINT operation, FILEOP_FLAGS flags, Text from, Text to) {
        from += WCHAR(0); // with the text's own terminator the two that end a list
        to += WCHAR(0);
        SHFILEOPSTRUCTW what{};
        what.wFunc = operation;
        what.pFrom = from.c_str();
        what.pTo = operation == FO_COPY ? to.c_str() : nullptr;
        what.fFlags = flags;
        what.lpszProgressTitle = TEXT("");
        return SHFileOperationW(&what);
    }
};

TEST_F(Shell, CopiesMatchingFilesOfOneFolder) {
    for (const WCHAR* name : {TEXT("from"), TEXT("from\\folder.tkp"), TEXT("to")})
        CreateDirectoryW(path(name).c_str(), nullptr);
    write(TEXT("from\\one.tkp"), "1");
    write(TEXT("from\\TWO.TKP"), "2");
    write(TEXT("from\\three.icm"), "3");
    write(TEXT("from\\folder.tkp\\below.tkp"), "4");
    write(TEXT("from\\five.tkpx"), "5"); // FIVE~1.TKP
    write(TEXT("to\\one.tkp"), "to be replaced");
    EXPECT_EQ(copy(TEXT("from\\*.tkp"), TEXT("to\\")), 0);
    EXPECT_EQ(read(TEXT("to\\one.tkp")), "1");
    EXPECT_EQ(read(TEXT("to\\two.tkp")), "2");
    EXPECT_EQ(read(TEXT("to\\five.tkpx")), "5");
    EXPECT_EQ(read(TEXT("to\\three.icm")), "(absent)");
    EXPECT_EQ(GetFileAttributesW(path(TEXT("to\\folder.tkp")).c_str()), INVALID_FILE_ATTRIBUTES);
    // The question for a missing target folder counts as answered by yes.
    EXPECT_EQ(copy(TEXT("from\\*.icm"), TEXT("made\\deep\\")), 0);
    EXPECT_EQ(read(TEXT("made\\deep\\three.icm")), "3");
    EXPECT_NE(copy(TEXT("from\\*.tkd"), TEXT("to\\")), 0);
    EXPECT_NE(copy(TEXT("gone\\*.tkp"), TEXT("to\\")), 0);
}

TEST_F(Shell, DeletesAFolderWithAllThatIsInIt) {
    CreateDirectoryW(path(TEXT("tree")).c_str(), nullptr);
    CreateDirectoryW(path(TEXT("tree\\branch")).c_str(), nullptr);
    write(TEXT("tree\\leaf"), "x");
    write(TEXT("tree\\branch\\leaf"), "x");
    write(TEXT("treetop"), "stays");
    EXPECT_EQ(remove(TEXT("TREE")), 0);
    EXPECT_EQ(GetFileAttributesW(path(TEXT("tree")).c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(read(TEXT("treetop")), "stays");
    EXPECT_NE(remove(TEXT("tree")), 0);
}

TEST_F(Shell, KnownFoldersAreThere) {
    for (const auto* id : {&FOLDERID_ProgramFiles, &FOLDERID_CommonPrograms}) {
        PWSTR known = nullptr;
        ASSERT_EQ(SHGetKnownFolderPath(*id, 0, nullptr, &known), S_OK);
        EXPECT_NE(GetFileAttributesW(known) & FILE_ATTRIBUTE_DIRECTORY, 0u);
        CoTaskMemFree(known);
    }
}

TEST_F(Shell, StripPathLeavesTheLastElement) {
    const struct {
        const WCHAR *path, *name;
    } cases[] = {
        {TEXT("C:\\one\\two.inf"), TEXT("two.inf")},
        {TEXT("C:\\one\\two\\"), TEXT("two\\")},
        {TEXT("C:\\"), TEXT("C:\\")},
        {TEXT("C:two"), TEXT("two")},
        {TEXT("two"), TEXT("two")},
        {TEXT(""), TEXT("")},
    };
    for (const auto& one : cases) {
        WCHAR text[32] = {};
        Text(one.path).copy(text, std::size(text) - 1);
        PathStripPathW(text);
        EXPECT_TRUE(Text(text) == one.name) << testing::PrintToString(Text(one.path));
    }
}

} // namespace
