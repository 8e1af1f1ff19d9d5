#include "cal/cal_state.h"

namespace vnt::cal {

CalState& state() {
    static CalState s;
    return s;
}

void reset() { state() = CalState{}; }

const VNT_SYS_INFO& sysInfo() { return Vnt_SysInfo(VNT_SI_GET); }

}  // namespace vnt::cal
