#include "lib/reset.h"

#include "app/modtable.h"
#include "cal/cal_state.h"
#include "copy/stat_state.h"
#include "db/db_state.h"
#include "ed/ed_state.h"
#include "host/host.h"
#include "ini/ini_stream.h"
#include "ini/profile.h"
#include "lfn/client_paths.h"
#include "lfn/lfn_state.h"
#include "msg/msg_internal.h"
#include "msg/vtm_internal.h"
#include "ui/ui_state.h"
#include "vanto/ini.h"

namespace vnt {

void resetLibrary() {
    // The library-wide INI object closes before the message system goes.
    ini::reset();
    ed::reset();
    copy::resetStat();
    db::reset();
    app::resetModules();
    app::resetLifecycle();
    Vnt_AppSetProfile(nullptr);
    ini::profileReset();
    cal::reset();
    msg::resetTexts();
    msg::resetBox();
    msg::resetReports();
    vtm::reset();
    lfn::resetState();
    lfn::resetClientPaths();
    ui::resetHeadless();
    host::reset();
}

}  // namespace vnt
