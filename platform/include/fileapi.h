#pragma once

#include "windef.h"
