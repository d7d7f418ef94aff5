// The thread's language, for tests: the program asks for SetThreadUILanguage at run time, and Wine answers
// with one that does nothing. While TRK_THREAD_LANGUAGE is 1 the program's GetProcAddress is replaced by one
// that knows a better answer for this one name.
#include <windows.h>

#include <cstring>

namespace {

// Stores CurrentLocale, a field of the thread's environment block, where the processor's segment begins.
void set_current_locale(LANGID language) {
#ifdef _WIN64
    __writegsdword(0x108, language);
#else
    __writefsdword(0xC4, language);
#endif
}

// What a program has its texts in, as near to the wanted language as there is.
struct Choice {
    LANGID wanted = 0;
    LANGID found = 0;
    int nearness = 0; // 1 another country's form, 2 the neutral form, 3 the very language
};

BOOL CALLBACK look_at_language(HMODULE, LPCWSTR, LPCWSTR, WORD language, LONG_PTR place) {
    Choice& choice = *reinterpret_cast<Choice*>(place);
    if (PRIMARYLANGID(language) != PRIMARYLANGID(choice.wanted))
        return TRUE;
    const int nearness = language == choice.wanted ? 3 : SUBLANGID(language) == SUBLANG_NEUTRAL ? 2 : 1;
    if (nearness > choice.nearness) {
        choice.found = language;
        choice.nearness = nearness;
    }
    return TRUE;
}

BOOL CALLBACK look_at_texts(HMODULE module, LPCWSTR type, LPWSTR name, LONG_PTR place) {
    return EnumResourceLanguagesW(module, type, name, look_at_language, place);
}

// Wine looks resources up by the thread's locale, without falling back from a country's form to the neutral
// one, and SetThreadLocale turns a neutral language into a country's. So the language that the program has is
// found here, and stored where SetThreadLocale stores it.
LANGID WINAPI set_thread_language(LANGID language) {
    Choice choice{language};
    EnumResourceNamesW(nullptr, RT_STRING, look_at_texts, reinterpret_cast<LONG_PTR>(&choice));
    set_current_locale(choice.nearness == 0 ? language : choice.found);
    return language;
}

FARPROC WINAPI find_function(HMODULE library, LPCSTR name) {
    const bool by_number = reinterpret_cast<ULONG_PTR>(name) < 0x10000;
    if (!by_number && std::strcmp(name, "SetThreadUILanguage") == 0)
        return reinterpret_cast<FARPROC>(set_thread_language);
    return GetProcAddress(library, name);
}

void replace_slot(IMAGE_THUNK_DATA& slot) {
    const auto replacement = reinterpret_cast<ULONG_PTR>(find_function);
    DWORD protection = 0;
    if (!VirtualProtect(&slot, sizeof slot, PAGE_READWRITE, &protection))
        return;
    slot.u1.Function = replacement;
    VirtualProtect(&slot, sizeof slot, protection, &protection);
}

// The slots of the program's import table that lead to GetProcAddress.
void replace_import(BYTE* program) {
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(program);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(program + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.Size == 0)
        return;
    const auto original =
        reinterpret_cast<ULONG_PTR>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetProcAddress"));
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(program + imports.VirtualAddress);
    for (; library->Name != 0; ++library) {
        auto* slot = reinterpret_cast<IMAGE_THUNK_DATA*>(program + library->FirstThunk);
        for (; slot->u1.Function != 0; ++slot) {
            if (slot->u1.Function == original)
                replace_slot(*slot);
        }
    }
}

bool wanted() {
    wchar_t value[2] = {};
    return GetEnvironmentVariableW(L"TRK_THREAD_LANGUAGE", value, 2) == 1 && value[0] == L'1';
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH && wanted())
        replace_import(reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr)));
    return TRUE;
}
