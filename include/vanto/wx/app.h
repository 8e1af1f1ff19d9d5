// vanto/wx/app.h - starting the window toolkit (library vantortl_wx).
//
// The core library (vantortl) shows nothing by itself: it talks to ports
// (vanto/ui/*.h) whose headless implementations serve tools and tests. An
// application with windows makes one call from its wxApp::OnInit, or derives
// its application class from VntWxApp, which makes it:
//
//   class MyApp : public VntWxApp {
//       bool OnInit() override {
//           if (!VntWxApp::OnInit()) return false;  // wx ports installed
//           Vnt_AppMainInit(nullptr);
//           ...
//       }
//   };
//   wxIMPLEMENT_APP(MyApp);
//
// After Vnt_WxInit every port of vanto/ui/ has its wx implementation: the
// window system, the message box presenter (dialog 30061, and the platform's
// standard box for plain boxes), the progress view (dialogs 30062 and
// 30063), the file dialogs, the help, and the client selection. Without
// it, or without a display, the headless ports stay.
#pragma once

#include <wx/app.h>

#include "vanto/base.h"

/// Installs the wx implementation of every port and the library's own
/// dialog resources. Call on the user-interface thread once wx runs (from
/// OnInit). Calling it again does nothing and answers true.
///
///   wx running, display open     => true, wx ports in use
///   no wxApp / no display        => false, the ports in use stay
VANTO_API bool Vnt_WxInit();

/// Gives back the ports that were in use before Vnt_WxInit and closes the
/// library's windows that are still open (progress windows). Call before
/// wx ends (OnExit). Without a Vnt_WxInit it does nothing.
VANTO_API void Vnt_WxTerm();

/// True between Vnt_WxInit and Vnt_WxTerm.
VANTO_API bool Vnt_WxActive();

/// The library's application class: OnInit runs wxApp's own start (command
/// line) and Vnt_WxInit; OnExit runs Vnt_WxTerm and then wxApp's own.
/// A derived class calls both when it overrides them.
class VANTO_API VntWxApp : public wxApp {
public:
    bool OnInit() override;
    int OnExit() override;
};
