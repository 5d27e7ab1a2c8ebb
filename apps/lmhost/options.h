// SPDX-License-Identifier: MIT
// The command line of the program.
#pragma once

#include <string>
#include <vector>

namespace lmhost {

/// What the program was asked for.
struct CommandLine {
    std::string command;
    std::string file;
    std::vector<std::string> rest;    ///< arguments behind the file
    std::vector<std::string> modules; ///< further modules, one for each `--module NAME`
    bool newDrawing = false;          ///< `run --new`: an empty drawing in place of a file
    bool lacksFile = false;           ///< the command names none; commands are known by other parts
    bool help = false;
    std::string fault; ///< why the line can't be understood; empty when it can
};

/// Reads the arguments behind the program's name. `--module NAME` may stand anywhere. `version` takes no
/// file, every other command takes one. `--help` or `-h` behind a command asks for help as well.
CommandLine readCommandLine(const std::vector<std::string>& arguments);

} // namespace lmhost
