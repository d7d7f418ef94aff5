// Where the system enters the program. The compiler's own start-up weighs 10,000 bytes, most of it for an
// environment, streams, signals, thread-local data and destructors, of which the program uses none.
#include <windows.h>

extern "C" {
// The constructors' addresses between two words that are none; the linker makes the list, and it is run from
// its end.
extern void (*const __CTOR_LIST__[])();

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR command_line, int show);
}

namespace {

// What follows the program's own name, which may stand in quotes, and the blanks behind it.
char* arguments_of(char* line) {
    bool quoted = false;
    while (*line != 0 && (quoted || static_cast<unsigned char>(*line) > ' ')) {
        if (*line == '"')
            quoted = !quoted;
        line = CharNextA(line);
    }
    while (*line != 0 && static_cast<unsigned char>(*line) <= ' ')
        ++line;
    return line;
}

} // namespace

// The name by which the linker knows a window program's start. The stack protector's word changes in here.
extern "C" __attribute__((no_stack_protector)) void WinMainCRTStartup() {
    size_t constructors = 0;
    while (__CTOR_LIST__[constructors + 1] != nullptr)
        ++constructors;
    for (; constructors != 0; --constructors)
        __CTOR_LIST__[constructors]();
    ExitProcess(static_cast<UINT>(
        WinMain(GetModuleHandleW(nullptr), nullptr, arguments_of(GetCommandLineA()), SW_SHOWDEFAULT)));
}
