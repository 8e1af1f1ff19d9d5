// Private side of the ports: the default headless window system back to
// its start, for tests.
#pragma once

namespace vnt::ui {

/// Destroys the default headless port's fake windows and clears its
/// clipboard, busy mark, beeps, keys and modal default. The port installed
/// is left as it is.
void resetHeadless();

}  // namespace vnt::ui
