// The connection tests against a PostgreSQL server of their own: started on
// loopback on a free port when PostgreSQL is installed (initdb into a
// temporary directory, as the user postgres when the tests run as root),
// reached through the driver "PostgreSQL Unicode" with a password, stopped
// when the test program ends. Two databases stand for the two clients; the
// data directory of a client holds no database here, so the path-spec key
// is one the driver ignores and "DsnIsFile" is off.
#include "conn_fixture.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>

namespace fs = std::filesystem;
using vnt::test::Conn;
using Ready = vnt::test::ConnBackend::Ready;

namespace {

int run(const std::string& command) { return std::system(command.c_str()); }
std::string sq(const std::string& s) { return "'" + s + "'"; }

// A port nobody listens on now: the kernel's choice for port 0.
int freePort() {
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof a;
    const bool ok = s >= 0 && ::bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0 &&
                    ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &len) == 0;
    if (s >= 0) ::close(s);
    return ok ? ntohs(a.sin_port) : 0;
}

// Started on first use: Absent when PostgreSQL or its ODBC driver is not
// installed, Broken when it is but the server cannot be made ready (both
// with the reason); stopped when the test program ends.
class PgServer : public ::testing::Environment {
public:
    Ready ready(std::string& why) {
        if (!tried_) state_ = start();
        tried_ = true;
        why = why_;
        return state_;
    }
    void TearDown() override {
        if (!started_) return;
        started_ = false;
        run(as() + sq(bin_ + "/pg_ctl") + " -D " + sq(dir_ + "/data") + " -m immediate -w stop >/dev/null 2>&1");
        std::error_code ec;
        if (state_ == Ready::Yes) fs::remove_all(dir_, ec);  // else kept for its logs
    }
    int port() const { return port_; }

private:
    // The server refuses to run as root.
    static std::string as() { return ::geteuid() == 0 ? "runuser -u postgres -- " : ""; }
    Ready fail(Ready r, const std::string& why) {
        why_ = why;
        return r;
    }
    Ready start() {
        std::error_code ec;
        for (const auto& e : fs::directory_iterator("/usr/lib/postgresql", ec))
            if (fs::exists(e.path() / "bin/initdb")) bin_ = (e.path() / "bin").string();
        if (bin_.empty()) return fail(Ready::Absent, "PostgreSQL is not installed (no /usr/lib/postgresql/*/bin/initdb)");
        if (run("odbcinst -q -d -n 'PostgreSQL Unicode' >/dev/null 2>&1") != 0)
            return fail(Ready::Absent, "the ODBC driver \"PostgreSQL Unicode\" is not installed");
        if (!(port_ = freePort())) return fail(Ready::Broken, "no free port on 127.0.0.1");
        dir_ = (fs::temp_directory_path() / ("vanto_pg_" + std::to_string(::getpid()))).string();
        fs::remove_all(dir_, ec);
        // The server writes its own log; set-up output goes beside it.
        const std::string log = " >>" + sq(dir_ + "/setup.log") + " 2>&1";
        const std::string mk = ::geteuid() == 0 ? "install -d -o postgres -g postgres -m 700 " : "install -d -m 700 ";
        if (run(mk + sq(dir_)) != 0) return fail(Ready::Broken, "cannot make " + dir_);
        if (run(as() + sq(bin_ + "/initdb") + " -N -D " + sq(dir_ + "/data") +
                " -U postgres -E UTF8 --locale=C.UTF-8 --auth-local=trust --auth-host=scram-sha-256" + log) != 0)
            return fail(Ready::Broken, "initdb failed, see " + dir_ + "/setup.log");
        started_ = true;
        if (run(as() + sq(bin_ + "/pg_ctl") + " -D " + sq(dir_ + "/data") + " -l " + sq(dir_ + "/server.log") +
                " -w -o " + sq("-c listen_addresses=127.0.0.1 -p " + std::to_string(port_) + " -k " + dir_ +
                               " -c fsync=off -c full_page_writes=off") + " start >/dev/null 2>&1") != 0)
            return fail(Ready::Broken, "the server did not start, see " + dir_ + "/server.log");
        if (run(as() + sq(bin_ + "/psql") + " -q -X -v ON_ERROR_STOP=1 -h " + sq(dir_) + " -p " +
                std::to_string(port_) + " -U postgres -d postgres" +
                " -c \"CREATE ROLE vanto LOGIN PASSWORD 'geheim'\" -c 'CREATE DATABASE vanto_m1 OWNER vanto'"
                " -c 'CREATE DATABASE vanto_m2 OWNER vanto'" + log) != 0)
            return fail(Ready::Broken, "psql could not create the role and databases, see " + dir_ + "/setup.log");
        // The driver as installed, with its own log (files in /tmp that
        // nobody removes) turned off; the driver reads this when it loads.
        if (run("odbcinst -q -d -n 'PostgreSQL Unicode' | grep -v -i -e '^CommLog' -e '^Debug' >" +
                sq(dir_ + "/odbcinst.ini") + " && printf 'CommLog=0\\nDebug=0\\n' >>" + sq(dir_ + "/odbcinst.ini")) != 0)
            return fail(Ready::Broken, "cannot write " + dir_ + "/odbcinst.ini");
        ::setenv("ODBCSYSINI", dir_.c_str(), 1);
        return Ready::Yes;
    }

    bool tried_ = false, started_ = false;
    Ready state_ = Ready::Absent;
    std::string bin_, dir_, why_;
    int port_ = 0;
};
PgServer* const pg = static_cast<PgServer*>(::testing::AddGlobalTestEnvironment(new PgServer));

const vnt::test::ConnBackend kPostgres{
    "Postgres",
    {"DsnPathSpec=DtaPth", "DsnIsFile=0"},
    "PostgreSQL Unicode",
    [](std::string& why) { return pg->ready(why); },
    [](int n) {
        return std::vector<std::string>{"Servername=127.0.0.1", "Port=" + std::to_string(pg->port()),
                                        "Database=vanto_m" + std::to_string(n), "UID=vanto", "PWD=geheim"};
    },
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Postgres, Conn, ::testing::Values(&kPostgres), vnt::test::byName);
