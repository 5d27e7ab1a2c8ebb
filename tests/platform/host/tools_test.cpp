// SPDX-License-Identifier: MIT
#include "hostsupport.h"

#include "host/tools.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>

namespace {

using namespace lm::test;
using lm::host::Tool;
using lm::host::ToolContext;
using lm::host::ToolOutput;
using lm::host::ToolRegistration;

TEST(ToolTable, OffersToolsByNameUntilTheirRegistrationGoes) {
    EXPECT_EQ(nullptr, lm::host::findTool("count"));
    {
        ToolRegistration z({"zeta", "last", [](ToolContext&) { return 0; }});
        ToolRegistration count({"count", "counts", [](ToolContext& context) {
                                    context.out.write("3\n");
                                    context.error(context.arguments.at(0));
                                    return context.document != nullptr ? 0 : 5;
                                }});
        ASSERT_EQ(2u, lm::host::tools().size());
        EXPECT_EQ("count", lm::host::tools()[0]->name);
        EXPECT_EQ("last", lm::host::tools()[1]->help);
        EXPECT_EQ(nullptr, lm::host::findTool("COUNT")) << "names are exact";
        const auto tool = lm::host::findTool("count");
        ASSERT_NE(nullptr, tool);
        std::string written, line;
        ToolOutput out(written);
        ToolContext context{nullptr, {"--json"}, out, [&](std::string_view text) { line = text; }};
        EXPECT_EQ(5, tool->run(context));
        EXPECT_TRUE(out.flush());
        EXPECT_EQ("3\n", written);
        EXPECT_EQ("--json", line);
    }
    EXPECT_TRUE(lm::host::tools().empty());
}

TEST(ToolTable, TheLatestOfANameHidesTheEarlierOne) {
    ToolRegistration first({"same", "first", [](ToolContext&) { return 1; }});
    ToolRegistration second({"same", "second", [](ToolContext&) { return 2; }});
    EXPECT_EQ("second", lm::host::findTool("same")->help);
    ToolRegistration moved = std::move(second);
    moved.reset();
    EXPECT_EQ("first", lm::host::findTool("same")->help);
    ToolRegistration nameless({"", "", [](ToolContext&) { return 0; }});
    ToolRegistration empty({"empty", "", {}});
    EXPECT_EQ(1u, lm::host::tools().size());
}

TEST(ToolOutput, BuffersWritesToADescriptor) {
    TemporaryFolder folder;
    const std::string path = (folder.path() / "out").string();
    const int descriptor = ::open(path.c_str(), O_CREAT | O_WRONLY, 0600);
    std::string expected;
    {
        ToolOutput out(descriptor);
        out.write("small");
        out.put('\n');
        EXPECT_EQ(0u, std::filesystem::file_size(path)) << "nothing before the buffer is full";
        expected = "small\n";
        const std::string block(70000, 'b');
        for (int i = 0; i < 40; ++i) {
            out.write(block);
            expected += block;
        }
        const std::string big(ToolOutput::kBufferSize + 7, 'c');
        out.write(big);
        expected += big;
        out.write("");
        EXPECT_TRUE(out.flush());
        out.write("end");
        expected += "end";
    }
    ::close(descriptor);
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(expected, std::string(std::istreambuf_iterator<char>(file), {}));
}

TEST(ToolOutput, RemembersAFailedWrite) {
    const int descriptor = ::open("/dev/full", O_WRONLY);
    ASSERT_GE(descriptor, 0);
    ToolOutput out(descriptor);
    out.write("lost");
    EXPECT_EQ(0, out.error());
    EXPECT_FALSE(out.flush());
    EXPECT_EQ(ENOSPC, out.error());
    out.write("dropped");
    EXPECT_FALSE(out.flush());
    ::close(descriptor);
}

} // namespace
