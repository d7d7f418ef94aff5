// COM for one thread at a time, and its memory.
#pragma once

#include "unknwn.h"

#define CLSCTX_INPROC_SERVER 0x1

#define CO_E_NOTINITIALIZED (static_cast<HRESULT>(0x800401F0u))
#define CLASS_E_NOAGGREGATION (static_cast<HRESULT>(0x80040110u))

HRESULT WINAPI CoInitialize(LPVOID reserved); // S_FALSE when the thread has it already
void WINAPI CoUninitialize();
HRESULT WINAPI CoCreateInstance(REFCLSID class_id, LPUNKNOWN outer, DWORD context, REFIID interface_id,
                                LPVOID* object);

void WINAPI CoTaskMemFree(LPVOID block); // null is accepted
