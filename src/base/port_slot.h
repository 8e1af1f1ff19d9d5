// A replaceable implementation with a default: the ports and profiles an
// application or a test may install in place of the library's own.
#pragma once

namespace vnt {

template <class Port>
class PortSlot {
public:
    explicit PortSlot(Port& fallback) : fallback_(fallback), current_(&fallback) {}
    Port& get() const { return *current_; }
    /// Installs `port` (null: the default again); returns the previous one.
    Port* set(Port* port) {
        Port* old = current_;
        current_ = port ? port : &fallback_;
        return old;
    }

private:
    Port& fallback_;
    Port* current_;
};

}  // namespace vnt
