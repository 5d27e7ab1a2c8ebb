// SPDX-License-Identifier: MIT
#include "rzprintf.h"

int rzPrintf(RZString format) {
    return ACTIVE_DOCUMENT()->getAPI()->printf(format);
}
