// SPDX-License-Identifier: MIT
// What the host's part of LISP remembers between calls: variables, answers to questions, walks over tables,
// and what the host was given to call.
#pragma once

#include "value.h"

#include "host/lisp.h"

#include "drawing/dictionary.h"
#include "drawing/partwalk.h"
#include "drawing/symboltable.h"

#include <deque>
#include <map>
#include <optional>

namespace lm::host::lisp {

/// What `initget` allowed for the next question.
struct NextQuestion {
    int bits = 0;
    std::vector<WideString> keywords; ///< as written: capitals are what suffices to name one
};

/// The host's memory of one session.
struct HostState {
    std::map<WideString, Value> variables;          ///< of getvar and setvar, by name in capitals
    std::map<WideString, WideString> environment;   ///< of setenv, by name in capitals
    std::map<WideString, WideString> configuration; ///< of setcfg
    std::deque<WideString> answers;
    NextQuestion question;
    CommandHook command;
    bool filesAllowed = true;
    std::map<std::string, OdSmartPtr<OdDbSymbolTableIterator>> tableWalks; ///< of tblnext by table
    std::map<OdDbObjectId, OdSmartPtr<OdDbDictionaryIterator>> dictionaryWalks;
    std::optional<lm::drawing::PartWalk> entityWalk;    ///< where entnext went last in a block
    std::optional<lm::drawing::PartWalk> attributeWalk; ///< and in a reference
    std::optional<lm::drawing::PartWalk> lastWalk;      ///< at the last entity that entlast found
    OdDbObjectId openBlock;                             ///< the block that entmake is filling
    OdDbObjectId openReference;                         ///< the reference that waits for attributes
};

} // namespace lm::host::lisp
