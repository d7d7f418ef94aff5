// The socket calls that the program makes. They have C++ linkage, so their symbols never meet those of the C
// library, although they are called socket, bind or sendto here too. A source that includes this header can't
// include <sys/socket.h> as well: the layer's own POSIX traffic lives in sources of its own.
#pragma once

#include "windef.h"

using SOCKET = UINT_PTR;
constexpr SOCKET INVALID_SOCKET = ~static_cast<SOCKET>(0);
#define SOCKET_ERROR (-1)

#define AF_INET 2
#define SOCK_DGRAM 2
#define IPPROTO_IP 0
#define IPPROTO_UDP 17
#define SOL_SOCKET 0xffff
#define SO_REUSEADDR 0x0004
#define SO_EXCLUSIVEADDRUSE (~SO_REUSEADDR) // -5
#define SO_RCVTIMEO 0x1006

#define INADDR_ANY 0x00000000u
#define INADDR_NONE 0xffffffffu

#define WSAEFAULT 10014
#define WSAEINVAL 10022
#define WSAENOTSOCK 10038
#define WSAEMSGSIZE 10040
#define WSAEAFNOSUPPORT 10047
#define WSAEADDRINUSE 10048
#define WSAEADDRNOTAVAIL 10049
#define WSAENETDOWN 10050
#define WSAENETUNREACH 10051
#define WSAENOBUFS 10055
#define WSAETIMEDOUT 10060
#define WSAVERNOTSUPPORTED 10092
#define WSANOTINITIALISED 10093
#define WSASYSNOTREADY 10091

#define WSADESCRIPTION_LEN 256
#define WSASYS_STATUS_LEN 128

// The order of the fields differs between the 32-bit and the 64-bit platform; this is the 64-bit one.
struct WSADATA {
    WORD wVersion;
    WORD wHighVersion;
    unsigned short iMaxSockets;
    unsigned short iMaxUdpDg;
    char* lpVendorInfo;
    char szDescription[WSADESCRIPTION_LEN + 1];
    char szSystemStatus[WSASYS_STATUS_LEN + 1];
};
using LPWSADATA = WSADATA*;

struct in_addr {
    union {
        struct {
            UCHAR s_b1, s_b2, s_b3, s_b4;
        } S_un_b;
        struct {
            USHORT s_w1, s_w2;
        } S_un_w;
        ULONG S_addr;
    } S_un;
};
#define s_addr S_un.S_addr

struct sockaddr {
    USHORT sa_family;
    char sa_data[14];
};

struct sockaddr_in {
    short sin_family;
    USHORT sin_port; // network order
    in_addr sin_addr;
    char sin_zero[8];
};

int WSAStartup(WORD version, LPWSADATA data);
int WSACleanup();
int WSAGetLastError();
SOCKET socket(int family, int type, int protocol);
int closesocket(SOCKET handle);
int setsockopt(SOCKET handle, int level, int option, const char* value, int length);
int bind(SOCKET handle, const sockaddr* name, int length);
int getsockname(SOCKET handle, sockaddr* name, int* length);
int sendto(SOCKET handle, const char* data, int length, int flags, const sockaddr* to, int to_length);
int recvfrom(SOCKET handle, char* data, int length, int flags, sockaddr* from, int* from_length);
ULONG inet_addr(const char* text);
USHORT htons(USHORT value);
USHORT ntohs(USHORT value);
