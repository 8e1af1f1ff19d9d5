// vanto/vanto.h - the whole VantoRtl interface in one include.
#pragma once

#include "vanto/app.h"
#include "vanto/base.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/text.h"
#include "vanto/vtm.h"
#include "vanto/ui/help.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
