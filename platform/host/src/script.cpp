// SPDX-License-Identifier: MIT
#include "host/script.h"

#include "commands/hostcommands.h"
#include "host/documentmanager.h"
#include "host/functions.h"
#include "host/lisp.h"
#include "host/services.h"
#include "scriptreader.h"
#include "system/codepage.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace lm::host {

namespace {

/// Where the value of an expression stands for a moment.
constexpr const char kAnswerSymbol[] = "%LMHOST-ANSWER%";

/// What failed, without the place in the expression, which the line of the script tells.
std::string reasonOf(const LispOutcome& outcome) {
    std::string reason = lm::system::toUtf8(outcome.error);
    const std::string place =
        " (line " + std::to_string(outcome.line) + ", column " + std::to_string(outcome.column) + ")";
    if (reason.ends_with(place)) reason.resize(reason.size() - place.size());
    return reason;
}

/// Answers from the script that is being run: texts as they stand, and the values of expressions.
class ScriptAnswers : public AnswerSource {
public:
    ScriptAnswers(ScriptReader& reader, CHostDocument* document) : m_reader(reader), m_document(document) {}

    bool next(Answer& answer) override {
        for (;;) {
            const ScriptPart part = m_reader.nextAnswer();
            if (part.kind == ScriptPart::kEnd) return false;
            if (part.kind == ScriptPart::kBroken) throw CommandFailed(part.text);
            if (part.kind == ScriptPart::kWord) {
                answer = Answer(part.text);
                return true;
            }
            if (evaluate(part.text, answer)) return true; // nil answers nothing: the next part is asked
        }
    }

private:
    bool evaluate(const std::string& expression, Answer& answer) {
        if (m_document == nullptr) throw CommandFailed("no drawing is open");
        LispSession& lisp = m_document->getAPI()->lisp();
        const lm::WideString symbol = lm::system::widen(kAnswerSymbol);
        const lm::WideString program =
            lm::system::fromUtf8("(setq " + std::string(kAnswerSymbol) + " " + expression + "\n)");
        const LispOutcome outcome = lisp.evaluate(program);
        if (!outcome.ok) throw CommandFailed(reasonOf(outcome));
        hst_resbufW* value = nullptr;
        lisp.read(symbol, value);
        lisp.store(symbol, nullptr);
        const bool isNil = value == nullptr || value->restype == RTNIL;
        const bool isAnswer = !isNil && answerOf(value, answer);
        releaseChain(value);
        if (!isNil && !isAnswer) throw CommandFailed("the value of " + expression + " is no answer");
        return isAnswer;
    }

    ScriptReader& m_reader;
    CHostDocument* m_document;
};

/// Sets who answers and how long things may take, and puts it back.
class DocumentSetup {
public:
    DocumentSetup(CHostDocument* document, AnswerSource& answers, double timeLimit) : m_document(document) {
        if (document == nullptr) return;
        m_answers = document->setAnswers(&answers);
        m_timeLimit = document->timeLimit();
        document->setTimeLimit(timeLimit);
        document->getAPI()->lisp().setTimeLimit(timeLimit);
    }
    /// The document may have gone: then there is nothing to put back.
    ~DocumentSetup() {
        CHostDocumentManager& manager = documentManager();
        for (int i = 0; i < manager.documentCount(); ++i) {
            if (manager.documentAt(i) != m_document) continue;
            m_document->setAnswers(m_answers);
            m_document->setTimeLimit(m_timeLimit);
        }
    }
    DocumentSetup(const DocumentSetup&) = delete;
    DocumentSetup& operator=(const DocumentSetup&) = delete;

private:
    CHostDocument* m_document;
    AnswerSource* m_answers = nullptr;
    double m_timeLimit = 0;
};

std::string oneLine(std::string text) {
    for (char& c : text)
        if (c == '\n' || c == '\r') c = ' ';
    return text;
}

} // namespace

std::string scriptText(std::string_view bytes) {
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
    if (lm::system::isUtf8(bytes)) return std::string(bytes);
    return lm::system::toUtf8(lm::system::widenNarrow(bytes));
}

std::string describeCurrentException() {
    try {
        throw;
    } catch (const OdError& error) {
        return lm::drawing::utf8(error.description());
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "an exception without a text";
    }
}

ScriptRunner::ScriptRunner(std::string text, ScriptOptions options)
    : m_reader(std::make_unique<ScriptReader>(std::move(text))), m_options(std::move(options)) {}

ScriptRunner::~ScriptRunner() = default;

void ScriptRunner::fail(int line, const std::string& what) {
    ++m_failures;
    if (m_options.error) m_options.error(line, oneLine(what));
}

