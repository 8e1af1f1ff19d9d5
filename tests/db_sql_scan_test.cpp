// The update table found in a statement's text, without a driver.
#include <gtest/gtest.h>

#include <string>

#include "db/sql_scan.h"

namespace {

TEST(DbSqlScan, UpdateTable) {
    struct Row { const char* sql; const char* table; const char* run; };  // run null: as written
    const Row rows[] = {
        // a bare name is a table read whole
        {"kunden", "kunden", "SELECT * FROM kunden"},
        {" \tkunden\r\n", "kunden", "SELECT * FROM kunden"},
        {"dbo.kunden", "dbo.kunden", "SELECT * FROM dbo.kunden"},
        {"[k]", "[k]", "SELECT * FROM [k]"},
        {"kunden x", "", nullptr},
        // a plain query names its single table
        {"SELECT a FROM t", "t", nullptr},
        {"SELECT * FROM t", "t", nullptr},
        {"select a, b from t where x = 'union from y'", "t", nullptr},
        {"SELECT * FROM t ORDER BY a", "t", nullptr},
        {"SELECT * FROM t LIMIT 5", "t", nullptr},
        {"SELECT * FROM \"s\".\"t\" WHERE a = 1", "\"s\".\"t\"", nullptr},
        {"SELECT * FROM t WHERE a IN (SELECT b FROM u UNION SELECT c FROM v)", "t", nullptr},
        // everything else has none
        {"SELECT DISTINCT a FROM t", "", nullptr},
        {"SELECT * FROM a, b", "", nullptr},
        {"SELECT * FROM a JOIN b ON a.x = b.x", "", nullptr},
        {"SELECT * FROM t WHERE a = 1 UNION SELECT * FROM u", "", nullptr},
        {"SELECT a, COUNT(*) FROM t GROUP BY a", "", nullptr},
        {"SELECT * FROM t WHERE a = 1 GROUP BY a HAVING COUNT(*) > 1", "", nullptr},
        {"SELECT * FROM (SELECT * FROM t) x", "", nullptr},
        {"SELECT a, b FROM", "", nullptr},
        {"SELECT a FROM", "", nullptr},
        {"SELECT * FROM", "", nullptr},
        {"UPDATE t SET a = 1", "", nullptr},
        {"", "", nullptr},
    };
    for (const Row& r : rows) {
        std::string run = "old";
        EXPECT_EQ(vnt::db::updateTable(r.sql, run), r.table) << r.sql;
        EXPECT_EQ(run, r.run ? r.run : r.sql) << "a query runs as written: " << r.sql;
    }
}

TEST(DbSqlScan, Unquote) {
    struct Row { const char* in; const char* out; };
    const Row rows[] = {{"\"t\"", "t"}, {"`t`", "t"}, {"[t]", "t"}, {"t", "t"}, {"\"", "\""}, {"", ""}};
    for (const Row& r : rows) EXPECT_EQ(vnt::db::unquote(r.in), r.out) << r.in;
}

}  // namespace
