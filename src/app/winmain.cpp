#include "app/startup.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR command_line, int) {
    return run_setup(instance, command_line);
}
