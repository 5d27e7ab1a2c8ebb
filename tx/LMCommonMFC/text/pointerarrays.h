// SPDX-License-Identifier: MIT
// The growing arrays of attribute records and of folders, which the library makes once for all modules.
#pragma once

#include "export.h"

#include "framework/values/carray.h"

class CEAtributo;
class CEPasta;

extern template class LM_COMMONMFC_API CArray<CEAtributo*, CEAtributo*>;
extern template class LM_COMMONMFC_API CArray<CEPasta*, CEPasta*>;
