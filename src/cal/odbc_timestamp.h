// The database time stamp (ODBC's SQL_TIMESTAMP_STRUCT). The public header
// only declares it; with the ODBC headers at hand their definition is used,
// else one of the same layout.
#pragma once

#if __has_include(<sqltypes.h>)
#include "host/sql.h"
#else
#include <cstdint>

struct tagTIMESTAMP_STRUCT {
    std::int16_t year;
    std::uint16_t month;
    std::uint16_t day;
    std::uint16_t hour;
    std::uint16_t minute;
    std::uint16_t second;
    std::uint32_t fraction;  // nanoseconds
};
#endif
