// SPDX-License-Identifier: MIT
#include "session.h"

#include "watchdog.h"

#include "drawing/writer.h"
#include "host/documentmanager.h"
#include "host/lisp.h"
#include "host/recorder.h"
#include "host/script.h"
#include "system/file.h"
#include "system/path.h"

#include <charconv>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace lmhost {

namespace {

enum ExitCode { kDone = 0, kUsage = 2, kInput = 3, kOutput = 4, kFailed = 5 };

/// What stands behind the file.
struct Arguments {
    std::string subject; ///< the expression or the script
    bool hasSubject = false;
    std::string save, events;
    double timeLimit = 30;
    std::string fault;
};

bool readSeconds(const std::string& text, double& seconds) {
    const auto end = std::from_chars(text.data(), text.data() + text.size(), seconds);
    return end.ec == std::errc() && end.ptr == text.data() + text.size() && std::isfinite(seconds) &&
           seconds >= 0;
}

Arguments readArguments(const CommandLine& line, const char* subject, bool takesEvents) {
    Arguments arguments;
    for (std::size_t i = 0; i < line.rest.size(); ++i) {
        const std::string& given = line.rest[i];
        const bool isEvents = takesEvents && given == "--events";
        if (given == "--save" || given == "--time-limit" || isEvents) {
            if (++i == line.rest.size()) {
                arguments.fault = given + " needs a value behind it";
                return arguments;
            }
            if (given == "--save") arguments.save = line.rest[i];
            if (isEvents) arguments.events = line.rest[i];
            if (given == "--time-limit" && !readSeconds(line.rest[i], arguments.timeLimit))
                arguments.fault = "--time-limit needs a number of seconds, found \"" + line.rest[i] + "\"";
        } else if (!arguments.hasSubject) {
            arguments.subject = given;
            arguments.hasSubject = true;
        } else {
            arguments.fault = "unknown argument \"" + given + "\"";
        }
        if (!arguments.fault.empty()) return arguments;
    }
    if (!arguments.hasSubject) arguments.fault = std::string("needs ") + subject;
    return arguments;
}

/// Sends the console to the program's output for as long as it lives, and knows whether its last line is
/// open.
class Console {
public:
    explicit Console(lm::host::ToolOutput& out) : m_out(out) {
        m_before = lm::host::setConsoleSink([this](lm::WideView text) {
            if (text.empty()) return;
            m_out.write(lm::system::toUtf8(text));
            m_isLineOpen = text.back() != '\n';
        });
    }
    ~Console() { lm::host::setConsoleSink(m_before); }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    void closeLine() {
        if (m_isLineOpen) m_out.put('\n');
        m_isLineOpen = false;
    }

private:
    lm::host::ToolOutput& m_out;
    lm::host::TextSink m_before;
    bool m_isLineOpen = false;
};

bool save(const std::string& path, const ErrorSink& error) {
    CHostDocument* const document = ACTIVE_DOCUMENT();
    try {
        if (document == nullptr || document->database() == nullptr)
            throw lm::host::CommandFailed(path + ": no drawing is open that could be saved");
        lm::drawing::saveDrawing(*document->database(), OdString(lm::WideView(lm::system::pathText(path))));
        return true;
    } catch (...) {
        error(lm::host::describeCurrentException());
        return false;
    }
}

} // namespace

int runEval(const CommandLine& line, CHostDocument& document, lm::host::ToolOutput& out,
            const ErrorSink& error) {
    const Arguments arguments = readArguments(line, "an expression", false);
    if (!arguments.fault.empty()) return error("eval: " + arguments.fault), kUsage;
    const auto fail = [&](const std::string& what) {
        out.flush();
        error(line.file + ": eval: " + what);
        return kFailed;
    };
    {
        Console console(out);
        const Watchdog watchdog(arguments.timeLimit, [&fail](const std::string& what) { fail(what); });
        lm::host::LispSession& lisp = document.getAPI()->lisp();
        lisp.setTimeLimit(arguments.timeLimit);
        document.setTimeLimit(arguments.timeLimit);
        const lm::WideString program = lm::system::fromUtf8(arguments.subject);
        lm::host::LispOutcome outcome;
        try {
            const Watchdog::Step step(watchdog);
            const lm::host::UndoStepScope undoStep(&document);
            outcome = lisp.evaluate(program);
        } catch (...) {
            console.closeLine();
            return fail(lm::host::describeCurrentException());
        }
        console.closeLine();
        if (!outcome.ok) return fail(lm::system::toUtf8(outcome.error));
        if (!outcome.value.empty()) out.write(lm::system::toUtf8(outcome.value) + "\n");
    }
    if (!arguments.save.empty() && !save(arguments.save, error)) return kOutput;
    return kDone;
}

