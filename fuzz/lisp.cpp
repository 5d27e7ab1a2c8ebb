// SPDX-License-Identifier: MIT
// Evaluates any text as a program, and known programs with the text inside them. Whatever it is, it ends in
// time with a value or one line, memory stays below its ceiling, and the session goes on.
#include "host/documentmanager.h"
#include "host/lisp.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using lm::host::LispOutcome;
using lm::host::LispSession;

constexpr std::size_t kCeiling = std::size_t{8} << 20;
constexpr double kSeconds = 0.1;

/// Programs that the fuzzer's text is put into.
constexpr std::string_view kPrograms[] = {
    "(defun f (a b / c) (setq c (cons a b)) c) (f 1 '(2 3))",
    "(mapcar '(lambda (x y) (list x y)) '(1 2 3) '(\"a\" \"b\" \"c\"))",
    "(vl-sort '(5 2 8 1) '(lambda (a b) (< a b)))",
    "(setq i 0) (while (< i 10) (setq i (1+ i)) (if (= i 5) (princ i)))",
    "(vl-catch-all-apply '(lambda (x) (car x)) '(5))",
    "(defun *error* (m) (princ m)) (car 5)",
    "(strcat (rtos 12.5 4 4) (angtos 1.5 1 4) (substr \"abcdef\" 2 3) (vl-string-subst \"x\" \"y\" \"ayb\"))",
    "(list (distof \"1'-5 1/2\\\"\" 4) (angtof \"45d30'\" 1) (atof \"1e5\") (atoi \"12\") (cvunit 1 \"inch\" "
    "\"mm\"))",
    "(setq e (entmakex '((0 . \"LWPOLYLINE\") (8 . \"P\") (10 0 0) (42 . 0.5) (10 1 1)))) (entmod (subst '(8 "
    ". \"Q\") '(8 . "
    "\"P\") (entget e '(\"*\"))))",
    "(regapp \"A\") (entmake '((0 . \"CIRCLE\") (10 1 2 3) (40 . 5) (-3 (\"A\" (1000 . \"x\") (1070 . 1)))))",
    "(entmake '((0 . \"BLOCK\") (2 . \"B\") (10 0 0))) (entmake '((0 . \"POINT\") (10 1 1))) (entmake '((0 . "
    "\"ENDBLK\"))) "
    "(entmake '((0 . \"INSERT\") (2 . \"B\") (66 . 1) (10 0 0))) (entmake '((0 . \"ATTRIB\") (2 . \"T\") (1 "
    ". \"v\"))) (entmake "
    "'((0 . \"SEQEND\")))",
    "(ssget \"X\" '((-4 . \"<OR\") (0 . \"CIRCLE\") (-4 . \">=\") (40 . 2.0) (-4 . \"OR>\") (8 . \"P*\")))",
    "(dictadd (namedobjdict) \"D\" (entmakex '((0 . \"XRECORD\") (1 . \"t\") (40 . 2.5)))) (dictnext "
    "(namedobjdict) t)",
    "(initget 1 \"Yes No\") (list (getpoint '(0 0)) (getkword) (getdist) (getangle) (getint) (entsel))",
    "(tblnext \"LAYER\" t) (entget (tblobjname \"LAYER\" \"0\")) (setvar \"USERI1\" 5) (getvar \"CLAYER\")",
};

void evaluate(LispSession& lisp, const lm::WideString& program, const lm::WideString& answer) {
    for (int i = 0; i < 4; ++i) lisp.pushAnswer(answer);
    const LispOutcome outcome = lisp.evaluate(program);
    if (outcome.ok != outcome.error.empty() || outcome.ok != (outcome.line == 0)) std::abort();
    for (const lm::WideChar unit : outcome.error)
        if (unit < ' ') std::abort();
    if (lisp.memoryInUse() > kCeiling + (std::size_t{4} << 20)) std::abort();
    if (lisp.depth() != 0) std::abort();
    const LispOutcome after = lisp.evaluate(lm::system::widen("5"));
    if (lm::system::toUtf8(after.value) != "5") std::abort();
    // Every symbol can be read, and stored again as it was read.
    for (const char* name : {"E", "F", "I", "X", "L"}) {
        hst_resbufW* chain = nullptr;
        const lm::WideString wide = lm::system::widen(name);
        if (lisp.read(wide, chain) == RTNORM && lisp.store(wide, chain) != RTNORM &&
            lisp.memoryInUse() < kCeiling)
            std::abort();
        lm::host::releaseChain(chain);
    }
    lisp.clearAnswers();
}

void runInNewDrawing(const lm::WideString& program, const lm::WideString& answer) {
    CHostDocumentManager& manager = lm::host::documentManager();
    CHostDocument* document = manager.newDocument();
    LispSession& lisp = document->getAPI()->lisp();
    lisp.setTimeLimit(kSeconds);
    lisp.setMemoryCeiling(kCeiling);
    lisp.setFilesAllowed(false);
    lisp.setOutput([](lm::WideView) {});
    lisp.setCommandHook([](const hst_resbufW*) { return RTCAN; });
    evaluate(lisp, program, answer);
    manager.closeDocument(document);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const lm::WideString text =
        lm::system::fromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    runInNewDrawing(text, text);
    constexpr std::size_t kSmall = 512;
    if (size < 3 || size > kSmall) return 0;
    // The first two bytes choose a program and a place in it, the third how much of it the rest replaces.
    const std::string_view chosen = kPrograms[data[0] % std::size(kPrograms)];
    const std::size_t place = data[1] * chosen.size() / 256;
    const std::size_t replaced = data[2] % 16;
    lm::WideString mutated = lm::system::widen(chosen.substr(0, place));
    mutated += lm::system::fromUtf8(std::string_view(reinterpret_cast<const char*>(data) + 3, size - 3));
    if (place + replaced < chosen.size()) mutated += lm::system::widen(chosen.substr(place + replaced));
    runInNewDrawing(mutated, text);
    return 0;
}
