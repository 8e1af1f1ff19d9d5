// The ODBC C API as the host provides it: unixODBC's headers on POSIX,
// the system's on Windows, which need the system's base types first.
#pragma once

#if defined(_WIN32)
#include "host/win32/sql_base.h"
#endif
#include <sql.h>
#include <sqlext.h>
