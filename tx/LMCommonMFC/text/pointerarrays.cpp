// SPDX-License-Identifier: MIT
#include "text/pointerarrays.h"

template class CArray<CEAtributo*, CEAtributo*>;
template class CArray<CEPasta*, CEPasta*>;
