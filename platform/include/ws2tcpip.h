// Option numbers of the IP level, for IPv4.
#pragma once

#include "winsock2.h"

#define IP_MULTICAST_TTL 10
