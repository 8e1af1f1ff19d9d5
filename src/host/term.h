// The terminal: standard error and standard input.
#pragma once

#include <string>

namespace vnt::host {

/// True when standard error and standard input are both a terminal, so a
/// question can be asked there.
bool interactiveTerminal();
/// Writes UTF-8 text to standard error.
void writeStderr(const std::string& utf8);
/// Reads one line (without its end) from standard input; false at its end.
bool readLine(std::string& line);
/// True when standard error is a terminal (a line may be redrawn in place).
bool stderrTerminal();

}  // namespace vnt::host
