// An object that can be kept in a file.
#pragma once

#include "objbase.h"

using LPCOLESTR = LPCWSTR;

#define STGM_READ 0x00000000

inline constexpr IID IID_IPersistFile = {0x0000010b, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IPersistFile : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Load(LPCOLESTR path, DWORD mode) = 0;
    virtual HRESULT STDMETHODCALLTYPE Save(LPCOLESTR path, BOOL remember) = 0;

protected:
    ~IPersistFile() = default;
};
