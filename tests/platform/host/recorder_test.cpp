// SPDX-License-Identifier: MIT
#include "host/recorder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using lm::host::Recorder;
using lm::host::RecorderRegistration;
using lm::host::RecorderSink;
using lm::host::Recording;
using lm::host::startRecording;

/// Writes one line when it begins and one when it ends.
Recorder called(const std::string& name) {
    struct Named : Recording {
        Named(std::string given, RecorderSink to) : name(std::move(given)), sink(std::move(to)) {
            sink("begin " + name);
        }
        ~Named() override { sink("end " + name); }
        std::string name;
        RecorderSink sink;
    };
    return [name](RecorderSink sink) { return std::make_unique<Named>(name, std::move(sink)); };
}

std::string recorded() {
    std::string lines;
    startRecording([&lines](std::string_view line) { lines += std::string(line) + ";"; });
    return lines;
}

TEST(Recorders, AreOfferedUntilTheirRegistrationGoes) {
    EXPECT_EQ(nullptr, startRecording([](std::string_view) {}));
    {
        const RecorderRegistration first(called("a"));
        EXPECT_EQ("begin a;end a;", recorded());
        {
            const RecorderRegistration second(called("b"));
            EXPECT_EQ("begin b;end b;", recorded()) << "the latest";
        }
        EXPECT_EQ("begin a;end a;", recorded());
    }
    EXPECT_EQ(nullptr, startRecording([](std::string_view) {}));
}

TEST(Recorders, MoveWithTheirRegistration) {
    RecorderRegistration first(called("a"));
    RecorderRegistration second(std::move(first));
    first.reset();
    EXPECT_EQ("begin a;end a;", recorded());
    second = RecorderRegistration(called("b"));
    EXPECT_EQ("begin b;end b;", recorded());
    second = RecorderRegistration();
    EXPECT_EQ("", recorded());
}

TEST(Recorders, ThatAreEmptyAreNotOffered) {
    const RecorderRegistration first(called("a")), none{Recorder()};
    EXPECT_EQ("begin a;end a;", recorded());
}

} // namespace
