// Shared by the module loader's tests and the test module libraries.
#pragma once

/// What the test template module records; the test passes its address as
/// argument 1 of the load.
struct TestTemplateLog {
    int created = 0;
    int opened = 0;
    int removed = 0;
    int destroyed = 0;
    bool openDocuments = false;  ///< what HasOpenDocuments answers
};
