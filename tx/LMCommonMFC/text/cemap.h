// SPDX-License-Identifier: MIT
// CEMap: a map from wide text that sorts numbered keys by number at no cost, since shorter keys come first.
#pragma once

#include "export.h"

#include "system/wide.h"

#include <map>

/// The order of CEMap: the shorter text first, texts of one length by unsigned unit. Case counts. So "9"
/// comes before "10", and "B" before "AA".
class LM_COMMONMFC_API CEMapComparador {
public:
    bool operator()(const std::basic_string<unsigned short>& a,
                    const std::basic_string<unsigned short>& b) const;
};

/// A map in that order. Maps in the plain order of wide text are declared as such.
template<class T>
using CEMap = std::map<std::basic_string<unsigned short>, T, CEMapComparador>;
