// SPDX-License-Identifier: MIT
// Defines the run-time class of a type in one line.
#pragma once

#include "drawing/rxobject.h"

/// The class object is made at the first use, so that classes of other modules may stand above it.
#define LM_RX_DEFINE(T, Parent)                                                                              \
    OdRxClass* T::desc() {                                                                                   \
        static OdRxClass cls(#T, Parent::desc(), [] { return static_cast<OdRxObject*>(new T()); });          \
        return &cls;                                                                                         \
    }                                                                                                        \
    OdRxClass* T::isA() const {                                                                              \
        return desc();                                                                                       \
    }

/// The same for a class of which no object is made by name.
#define LM_RX_DEFINE_ABSTRACT(T, Parent)                                                                     \
    OdRxClass* T::desc() {                                                                                   \
        static OdRxClass cls(#T, Parent::desc(), nullptr);                                                   \
        return &cls;                                                                                         \
    }                                                                                                        \
    OdRxClass* T::isA() const {                                                                              \
        return desc();                                                                                       \
    }
