#include "harness/folder_fixture.h"

#include <shlobj.h>

#include <stdexcept>

namespace {

class ShellLinks : public FolderTest {
protected:
    // Both throw when there is none: the test can't go on then.
    static IShellLinkW* make() {
        void* object = nullptr;
        if (FAILED(
                CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &object)) ||
            object == nullptr)
            throw std::runtime_error("no shell link");
        return static_cast<IShellLinkW*>(object);
    }

    static IPersistFile* file_of(IShellLinkW* link) {
        void* object = nullptr;
        if (FAILED(link->QueryInterface(IID_IPersistFile, &object)) || object == nullptr)
            throw std::runtime_error("the shell link has no file");
        return static_cast<IPersistFile*>(object);
    }

    static HRESULT save(const Text& link_path, const WCHAR* target, const WCHAR* description) {
        IShellLinkW* link = make();
        link->SetPath(target);
        link->SetWorkingDirectory(TEXT("C:\\Program Files\\Maker\\"));
        link->SetDescription(description);
        IPersistFile* file = file_of(link);
        const HRESULT result = file->Save(link_path.c_str(), TRUE);
        EXPECT_EQ(file->Release(), 1u);
        EXPECT_EQ(link->Release(), 0u);
        return result;
    }
};

TEST_F(ShellLinks, NeedComOnTheThread) {
    void* object = &object;
    EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &object),
              CO_E_NOTINITIALIZED);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CoInitialize(nullptr), S_OK);
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
    EXPECT_EQ(CoCreateInstance(IID_IPersistFile, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &object),
              REGDB_E_CLASSNOTREG);
    CoUninitialize();
    IShellLinkW* link = make();
    EXPECT_EQ(link->QueryInterface(CLSID_ShellLink, &object), E_NOINTERFACE);
    link->Release();
    CoUninitialize();
}

TEST_F(ShellLinks, KeepTargetFolderAndDescription) {
    CoInitialize(nullptr);
    const Text link_path = path(TEXT("Label 100 Uninstall.lnk"));
    EXPECT_EQ(save(link_path, TEXT("C:\\Windows\\other.exe"), TEXT("an earlier and longer description")),
              S_OK);
    EXPECT_EQ(save(link_path, TEXT("C:\\Program Files\\Maker\\\\remove.exe"), TEXT("Label 100 Uninstall")),
              S_OK);
    IShellLinkW* link = make();
    IPersistFile* file = file_of(link);
    EXPECT_EQ(file->Load(link_path.c_str(), STGM_READ), S_OK);
    WCHAR text[MAX_PATH] = {};
    EXPECT_EQ(link->GetPath(text, MAX_PATH, nullptr, SLGP_RAWPATH), S_OK);
    EXPECT_TRUE(Text(text) == TEXT("C:\\Program Files\\Maker\\remove.exe"));
    EXPECT_EQ(link->GetWorkingDirectory(text, MAX_PATH), S_OK);
    EXPECT_TRUE(Text(text) == TEXT("C:\\Program Files\\Maker\\"));
    EXPECT_EQ(link->GetDescription(text, MAX_PATH), S_OK);
    EXPECT_TRUE(Text(text) == TEXT("Label 100 Uninstall"));
    file->Release();
    link->Release();
    EXPECT_LT(save(path(TEXT("gone\\x.lnk")), TEXT("C:\\Windows\\other.exe"), TEXT("x")), 0);
    EXPECT_LT(save(folder, TEXT("C:\\Windows\\other.exe"), TEXT("x")), 0);
    CoUninitialize();
}

} // namespace
