// The file dialogs and the help on wx: library paths in and out of a real
// wxFileDialog (driven once its loop runs), the browser's URL.
#include "wx_support.h"

#include <filesystem>
#include <fstream>
#include <vector>

#include <wx/filedlg.h>
#include <wx/modalhook.h>
#include <wx/msgdlg.h>

#include "shell_ports.h"

namespace fs = std::filesystem;

namespace {

// What a file dialog showed; its answer is the next pick: a name in the
// folder Daten (UTF-8), or "" for Cancel. Platform boxes answer No.
struct Shown { std::string dir, name, wildcard, title; bool save, overwrite; };

class Driver : public wxModalDialogHook {
public:
    Driver() { Register(); }
    ~Driver() override { Unregister(); }
    fs::path folder;
    std::vector<std::string> picks, boxes;
    std::vector<Shown> shown;

protected:
    int Enter(wxDialog* d) override {
        if (auto* m = dynamic_cast<wxMessageDialog*>(d)) {
            boxes.push_back(std::string(m->GetMessage().utf8_str()));
            return wxID_NO;
        }
        auto* f = dynamic_cast<wxFileDialog*>(d);
        if (!f || f == open_) return wxID_NONE;  // the GTK dialog comes here twice
        open_ = f;
        shown.push_back({std::string(f->GetDirectory().utf8_str()), std::string(f->GetFilename().utf8_str()),
                         std::string(f->GetWildcard().utf8_str()), std::string(f->GetMessage().utf8_str()),
                         f->HasFdFlag(wxFD_SAVE), f->HasFdFlag(wxFD_OVERWRITE_PROMPT)});
        const std::string pick = picks.empty() ? "" : picks.front();
        if (!picks.empty()) picks.erase(picks.begin());
        const wxString path = wxString::FromUTF8((folder / pick).string());
        wxTheApp->CallAfter([f, pick, path] {
            if (!pick.empty()) {
                f->SetPath(path);  // the chooser takes it while it serves events
                vnt::wxtest::pumpUntil([f] { return !f->GetPath().empty(); }, 1000);
            }
            f->EndModal(pick.empty() ? wxID_CANCEL : wxID_OK);
        });
        return wxID_NONE;
    }
    void Exit(wxDialog* d) override {
        if (d == open_) open_ = nullptr;
    }

private:
    wxDialog* open_ = nullptr;
};

class ShellPorts : public vnt::wxtest::WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        root_ = fs::temp_directory_path() / ("vanto_wx_shell_" + std::to_string(::getpid()));
        fs::create_directories(root_ / "Daten");
        for (const char* f : {"alt.txt", "\xC3\x9C" "bersicht.txt", "\xE6\x97\xA5.txt", "Fibu.html"})
            std::ofstream(root_ / "Daten" / f) << "x";
        ASSERT_TRUE(Vnt_LfnVolMap('T', root_.c_str()));
        drive_.folder = root_ / "Daten";
    }
    void TearDown() override {
        Vnt_LfnVolUnmap('T');
        fs::remove_all(root_);
        WxTest::TearDown();
    }
    fs::path root_;
    Driver drive_;
};

