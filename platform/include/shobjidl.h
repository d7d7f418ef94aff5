// Shell links.
#pragma once

#include "fileapi.h"
#include "objidl.h"

#define SLGP_RAWPATH 0x4

inline constexpr CLSID CLSID_ShellLink = {0x00021401, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IShellLinkW = {0x000214F9, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Sizes are in characters with the terminator. The path that is set has to be absolute; it is brought into
// its plain form, doubled backslashes folded.
struct IShellLinkW : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetPath(LPWSTR path, int size, WIN32_FIND_DATAW* entry,
                                              DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDescription(LPWSTR text, int size) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDescription(LPCWSTR text) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetWorkingDirectory(LPWSTR folder, int size) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetWorkingDirectory(LPCWSTR folder) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetPath(LPCWSTR path) = 0;

protected:
    ~IShellLinkW() = default;
};
