// SPDX-License-Identifier: MIT
#include "convert.h"

#include "drawing/error.h"
#include "drawing/writer.h"
#include "system/path.h"

namespace lmhost {

namespace {

using lm::drawing::KeptKinds;
using lm::drawing::WriteOptions;

enum Code { kDone = 0, kUsage = 2, kOutput = 4 };

struct Arguments {
    std::string out;
    WriteOptions options;
    std::string fault;
};

Arguments readArguments(const std::vector<std::string>& given) {
    Arguments arguments;
    for (std::size_t i = 0; i < given.size() && arguments.fault.empty(); ++i) {
        const std::string& argument = given[i];
        if (argument == "--binary") {
            arguments.options.binary = true;
        } else if (argument == "--version") {
            const bool there = i + 1 < given.size();
            if (!there || !lm::drawing::versionByName(given[++i], arguments.options.version))
                arguments.fault =
                    "--version needs one of R2000, R2004, R2007, R2010, R2013, R2018 behind it" +
                    (there ? ", found \"" + given[i] + "\"" : std::string());
        } else if (!argument.empty() && argument[0] != '-' && arguments.out.empty()) {
            arguments.out = argument;
        } else {
            arguments.fault = "unknown argument \"" + argument + "\"";
        }
    }
    if (arguments.fault.empty() && arguments.out.empty())
        arguments.fault = "needs the path of the new drawing";
    return arguments;
}

} // namespace

int runConvert(const CommandLine& line, CHostDocument& document, lm::host::ToolOutput& out,
               const std::function<void(const std::string&)>& error) {
    const Arguments arguments = readArguments(line.rest);
    if (!arguments.fault.empty()) {
        error("convert: " + arguments.fault);
        return kUsage;
    }
    KeptKinds kept;
    try {
        lm::drawing::saveDrawing(*document.database(),
                                 OdString(lm::WideView(lm::system::pathText(arguments.out))),
                                 arguments.options, &kept);
    } catch (const OdError& failure) {
        error(lm::drawing::utf8(failure.description()));
        return kOutput;
    }
    out.write("kept unread:\n");
    for (const auto& [kind, count] : kept) out.write("    " + kind + " " + std::to_string(count) + "\n");
    return kDone;
}

} // namespace lmhost
