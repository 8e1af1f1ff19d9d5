// The system's base types, which the Windows ODBC headers take for given.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
// The library's own tagRECT (vanto/ini.h) has the system's layout but is
// a type of its own: the system's is renamed out of its way.
#define tagRECT vnt_SystemRect
#include <windows.h>
#undef tagRECT
