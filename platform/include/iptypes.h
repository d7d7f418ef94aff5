// What GetAdaptersInfo tells of an adapter.
#pragma once

#include "windef.h"

#include <ctime>

#define MAX_ADAPTER_DESCRIPTION_LENGTH 128
#define MAX_ADAPTER_NAME_LENGTH 256
#define MAX_ADAPTER_ADDRESS_LENGTH 8

struct IP_ADDRESS_STRING {
    char String[16]; // dotted decimal, terminated
};
using IP_MASK_STRING = IP_ADDRESS_STRING;

struct IP_ADDR_STRING {
    IP_ADDR_STRING* Next;
    IP_ADDRESS_STRING IpAddress;
    IP_MASK_STRING IpMask;
    DWORD Context;
};
using PIP_ADDR_STRING = IP_ADDR_STRING*;

struct IP_ADAPTER_INFO {
    IP_ADAPTER_INFO* Next;
    DWORD ComboIndex;
    char AdapterName[MAX_ADAPTER_NAME_LENGTH + 4];
    char Description[MAX_ADAPTER_DESCRIPTION_LENGTH + 4];
    UINT AddressLength;
    BYTE Address[MAX_ADAPTER_ADDRESS_LENGTH];
    DWORD Index;
    UINT Type;
    UINT DhcpEnabled;
    PIP_ADDR_STRING CurrentIpAddress;
    IP_ADDR_STRING IpAddressList;
    IP_ADDR_STRING GatewayList;
    IP_ADDR_STRING DhcpServer;
    BOOL HaveWins;
    IP_ADDR_STRING PrimaryWinsServer;
    IP_ADDR_STRING SecondaryWinsServer;
    std::time_t LeaseObtained;
    std::time_t LeaseExpires;
};
using PIP_ADAPTER_INFO = IP_ADAPTER_INFO*;

#define MIB_IF_TYPE_ETHERNET 6
