// The library's own XRC files as the build embedded them (xrc_embedded.cpp,
// generated from gui/wx/xrc/*.xrc).
#pragma once

#include <cstddef>

namespace vnt::wx {

struct EmbeddedXrc {
    const char* name;            // file name, "msgbox.xrc"
    const unsigned char* data;   // the file's bytes (UTF-8 XML)
    std::size_t size;
};

/// Ended by an entry with a null name.
extern const EmbeddedXrc kEmbeddedXrc[];

/// Loads the embedded files into wxXmlResource (once); false when one of
/// them is not valid XRC.
bool loadEmbeddedResources();
/// Installs the XRC handler of the typed edit control (once).
void addEdXmlHandler();

}  // namespace vnt::wx
