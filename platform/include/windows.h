// The one header that sources name; it brings the base areas as the platform's own does.
#pragma once

#include "windef.h"
#include "winerror.h"

#include "winbase.h"
#include "wingdi.h"
#include "winnls.h"
#include "winreg.h"
#include "winsvc.h"
#include "winuser.h"
