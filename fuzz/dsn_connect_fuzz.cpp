// Fuzz target: arbitrary bytes as the client registry "dsn.ini"; its
// entries are loaded and one of them is connected, which builds its connect
// string (the open itself fails at once: the ODBC configuration the target
// points unixODBC at knows no driver). Every connect string must stay below
// its limit and begin with "ODBC;", and a failed connect must leave the
// process-wide client as it was. The last byte of the input chooses the
// entry, whether it is connected by name or by its path, and whether the
// list is then changed and written back (it must read again with its
// entries). A rewrite costs more than the rest together, so three bits
// must ask for it: one connect per input and a rewrite for one in eight
// keep the target fast enough for tens of millions of inputs.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "host/host.h"
#include "ini/profile.h"
#include "vanto/app.h"
#include "vanto/db.h"
#include "vanto/dsn.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/ui/msgbox.h"

namespace {

namespace fs = std::filesystem;

// The program directory with "INI\dsn.ini" on volume F: (under /dev/shm
// when there is one), and an empty ODBC configuration.
struct Install {
    fs::path dir, dsn;
    Install() {
        fs::path base = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        dir = base / ("vanto_dsn_fuzz_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir / "INI");
        fs::create_directories(dir / "Daten" / "M1");
        std::ofstream(dir / "odbcinst.ini");
        std::ofstream(dir / "odbc.ini");
        ::setenv("ODBCSYSINI", dir.c_str(), 1);
        ::setenv("ODBCINSTINI", "odbcinst.ini", 1);
        ::setenv("ODBCINI", (dir / "odbc.ini").c_str(), 1);
        for (char c = 'A'; c <= 'Z'; ++c) Vnt_LfnVolUnmap(c);
        if (!Vnt_LfnVolMap('F', dir.c_str())) std::abort();
        vnt::host::setProgramFile("F:\\Fuzz");
        dsn = dir / "INI" / "dsn.ini";
    }
    ~Install() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
};

void check(bool ok) {
    if (!ok) std::abort();
}

void checkConnect(const DsnIni& reg) {
    const char* c = reg.ConnectString();
    const std::size_t n = std::strlen(c);
    check(n < VNT_DSN_CONNECT_SIZE - 1);
    check(n == 0 || std::strncmp(c, "ODBC;", 5) == 0);
    Vnt_DbMaskConnect(c);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Install inst;
    static VntScriptedPresenter quiet;  // reports and questions answer OK
    Vnt_UiSetPresenter(&quiet);
    quiet.shown.clear();
    const unsigned choice = size > 0 ? data[size - 1] : 0;
    if (size > 0) --size;
    std::ofstream(inst.dsn, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    // Only the registry changes between inputs: the other files stay cached.
    Vnt_ProfileFlush("F:\\INI\\dsn.ini");

    {
        DsnIni reg;
        if (!reg.LoadSettings() || !reg.LoadEntries()) return 0;
        const std::string dsn = Vnt_AppDSN(), dataPath = Vnt_AppDataPath();
        if (reg.Count() > 0) {
            const DsnEntry* e = reg.Entry(static_cast<int>(choice & 7u) % reg.Count());
            check(e != nullptr && e->name[0] != '\0');
            const bool byPath = (choice & 8u) != 0;
            if (!(byPath ? reg.Connect(e->name, e->path) : reg.Connect(e->name)))
                check(dsn == Vnt_AppDSN() && dataPath == Vnt_AppDataPath());
            checkConnect(reg);
        }

        // Changed and written back, the list reads again with its entries.
        if ((choice & 0x70u) == 0x70u) {
            const int before = reg.Count();
            if (before > 1) reg.MoveEntry(0, before - 1);
            if (before > 0) reg.ChangeEntry(0, "Fuzz GmbH", "F:\\Daten\\M1");
            const int added = reg.AppendEntry("Neu", "F:\\Daten\\Neu");
            if (!reg.WriteEntries()) return 0;
            DsnIni again;
            if (again.LoadSettings() && again.LoadEntries() && added >= 0) check(again.Count() >= 1);
        }
    }
    // No connect can succeed, so no client is left open; the settings and
    // the ODBC environment are kept for the next input rather than made anew.
    Vnt_AppCloseConnect();
    return 0;
}
