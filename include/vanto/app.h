// vanto/app.h - the process-wide paths of the current client.
//
// Three path buffers of 260 characters: the data source name, the data path
// and the DD path of the client the application works with. The connection
// functions set them when a client's database is opened and clear them when
// it is closed. One thread only.
#pragma once

#include "vanto/base.h"

/// Copies at most 259 characters of `value` (null: "") into the matching
/// buffer and terminates it; a longer value is cut without a report. Always
/// true.   Vnt_AppSetDataPath("C:\Daten\M1") => Vnt_AppDataPath() "C:\Daten\M1"
VANTO_API bool Vnt_AppSetDSN(const char* value);
VANTO_API bool Vnt_AppSetDataPath(const char* value);
VANTO_API bool Vnt_AppSetDDPath(const char* value);

/// The buffers themselves: never null, empty until set.
VANTO_API const char* Vnt_AppDSN();
VANTO_API const char* Vnt_AppDataPath();
VANTO_API const char* Vnt_AppDDPath();