namespace {

/// The file of the events; the recording ends before its file is closed.
class EventFile {
public:
    /// Does nothing for an empty path. False when the file can't be made.
    bool open(const std::string& path) {
        if (path.empty()) return true;
        m_descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        if (m_descriptor < 0) return false;
        m_out = std::make_unique<lm::host::ToolOutput>(m_descriptor);
        return true;
    }
    /// Records from now on; false when no module can.
    bool record() {
        if (m_descriptor < 0) return true;
        m_recording = lm::host::startRecording([this](std::string_view event) {
            m_out->write(event);
            m_out->put('\n');
        });
        return m_recording != nullptr;
    }
    /// Writes what is left; false, with the reason in errno, when something couldn't be written.
    bool close() {
        if (m_descriptor < 0) return true;
        m_recording.reset();
        const bool isWritten = m_out->flush();
        const int reason = m_out->error();
        m_out.reset();
        const bool isClosed = ::close(std::exchange(m_descriptor, -1)) == 0;
        if (!isWritten) errno = reason;
        return isWritten && isClosed;
    }
    ~EventFile() { close(); }

private:
    int m_descriptor = -1;
    std::unique_ptr<lm::host::ToolOutput> m_out;
    std::unique_ptr<lm::host::Recording> m_recording;
};

bool readScript(const std::string& path, std::string& text, const ErrorSink& error) {
    lm::system::FileBytes bytes;
    const lm::system::FileOutcome outcome = lm::system::readWhole(path, bytes);
    switch (outcome.status) {
    case lm::system::FileStatus::kRead:
        text = lm::host::scriptText({bytes.data(), bytes.size()});
        return true;
    case lm::system::FileStatus::kNotFound:
        error(path + ": no such file");
        return false;
    case lm::system::FileStatus::kDirectory:
        error(path + ": a folder, expected a script");
        return false;
    default:
        error(path + ": can't be read" + (outcome.reason.empty() ? "" : ": " + outcome.reason));
        return false;
    }
}

/// A path of the command line and what it is.
struct Role {
    const char* name;
    const std::string& path;
};

/// Why an output can't go where it is to go: it would write over something else that the command line names.
/// Empty when all is well. Only the drawing itself may be saved under its own name.
std::string findClash(const CommandLine& line, const Arguments& arguments) {
    const Role drawing{"the drawing", line.file}, script{"the script", arguments.subject};
    const Role save{"--save", arguments.save}, events{"--events", arguments.events};
    const std::pair<Role, Role> pairs[] = {
        {events, drawing}, {events, script}, {events, save}, {save, script}};
    for (const auto& [output, other] : pairs) {
        if (output.path.empty() || other.path.empty()) continue;
        if (lm::system::isSameFile(output.path, other.path))
            return std::string(output.name) + " would write over " + other.name + ", " + output.path;
    }
    return {};
}

} // namespace

int runScript(const CommandLine& line, lm::host::ToolOutput& out, const ErrorSink& error) {
    const Arguments arguments = readArguments(line, "a script", true);
    if (!arguments.fault.empty()) return error("run: " + arguments.fault), kUsage;
    if (const std::string clash = findClash(line, arguments); !clash.empty())
        return error("run: " + clash), kUsage;
    std::string text;
    if (!readScript(arguments.subject, text, error)) return kInput;
    EventFile events;
    const auto cannotWrite = [&] {
        error(arguments.events + ": can't be written: " + std::strerror(errno));
        return kOutput;
    };
    if (!events.open(arguments.events)) return cannotWrite();
    if (!events.record()) return error("run: no module is loaded that can record events"), kFailed;
    int code = kDone;
    {
        Console console(out);
        const Watchdog watchdog(arguments.timeLimit,
                                [&](const std::string& what) { error(arguments.subject + ": " + what); });
        lm::host::ScriptOptions options;
        options.timeLimit = arguments.timeLimit;
        options.error = [&](int at, const std::string& what) {
            console.closeLine();
            out.flush();
            error(arguments.subject + ":" + std::to_string(at) + ": " + what);
        };
        options.step = [&watchdog](bool begins) { watchdog.step(begins); };
        lm::host::ScriptRunner runner(std::move(text), options);
        if (runner.run() != 0) code = runner.hasFailedSave() ? kOutput : kFailed;
        console.closeLine();
    }
    if (!events.close()) return cannotWrite();
    if (!arguments.save.empty() && !save(arguments.save, error)) return kOutput;
    return code;
}

} // namespace lmhost
