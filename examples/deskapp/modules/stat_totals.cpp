#include "stat_totals.h"

#include <map>
#include <utility>

#include <vanto/amount.h>

namespace desk {

OrderTotals TotalOrders(const std::vector<OrderRow>& rows) {
    OrderTotals out;
    std::map<std::pair<int, int>, PeriodTotal> months, weeks;
    auto add = [](PeriodTotal& t, int year, int period, double net, double gross) {
        t.year = year;
        t.period = period;
        ++t.orders;
        t.net += net;
        t.gross += gross;
    };
    for (const OrderRow& r : rows) {
        VntDate d;
        d.Set(r.date);
        if (!d.DateIsOk(false)) {
            ++out.skipped;
            continue;
        }
        double net = r.net;
        Vnt_MoneyRound(&net);
        double gross = net;
        Vnt_FloatBetrag(&gross, r.vatPercent, false, true);
        const int year = r.date.year, month = r.date.month;
        const int week = d.WeekOfYear();
        int weekYear = year;
        if (week >= 52 && month == 1) --weekYear;
        if (week == 1 && month == 12) ++weekYear;
        add(months[{year, month}], year, month, net, gross);
        add(weeks[{weekYear, week}], weekYear, week, net, gross);
    }
    for (auto* m : {&months, &weeks}) {
        std::vector<PeriodTotal>& list = m == &months ? out.months : out.weeks;
        for (auto& [key, t] : *m) {
            Vnt_MoneyRound(&t.net);  // sums of rounded amounts: only the binary noise goes
            Vnt_MoneyRound(&t.gross);
            list.push_back(t);
        }
    }
    return out;
}

}  // namespace desk
