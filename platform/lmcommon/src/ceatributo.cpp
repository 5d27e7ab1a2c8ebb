// SPDX-License-Identifier: MIT
#include "lmcommon/ceatributo.h"

#include "system/wide.h"

namespace {

// The vocabulary of tags stands in a module above this one, so the three names are repeated here.
const lm::WideString connectionTags[] = {lm::system::widen("LIGACAO"), lm::system::widen("CONNECTION"),
                                         lm::system::widen("CONEXION")};

} // namespace

bool CEAtributo::isAttLigacao(CHostString tag) {
    for (const lm::WideString& name : connectionTags)
        if (lm::system::equalsNoCase(tag.view(), name)) return true;
    return false;
}
