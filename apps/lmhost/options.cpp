// SPDX-License-Identifier: MIT
#include "options.h"

namespace lmhost {

namespace {

/// Takes `--module NAME` out of the arguments.
std::vector<std::string> takeModules(const std::vector<std::string>& given, CommandLine& line) {
    std::vector<std::string> rest;
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (given[i] != "--module")
            rest.push_back(given[i]);
        else if (i + 1 < given.size())
            line.modules.push_back(given[++i]);
        else
            line.fault = "--module needs the name or the path of a module behind it";
    }
    return rest;
}

/// Options whose value is the argument behind them.
bool takesValue(const std::string& option) {
    return option == "--name" || option == "--fix" || option == "--version" || option == "--save" ||
           option == "--events" || option == "--time-limit" || option == "--stamp" || option == "--tag";
}

} // namespace

CommandLine readCommandLine(const std::vector<std::string>& given) {
    CommandLine line;
    const std::vector<std::string> arguments = takeModules(given, line);
    if (!line.fault.empty()) return line;
    if (arguments.empty()) {
        line.fault = "expected a command";
        return line;
    }
    line.command = arguments.front();
    line.help = line.command == "help" || line.command == "--help" || line.command == "-h";
    if (line.help) return line;
    if (line.command == "--version") line.command = "version";
    if (line.command == "version") {
        if (arguments.size() > 1) line.fault = "version takes no arguments, found \"" + arguments[1] + "\"";
        return line;
    }
    // The file may stand behind options as well: it is the first argument that is neither an option nor its
    // value.
    bool hasFile = false;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool option = argument.size() > 1 && argument[0] == '-';
        const bool value = i > 1 && takesValue(arguments[i - 1]);
        if (!value && (argument == "--help" || argument == "-h")) {
            line.help = true;
        } else if (line.command == "run" && argument == "--new" && !value) {
            line.newDrawing = true;
        } else if (!hasFile && !line.newDrawing && !option && !value) {
            line.file = argument;
            hasFile = true;
        } else {
            line.rest.push_back(argument);
        }
    }
    if (line.help) return line;
    if (line.newDrawing && hasFile)
        line.fault = "run takes a file or --new, found both";
    else if (hasFile && line.file.empty())
        line.fault = line.command + ": the name of the file is empty";
    line.lacksFile = !hasFile && !line.newDrawing;
    return line;
}

} // namespace lmhost
