// vanto/ui/help.h - the help port.
//
// The message box's Help button asks this port to open the program's help
// ("<program>.html" beside the program) at a topic. The window toolkit
// installs a port that shows the help; without one, a headless port keeps a
// record of what was asked.
#pragma once

#include <string>
#include <vector>

#include "vanto/base.h"

/// How the help is to be opened.
enum class VntHelpCommand {
    Context,     ///< at the topic with context number `context`
    Contents,    ///< at the contents
    PartialKey,  ///< search the index for `key` (the start of an index entry)
    Key,         ///< open the topic of index entry `key`
};

/// One request to open the help.
struct VntHelpRequest {
    std::string file;  ///< library path of the help file ("Z:\opt\acme\Fibu.html")
    VntHelpCommand command = VntHelpCommand::Contents;
    long context = 0;  ///< the context number of VntHelpCommand::Context
    std::string key;   ///< the keyword of PartialKey and Key (Windows-1252)
};

/// Opens the help.
class VANTO_API VntHelpPort {
public:
    virtual ~VntHelpPort();
    /// Opens the help as asked; false when it could not be opened.
    virtual bool Open(const VntHelpRequest& request) = 0;
};

/// A help port without a help viewer: keeps every request and answers
/// `answer`. The headless default, and the one tests install.
class VANTO_API VntHelpRecorder : public VntHelpPort {
public:
    bool Open(const VntHelpRequest& request) override;
    std::vector<VntHelpRequest> requests;  ///< every request, oldest first
    bool answer = true;                    ///< what Open returns
};

/// The help port in use (never null: the headless one until another is
/// installed).
VANTO_API VntHelpPort& Vnt_UiHelp();
/// Installs a port (null: the headless one again); returns the previous one.
/// The caller keeps ownership.
VANTO_API VntHelpPort* Vnt_UiSetHelp(VntHelpPort* port);

/// The program's help file: its file name with the extension "html", beside
/// it. "Z:\opt\acme\Fibu" => "Z:\opt\acme\Fibu.html". False (and "") when
/// the program's file cannot be told.
VANTO_API bool Vnt_HelpFileName(std::string& file);
