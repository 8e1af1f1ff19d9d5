// The running program and other programs: the program's and the library's
// files, the environment, starting programs and documents, ending the process.
#pragma once

#include <string>

namespace vnt::host {

/// Library path of the running program's file ("Z:\opt\acme\App");
/// empty when it cannot be told.
std::string programFile();
/// Makes programFile() answer `libPath` ("" = the real one again). For tests
/// and for programs whose files lie elsewhere than their executable.
void setProgramFile(const std::string& libPath);
/// Library path of the file that holds this library's code (the shared
/// library, or the program it is linked into); empty when it cannot be told.
std::string libraryFile();
/// Makes libraryFile() answer `libPath` ("" = the real one again). For tests.
void setLibraryFile(const std::string& libPath);
/// Writes "<program>: exit code <code>: <reason>" as one line to standard
/// error (line ends in `reason` become spaces; Windows-1252 in). Said by
/// the library before it ends the process with a failure code, so that a
/// program without a terminal never ends silently.
void writeExitReason(int code, const std::string& reason);

/// The value of an environment variable in Windows-1252; false when it is
/// not set or has no Windows-1252 form.
bool envValue(const char* name, std::string& value);

/// Starts the program `libPath` without waiting, with the argument text
/// `args` (split at blanks and tabs, double quotes grouping), in the working
/// directory `libWorkDir` (null or "": the current one). A bare name is
/// looked for on PATH. "x.exe" that does not exist is tried as "x". A file
/// that is not executable is opened with the desktop's opener
/// (openDocument). False with lastError() set when it cannot start (Op::Load
/// faults apply).
bool startProgram(const char* libPath, const char* args, const char* libWorkDir);
/// Opens a document with the desktop's opener ("xdg-open" found on PATH);
/// does not wait for it. False when there is no opener or it cannot start.
bool openDocument(const char* libPath);

/// Ends the process with `code` after flushing written data; exit handlers
/// and the destructors of static objects run. Does not return.
[[noreturn]] void exitProcess(int code);

}  // namespace vnt::host
