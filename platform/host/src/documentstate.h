// SPDX-License-Identifier: MIT
// What a document keeps for its commands, its selection and its user.
#pragma once

#include "host/document.h"
#include "undosteps.h"

#include <chrono>

namespace lm::host {

using Clock = std::chrono::steady_clock;

/// A command that runs in a document.
struct RunningCommand {
    OdEdCommand* command;
    AnswerSource* answers;
    Clock::time_point deadline;
};

struct DocumentState {
    UndoSteps steps;
    std::vector<RunningCommand> commands;
    AnswerSource* answers = nullptr;
    double timeLimit = 0;
    bool closeWanted = false;
    unsigned long long savedChanges = 0;

    std::vector<OdDbObjectId> previousSelection;
    OdSmartPtr<OdDbIdMapping> copyMappings[2];
    OdGePoint3d lastPoint;
    CHostView view;
};

} // namespace lm::host
