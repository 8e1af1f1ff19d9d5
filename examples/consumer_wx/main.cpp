// Starts the window toolkit through the library's application class, says
// whether its ports are installed, and ends.
#include <cstdio>

#include <wx/app.h>

#include "vanto/wx/app.h"
#include "vanto/wx/res.h"

class ConsumerApp : public VntWxApp {
public:
    bool OnInit() override {
        if (!VntWxApp::OnInit()) return false;
        std::printf("toolkit %s, confirmation dialog %s\n", Vnt_WxActive() ? "started" : "not started",
                    Vnt_WxResExists(30063) ? "built in" : "missing");
        return true;
    }
    int OnRun() override { return 0; }
};

wxIMPLEMENT_APP(ConsumerApp);