TEST_F(ShellPorts, FileDialogsTakeAndGiveLibraryPaths) {
    ASSERT_NE(dynamic_cast<vnt::wx::WxFileDialogPort*>(&Vnt_UiFileDialog()), nullptr);
    const std::string daten = (root_ / "Daten").string();
    struct Case {
        bool save; const char* file; const char* ext; const char* filter; std::vector<std::string> picks;
        bool ok; const char* fileAfter; std::size_t dialogs, boxes; const char* wildcard;
    };
    const Case cases[] = {
        // Windows-1252 out of a UTF-8 host name; the type list in wx form.
        {false, "T:\\Daten\\alt.txt", "txt", "Texte|*.txt|Alle Dateien|*.*", {"\xC3\x9C" "bersicht.txt"},
         true, "T:\\Daten\\\xDC" "bersicht.txt", 1, 0, "Texte|*.txt|Alle Dateien|*"},
        // The default extension onto a saved name without one.
        {true, "T:\\Daten\\neu", "txt", nullptr, {"neu"}, true, "T:\\Daten\\neu.txt", 1, 0, "*.txt|*.txt"},
        // Extended onto an existing file: asked again (No), then cancelled.
        {true, "T:\\Daten\\neu", "txt", nullptr, {"alt", ""}, false, "T:\\Daten\\neu", 2, 1, "*.txt|*.txt"},
        // A name without a Windows-1252 form is refused, the dialog comes back.
        {false, "", nullptr, nullptr, {"\xE6\x97\xA5.txt", "alt.txt"}, true, "T:\\Daten\\alt.txt", 2, 1, "*.*|*"},
        // An initial name the dialog refuses: shown once without it; the name stays.
        {false, "T:\\Daten\\a|b.txt", nullptr, nullptr, {""}, false, "T:\\Daten\\a|b.txt", 1, 0, "*.*|*"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fileAfter);
        drive_.picks = c.picks;
        drive_.shown.clear();
        drive_.boxes.clear();
        char file[VNT_MAX_PATH], dir[VNT_MAX_PATH] = "T:\\Daten";
        Vnt_StrCopy(file, c.file);
        const bool ok = c.save ? Vnt_LfnDlgSave(file, dir, c.ext, "Beleg", c.filter)
                               : Vnt_LfnDlgOpen(file, dir, c.ext, nullptr, c.filter);
        EXPECT_EQ(ok, c.ok);
        EXPECT_STREQ(file, c.fileAfter);
        EXPECT_STREQ(dir, "T:\\Daten");
        ASSERT_EQ(drive_.shown.size(), c.dialogs);
        EXPECT_EQ(drive_.boxes.size(), c.boxes);
        const Shown& s = drive_.shown[0];
        EXPECT_EQ(s.dir, daten);
        EXPECT_EQ(s.wildcard, c.wildcard) << "the type list in wx form; every file is the host's \"*\"";
        EXPECT_EQ(s.save, c.save);
        EXPECT_EQ(s.overwrite, c.save);
        EXPECT_EQ(s.title, c.save ? "Beleg" : "\xC3\x96" "ffnen");
        EXPECT_EQ(s.name, c.file[0] && !std::strchr(c.file, '|') ? std::string(c.file).substr(9) : "");
    }
}

TEST_F(ShellPorts, HelpOpensThePageBesideTheProgramAtItsAnchor) {
    auto* help = dynamic_cast<vnt::wx::WxHelpPort*>(&Vnt_UiHelp());
    ASSERT_NE(help, nullptr);
    std::vector<std::string> urls;
    bool started = true;
    help->launch = [&](const wxString& url) { urls.push_back(std::string(url.utf8_str())); return started; };
    const std::string page = "file://" + (root_ / "Daten" / "Fibu.html").string();
    struct Case { const char* file; VntHelpCommand cmd; long context; const char* key; bool ok; std::string url; };
    const Case cases[] = {
        {"T:\\Daten\\Fibu.html", VntHelpCommand::Context, 4711, "", true, page + "#4711"},
        {"T:\\Daten\\FIBU.HTML", VntHelpCommand::Contents, 0, "", true, page},
        {"T:\\Daten\\Fibu.html", VntHelpCommand::Key, 0, "Konten \xFC" "ben", true, page + "#Konten%20%C3%BCben"},
        {"T:\\Daten\\Fibu.html", VntHelpCommand::PartialKey, 0, "Kon", true, page},
        {"T:\\Daten\\Lohn.html", VntHelpCommand::Contents, 0, "", false, ""},
    };
    for (const Case& c : cases) {
        urls.clear();
        EXPECT_EQ(Vnt_UiHelp().Open({c.file, c.cmd, c.context, c.key}), c.ok) << c.file;
        EXPECT_EQ(urls, c.ok ? std::vector<std::string>{c.url} : std::vector<std::string>{}) << c.file;
    }
    started = false;  // no browser
    EXPECT_FALSE(Vnt_UiHelp().Open({"T:\\Daten\\Fibu.html", VntHelpCommand::Contents, 0, ""}));
    help->launch = nullptr;
}

}  // namespace
