// Private side of the reports: the connection of the message library
// reader's reports to the message box.
#pragma once

namespace vnt::msg {

/// Makes the reader's reports ("!VTMINTRF: Internal Error.\n...") go to the
/// message box; an answer other than OK then ends the process with exit
/// code 3. Called whenever the message system starts being used; calling it
/// again does no harm.
void connectReader();

}  // namespace vnt::msg