namespace {

/// Whether the exception that is being handled says that a drawing couldn't be written.
bool isFailedSave() {
    try {
        throw;
    } catch (const OdError& error) {
        return error.code() == eFilerError;
    } catch (...) {
        return false;
    }
}

} // namespace

template<class Act>
void ScriptRunner::guarded(int line, Act act) {
    if (m_options.step) m_options.step(true);
    try {
        act();
    } catch (...) {
        m_hasFailedSave = m_hasFailedSave || isFailedSave();
        fail(line, describeCurrentException());
        m_reader->skipLine();
    }
    if (m_options.step) m_options.step(false);
}

std::size_t ScriptRunner::run() {
    takeQuitRequest();
    for (;;) {
        const ScriptPart part = m_reader->nextItem();
        switch (part.kind) {
        case ScriptPart::kEnd:
            return m_failures;
        case ScriptPart::kBroken:
            fail(part.line, part.text);
            m_reader->skipLine();
            break;
        case ScriptPart::kExpression:
            guarded(part.line, [&] { runExpression(part.text, part.line); });
            break;
        case ScriptPart::kWord:
            guarded(part.line, [&] { runWord(part.text, part.line); });
            break;
        }
        if (takeQuitRequest()) return m_failures;
    }
}

namespace {

CHostDocument& openDocument() {
    CHostDocument* const document = ACTIVE_DOCUMENT();
    if (document == nullptr) throw CommandFailed("no drawing is open");
    return *document;
}

/// Evaluates as one undo step; the document is closed behind it when a command of the program wanted that.
template<class Evaluate>
LispOutcome evaluated(CHostDocument& document, Evaluate evaluate) {
    LispOutcome outcome;
    std::exception_ptr thrown;
    try {
        const UndoStepScope step(&document);
        outcome = evaluate(document.getAPI()->lisp());
    } catch (...) {
        thrown = std::current_exception();
    }
    document.closeIfWanted();
    if (thrown) std::rethrow_exception(thrown);
    return outcome;
}

} // namespace

void ScriptRunner::runExpression(const std::string& text, int line) {
    CHostDocument& document = openDocument();
    ScriptAnswers answers(*m_reader, &document);
    const DocumentSetup setup(&document, answers, m_options.timeLimit);
    const lm::WideString program = lm::system::fromUtf8(text);
    const LispOutcome outcome =
        evaluated(document, [&](LispSession& lisp) { return lisp.evaluate(program); });
    if (outcome.ok) return;
    fail(line + std::max(outcome.line, 1) - 1, reasonOf(outcome));
    m_reader->skipLine();
}

void ScriptRunner::runWord(const std::string& name, int line) {
    CHostDocument* const document = ACTIVE_DOCUMENT();
    const OdString wide = wideText(name);
    ScriptAnswers answers(*m_reader, document);
    const DocumentSetup setup(document, answers, m_options.timeLimit);
    if (const OdSmartPtr<OdEdCommand> command = odedRegCmds()->lookupCmd(wide); !command.isNull()) {
        executeCommand(document, *command, answers);
        return;
    }
    if (document != nullptr && document->getAPI()->lisp().hasCommand(wide.view())) {
        const LispOutcome outcome =
            evaluated(*document, [&](LispSession& lisp) { return lisp.runCommand(wide.view()); });
        if (outcome.ok) return;
        fail(line, reasonOf(outcome));
        m_reader->skipLine();
        return;
    }
    if (document != nullptr && hasFunction(CHostString(wide))) return runFunction(*document, name);
    throw CommandFailed("unknown command \"" + name + "\"");
}

/// Calls a function of a module with the rest of the line as texts, as one undo step.
void ScriptRunner::runFunction(CHostDocument& document, const std::string& name) {
    struct Chain {
        hst_resbufW* first = nullptr;
        hst_resbufW** end = &first;
        ~Chain() { releaseChain(first); }
        void add(const std::string& text) {
            hst_resbufW model{};
            model.restype = RTSTR;
            lm::WideString units = lm::system::fromUtf8(text);
            model.value.text = units.data();
            *end = copyChain(&model);
            end = &(*end)->rbnext;
        }
    } chain;
    chain.add(name);
    for (ScriptPart part = m_reader->nextOfLine(); part.kind != ScriptPart::kEnd;
         part = m_reader->nextOfLine()) {
        if (part.kind == ScriptPart::kBroken) throw CommandFailed(part.text);
        chain.add(part.text);
    }
    const UndoStepScope step(&document);
    hst_resbufW* result = nullptr;
    const int code = document.getAPI()->invoke(chain.first, result);
    releaseChain(result);
    if (code != RTNORM) throw CommandFailed("the function \"" + name + "\" can't be called");
}

} // namespace lm::host
