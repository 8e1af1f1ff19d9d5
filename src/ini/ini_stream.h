// Private side of the INI engine: the line stream it reads and rewrites
// files with, and the engine's process-wide state.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "vanto/base.h"
#include "vanto/ini.h"

class VntIni;

namespace vnt::ini {

/// A file read whole into memory with a position, or the output of a
/// rewrite collected in memory and written out when it is released. Shared
/// by copies of a VntIni: the last reference does the closing work.
struct Stream {
    std::string name;      ///< library path: the file read, or the output's target
    std::string data;      ///< the bytes read, or the bytes written so far
    std::size_t pos = 0;   ///< reading position in data
    bool writing = false;  ///< an output stream
    int refs = 1;          ///< VntIni objects holding it

    /// Reads `file`; null when it cannot be read (the host's last error set).
    static Stream* openRead(const char* file);
    /// An output to `file`, created empty at once so that it exists on disk
    /// from now on; null when it cannot be created.
    static Stream* openWrite(const char* file);

    /// The next line into buf (1024 bytes): at most 1023 characters, ended
    /// by "\r\n", "\n" or "\r", which is consumed but not stored. A longer
    /// line comes in pieces of 1023. False at the end of the data.
    bool readLine(char* buf);
    void rewind() { pos = 0; }
    /// Appends bytes to an output.
    void write(const char* text, std::size_t n) { data.append(text, n); }
    /// Writes an output's bytes as the whole target file. True when written.
    bool writeOut() const;
};

/// The engine's process-wide state: NumEntry's buffer, the guard against
/// recursive section lookups, and the standard files.
struct EngineState {
    char numEntry[80] = {};              ///< NumEntry's result
    bool sectionGuard = false;           ///< SetSection is inside SectionFind
    char appPath[VNT_MAX_PATH] = {};     ///< program directory\INI
    char userPath[VNT_MAX_PATH] = {};    ///< program directory\USR\<user>
    char user[VNT_MAX_PATH] = {};        ///< the current user, "" until set
    char userIni[40] = {};               ///< "UserIni" of the application file
    char datIni[40] = {};                ///< "DatIni"
    char usrRoot[40] = {};               ///< "USR"
    char usrStd[40] = {};                ///< "UsrStd"
    std::unique_ptr<VntIni> app;         ///< the library-wide object on "App.vtm"
    char numberText[80] = {};            ///< the text of a whole number (typed values, tokens)
    tagRECT rect = {};                   ///< ReadRect's result
};

/// Thrown by a failed DX write to end DoDataExchange; only Write() catches it.
struct ExchangeAborted {};
/// A failed write aborts the exchange; Write() catches it and answers false.
inline void written(bool ok) {
    if (!ok) throw ExchangeAborted{};
}

EngineState& engine();
/// Drops the state: buffers emptied, the library-wide object closed.
void reset();

/// The temporary file of a section rewrite of `file`: its name with the
/// extension "tmp". False when the file has no such name of its own (its
/// extension is "tmp" already, or the name does not fit).
bool rewriteTemp(const char* file, char (&temp)[VNT_MAX_PATH]);
/// A rewrite's temporary file found beside a missing `file` holds the
/// complete new content (it is renamed over the old file only once it is
/// complete; an older order of the steps could die between removing the old
/// file and that rename): it takes the file's place. True when it did.
bool takeLeftoverRewrite(const char* file);

}  // namespace vnt::ini
