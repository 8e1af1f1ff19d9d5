// The totals of the statistics module: orders summed per month and per
// week of the year, without a database or a window.
#pragma once

#include <vector>

#include <vanto/date.h>

namespace desk {

/// One order as the statistics read it.
struct OrderRow {
    VNT_DATE date;      ///< the order date (full year)
    double net;         ///< the net amount
    double vatPercent;  ///< the VAT rate of its article
};

/// The totals of one month or week.
struct PeriodTotal {
    int year;      ///< calendar year; for weeks the year the week belongs to
    int period;    ///< month 1-12, or the week of the year
    long orders;   ///< number of orders
    double net;    ///< sum of the net amounts, rounded as money
    double gross;  ///< sum of the gross amounts (each order's VAT rounded on its own)
    bool operator==(const PeriodTotal&) const = default;
};

struct OrderTotals {
    std::vector<PeriodTotal> months;  ///< by year and month
    std::vector<PeriodTotal> weeks;   ///< by week year and week
    long skipped = 0;                 ///< rows without a valid date
};

/// Sums the orders per calendar month and per week of the year under the
/// library's week settings (ISO 8601 unless the application file says
/// otherwise). A week that begins in one year and ends in the next belongs
/// to the year that holds its fourth day, as WeekOfYear counts it: a week 52
/// or 53 in January to the year before, a week 1 in December to the next.
/// Each order's gross is its net plus its VAT, rounded as money
/// (Vnt_FloatBetrag). Rows whose date is not a valid date are counted in
/// `skipped` and left out.
///   31.12.2020 (Thursday)  => month 12/2020, week 53/2020
///   03.01.2021 (Sunday)    => month 1/2021,  week 53/2020
///   30.12.2024 (Monday)    => month 12/2024, week 1/2025
///   net 10.00 at 19 %      => gross 11.90
OrderTotals TotalOrders(const std::vector<OrderRow>& rows);

}  // namespace desk
