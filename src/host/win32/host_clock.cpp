// The local clock, with a fixed moment tests can set; ticks and sleeping.
#include "host/win32/host_call.h"

#include <optional>

namespace vnt::host {

namespace {
std::optional<LocalTime>& fixedClock() {
    static std::optional<LocalTime> fixed;
    return fixed;
}
}  // namespace

LocalTime localNow() {
    if (const auto& fixed = fixedClock()) return *fixed;
    SYSTEMTIME l{};
    ::GetLocalTime(&l);
    LocalTime t;
    t.year = l.wYear;
    t.month = l.wMonth;
    t.day = l.wDay;
    t.hour = l.wHour;
    t.minute = l.wMinute;
    t.second = l.wSecond;
    t.millisecond = l.wMilliseconds;
    t.weekday = l.wDayOfWeek == 0 ? 7 : l.wDayOfWeek;
    return t;
}

void setClock(const LocalTime* t) {
    if (t)
        fixedClock() = *t;
    else
        fixedClock().reset();
}

std::int64_t tickMs() { return static_cast<std::int64_t>(::GetTickCount64()); }

void sleepMs(long ms) {
    if (ms > 0) ::Sleep(static_cast<DWORD>(ms));
}

}  // namespace vnt::host
