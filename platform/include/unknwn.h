// What every COM object answers to.
#pragma once

#include "windef.h"
#include "winerror.h"

inline constexpr IID IID_IUnknown = {0x00000000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interface_id, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0; // the references left

protected:
    ~IUnknown() = default;
};
using LPUNKNOWN = IUnknown*;
