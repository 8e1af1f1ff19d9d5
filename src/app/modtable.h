// Between the application's start and end and the module loader.
#pragma once

namespace vnt::app {

/// Reads the module table from "Modules.vtm"; true when it loaded (at least
/// one entry). Its presence marks the library as initialised.
bool loadModuleTable();
bool moduleTableLoaded();
/// Frees the table (and with it every record pointer handed out).
void freeModuleTable();

/// The loader's process-wide state back to its start: table, window table,
/// current and exclusive module, cursor, marks, result, value stack. Tests.
void resetModules();
/// The start and end state back to its start: program names, start
/// directory, version record, busy mark, hooks. Tests.
void resetLifecycle();

}  // namespace vnt::app
