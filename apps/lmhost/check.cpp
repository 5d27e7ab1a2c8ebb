// SPDX-License-Identifier: MIT
#include "check.h"

#include "drawing/check.h"
#include "drawing/error.h"
#include "drawing/writer.h"
#include "host/jsonwriter.h"
#include "system/path.h"

namespace lmhost {

namespace {

using lm::drawing::CheckResult;
using lm::drawing::Finding;
using lm::host::JsonWriter;
using lm::host::ToolOutput;

enum Code { kClean = 0, kDefects = 1, kUsage = 2, kOutput = 4 };

struct Arguments {
    bool json = false;
    std::string out; ///< where the mended drawing goes; empty when it goes nowhere
    std::string fault;
};

Arguments readArguments(const std::vector<std::string>& given) {
    Arguments arguments;
    for (std::size_t i = 0; i < given.size() && arguments.fault.empty(); ++i) {
        if (given[i] == "--json")
            arguments.json = true;
        else if (given[i] != "--fix")
            arguments.fault = "unknown argument \"" + given[i] + "\"";
        else if (i + 1 < given.size() && !given[i + 1].empty())
            arguments.out = given[++i];
        else
            arguments.fault = "--fix needs the path of the mended drawing behind it";
    }
    return arguments;
}

void writeFinding(JsonWriter& json, const Finding& finding) {
    json.beginObject();
    json.key("number");
    json.value(finding.number);
    json.key("handle");
    json.value(OdDbHandle(finding.handle).ascii());
    json.key("kind");
    json.value(finding.kind);
    json.key("text");
    json.value(std::string(CheckResult::describe(finding.number)) +
               (finding.text.empty() ? "" : ": " + finding.text));
    json.key("mended");
    json.value(finding.mended);
    json.endObject();
}

void writeJson(const std::string& file, const CheckResult& result, ToolOutput& out) {
    JsonWriter json(out);
    json.beginObject();
    json.key("file");
    json.value(lm::system::shownPath(file));
    json.key("defects");
    json.beginArray();
    for (const Finding& finding : result.findings()) writeFinding(json, finding);
    json.endArray();
    json.key("counts");
    json.beginObject();
    for (const auto& [number, count] : result.counts()) {
        json.key(std::to_string(number));
        json.beginObject();
        json.key("found");
        json.value(count.found);
        json.key("mended");
        json.value(count.mended);
        json.endObject();
    }
    json.endObject();
    json.endObject();
    json.finish();
}

void writeText(const CheckResult& result, ToolOutput& out) {
    for (const Finding& finding : result.findings()) out.write(CheckResult::text(finding) + "\n");
    // Of each number only the first ones are listed, so the sums go by number.
    for (const auto& [number, count] : result.counts())
        if (count.found > CheckResult::kKept)
            out.write(std::to_string(number) + ": " + std::to_string(count.found) + " in all\n");
    const CheckResult::Count sum = result.sum();
    if (sum.found == 0)
        out.write("no defects\n");
    else
        out.write(std::to_string(sum.found) + (sum.found == 1 ? " defect, " : " defects, ") +
                  std::to_string(sum.mended) + " mended\n");
}

} // namespace

int runCheck(const CommandLine& line, CHostDocument& document, ToolOutput& out,
             const std::function<void(const std::string&)>& error) {
    const Arguments arguments = readArguments(line.rest);
    if (!arguments.fault.empty()) {
        error("check: " + arguments.fault);
        return kUsage;
    }
    OdDbDatabase& database = *document.database();
    const CheckResult result = lm::drawing::check(database, {!arguments.out.empty()});
    if (arguments.json)
        writeJson(line.file, result, out);
    else
        writeText(result, out);
    if (!arguments.out.empty()) {
        try {
            lm::drawing::saveDrawing(database, OdString(lm::WideView(lm::system::pathText(arguments.out))));
        } catch (const OdError& failure) {
            error(lm::drawing::utf8(failure.description()));
            return kOutput;
        }
    }
    return result.total() != 0 ? kDefects : kClean;
}

} // namespace lmhost
