// A program without protection, beside which a planted library is loaded: the proof that planting works at
// all.
#include <winsock2.h>

#include <windows.h>

#include <iphlpapi.h>

int main() {
    ULONG size = 0;
    return static_cast<int>(GetAdaptersInfo(nullptr, &size));
}
