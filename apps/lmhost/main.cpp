// SPDX-License-Identifier: MIT
// lmhost: the host program. It loads the modules, opens a drawing and runs one command on it. Commands beyond
// those that kUsageText names come from the modules.
//
// Exit codes: 0 done, 1 done and defects found, 2 wrong usage, 3 input that can't be read, 4 output that
// can't be written, 5 a command failed. Errors are one line each on standard error.
#include "check.h"
#include "convert.h"
#include "info.h"
#include "options.h"
#include "session.h"

#include "drawing/error.h"
#include "drawing/module.h"
#include "host/documentmanager.h"
#include "host/moduleloader.h"
#include "host/session.h"
#include "system/path.h"

#include <QCoreApplication>

#include <cstdio>
#include <csignal>
#include <cstring>
#include <exception>

#include <unistd.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace lmhost {

namespace {

enum ExitCode { kDone = 0, kDefects = 1, kUsage = 2, kInput = 3, kOutput = 4, kFailed = 5 };

constexpr const char* kModules[] = {"LMCommon_26.8_17.tx", "LMCommonMFC_26.8_17.tx", "LMTools.tx"};
/// Modules that a program may be shipped without; the commands of others do less then.
constexpr const char* kFurtherModules[] = {"LMCircuits_26.8_17.tx"};
constexpr const char kUsageText[] = "usage: lmhost COMMAND FILE [OPTIONS]\n"
                                    "\n"
                                    "  version                    name, version and module interface\n"
                                    "  info FILE [--json]         what stands in a drawing\n"
                                    "  check FILE [--json] [--fix OUT]\n"
                                    "                             its defects, and a mended copy of it\n"
                                    "  convert FILE OUT [--binary] [--version R2000|...|R2018]\n"
                                    "                             the drawing in another version or form\n"
                                    "  eval FILE EXPRESSION [--save OUT]\n"
                                    "                             LISP in the session of the drawing\n"
                                    "  run FILE|--new SCRIPT [--save OUT] [--events OUT]\n"
                                    "                             a script of commands and expressions\n"
                                    "                             both: [--time-limit SECONDS]\n";

/// Where the help of a command begins in its line.
constexpr std::size_t kHelpColumn = 29;

void errorLine(const std::string& text) {
    // A path on the command line may be any bytes.
    std::fprintf(stderr, "lmhost: %s\n", lm::system::shownPath(text).c_str());
}

std::string describe(const OdError& error) {
    return lm::drawing::utf8(error.description());
}

bool loadModules(lm::host::ModuleLoader& loader, const CommandLine& line) {
    using lm::host::ModuleStatus;
    const auto isLoaded = [&loader](const std::string& name, bool mayBeMissing) {
        const lm::host::ModuleResult loaded = loader.load(name);
        if (loaded || (mayBeMissing && loaded.status == ModuleStatus::kNotFound)) return true;
        errorLine(loaded.reason);
        return false;
    };
    for (const char* name : kModules)
        if (!isLoaded(name, false)) return false;
    for (const char* name : kFurtherModules)
        if (!isLoaded(name, true)) return false;
    for (const std::string& name : line.modules)
        if (!isLoaded(name, false)) return false;
    return true;
}

void writeUsage(lm::host::ToolOutput& out) {
    out.write(kUsageText);
    for (const auto& tool : lm::host::tools()) {
        std::string line = "  " + tool->name + " FILE";
        line.resize(std::max<std::size_t>(line.size() + 1, kHelpColumn), ' ');
        for (const char letter : tool->help + "\n") {
            line += letter;
            if (letter != '\n') continue;
            out.write(line);
            line.assign(kHelpColumn, ' ');
        }
    }
    out.write("\n  --module NAME              loads a further module, by name or path, with the commands "
              "that it brings\n"
              "\nexit codes: 0 done, 1 defects found, 2 wrong usage, 3 input, 4 output, 5 failed\n"
              "of a script: 4 the drawing or the events can't be written, 5 any other failure\n");
}

void writeVersion(lm::host::ToolOutput& out) {
    using namespace lm::drawing;
    out.write("lmhost " LM_VERSION "\n");
    out.write(std::string(kModules[1]) + " " LM_VERSION ", interface " + std::to_string(kApiMajor) + "." +
              std::to_string(kApiMinor) + "." + std::to_string(kApiBuildMajor) + "." +
              std::to_string(kApiBuildMinor) + "\n");
}

int runInfo(const CommandLine& line, CHostDocument& document, lm::host::ToolOutput& out) {
    bool json = false;
    for (const std::string& option : line.rest) {
        if (option != "--json") {
            errorLine("info: unknown argument \"" + option + "\"");
            return kUsage;
        }
        json = true;
    }
    writeInfo(document, out, json);
    return kDone;
}

/// The commands of the program itself; the others come from modules.
bool isOwnCommand(const std::string& name) {
    return name == "info" || name == "check" || name == "convert" || name == "eval" || name == "run";
}

int runOwn(const CommandLine& line, CHostDocument& document, lm::host::ToolOutput& out) {
    if (line.command == "check") return runCheck(line, document, out, &errorLine);
    if (line.command == "convert") return runConvert(line, document, out, &errorLine);
    if (line.command == "eval") return runEval(line, document, out, &errorLine);
    if (line.command == "run") return runScript(line, out, &errorLine);
    return runInfo(line, document, out);
}

int runTool(const lm::host::Tool& tool, const CommandLine& line, CHostDocument& document,
            lm::host::ToolOutput& out) {
    lm::host::ToolContext context{&document, line.rest, out, [&line](std::string_view text) {
                                      errorLine(line.file + ": " + line.command + ": " + std::string(text));
                                  }};
    return tool.run(context);
}

/// Runs a command and turns what it raises into a line.
template<class Run>
int guarded(const CommandLine& line, Run&& run) {
    try {
        return run();
    } catch (const OdError& error) {
        errorLine(line.file + ": " + line.command + ": " + describe(error));
    } catch (const std::exception& error) {
        errorLine(line.file + ": " + line.command + ": " + error.what());
    }
    return kFailed;
}

CHostDocument* openDrawing(const std::string& file) {
    try {
        return lm::host::documentManager().openDocument(OdString(lm::WideView(lm::system::pathText(file))));
    } catch (const OdError& error) {
        errorLine(describe(error));
    } catch (const std::bad_alloc&) {
        errorLine(file + ": not enough memory to read the drawing");
    } catch (const std::exception& error) {
        errorLine(file + ": " + error.what());
    }
    return nullptr;
}

int runOnDrawing(const CommandLine& line, lm::host::ToolOutput& out) {
    const auto tool = lm::host::findTool(line.command);
    if (tool == nullptr && !isOwnCommand(line.command)) {
        errorLine("unknown command \"" + line.command + "\"; lmhost help lists them");
        return kUsage;
    }
    if (line.lacksFile) {
        errorLine(line.command + " needs a file; lmhost help tells more");
        return kUsage;
    }
    CHostDocument* const document =
        line.newDrawing ? lm::host::documentManager().newDocument() : openDrawing(line.file);
    if (document == nullptr) return kInput;
    const int code = guarded(line, [&] {
        return tool != nullptr ? runTool(*tool, line, *document, out) : runOwn(line, *document, out);
    });
    // A script may have closed the drawing and opened others.
    guarded(line, [] {
        lm::host::documentManager().closeAll();
        return kDone;
    });
    return code;
}

/// The leak checker names what it finds by the code that asked for it, so it has to look while the modules
/// are there.
void checkLeaks() {
#ifdef __SANITIZE_ADDRESS__
    __lsan_do_leak_check();
#endif
}

int run(const CommandLine& line, lm::host::ToolOutput& out) {
    if (!line.fault.empty()) {
        errorLine(line.fault + "; lmhost help tells more");
        return kUsage;
    }
    lm::host::ModuleLoader loader;
    if (!loadModules(loader, line)) return kFailed;
    if (line.help) {
        writeUsage(out);
        return kDone;
    }
    if (line.command == "version") {
        writeVersion(out);
        return kDone;
    }
    const int code = runOnDrawing(line, out);
    checkLeaks();
    return code;
}

} // namespace

} // namespace lmhost

int main(int argc, char** argv) {
    // A file that may not grow further is a failed save with its line and code, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication application(argc, argv);
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const lmhost::CommandLine line = lmhost::readCommandLine(arguments);
    lm::host::ToolOutput out(STDOUT_FILENO);
    const int code = lmhost::run(line, out);
    if (!out.flush()) {
        lmhost::errorLine((line.file.empty() ? line.command : line.file) +
                          ": can't write to standard output: " + std::strerror(out.error()));
        return lmhost::kOutput;
    }
    return code;
}
