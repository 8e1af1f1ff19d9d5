// The calls the message layer makes to the layers above it.
#include "msg/upcalls.h"

#include "host/process.h"

namespace vnt::msg {

Upcalls& upcalls() {
    static Upcalls calls;
    return calls;
}

void endApplication(int code) {
    if (void (*end)(int) = upcalls().endApplication) end(code);
    host::exitProcess(code);  // an installed call returns only when it did not end
}

}  // namespace vnt::msg
