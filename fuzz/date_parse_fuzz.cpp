// Fuzz target: arbitrary bytes as a date text, read under one of a few date
// conventions (chosen by the first byte) in the locale's and in the US
// order; whatever is read must print and, when it is a real date, read back
// to the same date.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "host/host.h"
#include "vanto/date.h"
#include "vanto/locale.h"

namespace {

const char* const kFormats[] = {"dd.MM.yyyy", "d/M/yy", "yyyy-MM-dd", "MM/dd/yyyy", "yy.M.d", "dd MM yyyy"};

void check(bool ok) {
    if (!ok) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const vnt::host::LocalTime now{2026, 11, 20, 10, 30, 0, 0, 5};
    static VntIntlTable table;
    if (size == 0) return 0;
    vnt::host::setClock(&now);
    table.set("sShortDate", kFormats[data[0] % (sizeof kFormats / sizeof *kFormats)]);
    Vnt_SysSetIntlSource(&table);
    Vnt_SysInfo(VNT_SI_RELOAD);

    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    for (bool us : {false, true}) {
        VNT_DATE d{};
        const char* end = nullptr;
        if (us)
            Vnt_SysDateFromUSStr(d, text.c_str(), &end);
        else
            Vnt_SysDateFromStr(d, text.c_str(), &end);
        check(end >= text.c_str() && end <= text.c_str() + text.size());
        char buf[20];
        Vnt_SysDateToStr(d.year, d.month, d.day, &buf, false, true);
        check(std::memchr(buf, 0, sizeof buf) != nullptr);
        if (!us && d.year >= 100 && d.year <= 9999 && Vnt_DateIsValid(d, false)) {
            VNT_DATE back{};
            check(!Vnt_SysDateFromStr(back, buf, nullptr));
            check(std::memcmp(&back, &d, sizeof d) == 0);
        }
    }
    return 0;
}
