// A library as somebody might lay it beside the setup program to be loaded by an administrator. It leaves a
// file with its name on drive C when it is loaded.
#include <windows.h>

#include <iterator>

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID) {
    if (reason != DLL_PROCESS_ATTACH)
        return TRUE;
    wchar_t path[MAX_PATH] = L"C:\\";
    constexpr DWORD root_length = 3;
    wchar_t* const name = path + root_length;
    const DWORD length = GetModuleFileNameW(library, name, static_cast<DWORD>(std::size(path)) - root_length);
    for (DWORD place = 0; place < length; ++place)
        if (name[place] == '\\' || name[place] == ':')
            name[place] = '_';
    const HANDLE mark =
        CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (mark != INVALID_HANDLE_VALUE)
        CloseHandle(mark);
    return FALSE;
}
