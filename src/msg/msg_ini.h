// Private: the message box's memory of switched-off messages ("Msg.ini"),
// kept through the profile functions.
#pragma once

#include <string>

namespace vnt::msg::ini {

/// Reads the value of `key` in `section` of the file: the first section of
/// that name and its first such key, both without regard to case; the value
/// trimmed of blanks. False when the file, the section or the key is missing.
///   "[msg]\r\n APPMSG.7 = 0 \r\n", ("Msg", "appmsg.7") => true, "0"
bool read(const char* file, const char* section, const char* key, std::string& value);

/// Writes `key`=`value` (the value trimmed) into `section` through the
/// profile functions: replaces the key's line, or adds it after the section's
/// last entry, or adds the section at the end of the file. Every line ends in
/// CR LF. The file's directory is created; the file is replaced through a
/// temporary file. False when a name holds a line end (or the key a '=', the
/// section a ']'), or the file cannot be written.
bool write(const char* file, const char* section, const char* key, const char* value);

/// The switched-off messages' file: the user directory, which is the
/// program directory's "USR\Std" until the standard INI files take over,
/// and "Msg.ini" in it.  Program "Z:\opt\acme\Fibu" => "Z:\opt\acme\USR\Std\Msg.ini".
/// False when the program directory cannot be told.
bool msgIniPath(std::string& path);

}  // namespace vnt::msg::ini
