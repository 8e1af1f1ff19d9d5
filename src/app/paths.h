// Private side of the application paths: their reset, for tests.
#pragma once

namespace vnt::app {

/// Empties the data source name, data path and DD path.
void resetPaths();

}  // namespace vnt::app
