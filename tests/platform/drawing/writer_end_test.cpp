// SPDX-License-Identifier: MIT
// The end of a file that is broken off: what stands behind the last whole group is no part of what is
// written, and what is written can be read strictly.
#include "writer_support.h"

#include "dxf/write_groups.h"

#include <cmath>
#include <limits>

namespace drawing_test {
namespace {

using lm::drawing::ReadOptions;

/// A drawing in text without EOF that ends with these bytes.
std::string endingWith(const std::string& rest, bool withLineEnd = true, const std::string& lineEnd = "\n") {
    dxf::Parts parts;
    parts.withEnd = false;
    parts.entities =
        "0 LINE|5 100|330 1F|100 AcDbEntity|8 0|100 AcDbLine|10 1.0|20 2.0|30 0.0|11 3.0|21 4.0|31 "
        "0.0";
    std::string bytes = dxf::text(parts.groups(), lineEnd);
    if (!withLineEnd) bytes.resize(bytes.size() - lineEnd.size());
    return bytes + rest;
}

/// Writes a drawing in all versions and forms and reads each file strictly.
void writesWhatIsReadStrictly(const std::string& bytes) {
    const auto db = readBytes(bytes);
    for (const FileVersion version : kVersions)
        for (const bool binary : {false, true}) {
            SCOPED_TRACE(std::string(lm::drawing::versionText(version)) + (binary ? " binary" : " text"));
            const std::string written = saved(*db.get(), {version, binary});
            ReadOptions strict;
            strict.strict = true;
            EXPECT_EQ(errorOf([&] { readBytes(written, strict); }), "no error");
            const auto again = readBytes(written);
            EXPECT_EQ(byHandle<OdDbLine>(*again.get(), "100")->endPoint().x, 3.0);
            if (binary) continue;
            // Code and value in turn, to the last line, which is closed.
            const std::string groups = notationOf(written);
            EXPECT_TRUE(contains(groups, "|0 ENDSEC|0 EOF")) << groups.substr(groups.size() - 60);
            EXPECT_EQ(written.back(), '\n');
            EXPECT_EQ(std::count(written.begin(), written.end(), '\n') % 2, 0);
            EXPECT_FALSE(contains(written, "\r\r"));
        }
}

constexpr const char* kScraps[] = {"",     " ",      "  ",    "\n",      "\r\n",    "\n\n",
                                   " \n",  "  0",    "  0\n", "  0\r\n", "999",     "999\n",
                                   "\x1a", "\n\x1a", "9",     "9\n",     "\t\r\n\n"};

TEST(WriterEnd, DropsWhatIsBrokenOffBehindTheLastSection) {
    for (const char* scrap : kScraps)
        for (const char* lineEnd : {"\n", "\r\n"}) {
            SCOPED_TRACE("\"" + std::string(scrap) + "\" " + std::to_string(std::strlen(lineEnd)));
            writesWhatIsReadStrictly(endingWith(scrap, true, lineEnd));
        }
}

TEST(WriterEnd, EndsTheLastLine) {
    writesWhatIsReadStrictly(endingWith("", false));
    writesWhatIsReadStrictly(endingWith("\r", false));
    writesWhatIsReadStrictly(endingWith("", false, "\r\n"));
    writesWhatIsReadStrictly(endingWith("\r", false, "\r\n"));
}

TEST(WriterEnd, EndsTheLastLineInFrontOfSectionsThatWereMissing) {
    for (const char* rest : {"", "\r", "\n", "\n  0", "\n \n"}) {
        SCOPED_TRACE(rest);
        const std::string old =
            dxf::text("0 SECTION|2 ENTITIES|0 LINE|8 0|10 1.0|20 2.0|11 3.0|21 4.0|0 ENDSEC");
        const auto db = readBytes(old.substr(0, old.size() - 1) + rest);
        for (const FileVersion version : kVersions) {
            const std::string written = saved(*db.get(), {version, false});
            ReadOptions strict;
            strict.strict = true;
            EXPECT_EQ(errorOf([&] { readBytes(written, strict); }), "no error");
            EXPECT_TRUE(contains(notationOf(written), "|0 ENDSEC|0 SECTION|2 OBJECTS|"));
        }
    }
}

TEST(WriterEnd, KeepsWholeCommentsBehindTheLastSection) {
    const auto db = readBytes(endingWith("999\nby hand\n  0"));
    EXPECT_TRUE(contains(notationOf(saved(*db.get())), "|0 ENDSEC|999 by hand|0 EOF"));
    const auto open = readBytes(endingWith("999\nby hand"));
    EXPECT_TRUE(contains(notationOf(saved(*open.get())), "|0 ENDSEC|999 by hand|0 EOF"));
}

TEST(WriterEnd, DropsTheHalfOfAGroupInBinaryForm) {
    dxf::Parts parts;
    parts.withEnd = false;
    const std::string whole = dxf::binary(parts.groups());
    for (const std::string& scrap :
         {std::string("\0", 1), std::string("\0\0", 2), std::string("\0\0EO", 4)}) {
        const auto db = readBytes(whole + scrap);
        for (const bool binary : {false, true}) {
            ReadOptions strict;
            strict.strict = true;
            const std::string written = saved(*db.get(), {FileVersion::kR2018, binary});
            EXPECT_EQ(errorOf([&] { readBytes(written, strict); }), "no error");
        }
    }
}

TEST(WriterEnd, TellsOfWhatIsDropped) {
    EXPECT_TRUE(contains(reportOf(*readBytes(endingWith("")).get()), "the file has no EOF\n"));
    for (const char* scrap : {" ", "\n", "  0", "999\n", "\x1a"}) {
        SCOPED_TRACE(scrap);
        const std::string told = reportOf(*readBytes(endingWith(scrap)).get());
        EXPECT_TRUE(contains(told, "108: ")) << told;
        EXPECT_TRUE(contains(told, "the file has no EOF; what it ends with is no group and is dropped"))
            << told;
    }
}

TEST(WriterEnd, RefusesNumbersThatNoFileHolds) {
    const auto db = readBytes(endingWith(""));
    byHandle<OdDbLine>(*db.get(), "100", OdDb::kForWrite)
        ->setEndPoint({std::numeric_limits<double>::infinity(), 0, 0});
    for (const bool binary : {false, true})
        EXPECT_EQ(errorOf([&] {
                      saved(*db.get(), {FileVersion::kR2018, binary});
                  }),
                  "the number under group 11 of LINE 100 is infinite or no number");
    const auto made = newDatabase();
    const auto circle = make<OdDbCircle>();
    circle->setRadius(std::nan(""));
    append(*made.get(), circle);
    const std::string handle = utf8(circle->objectId().getHandle().ascii());
    EXPECT_EQ(errorOf([&] { saved(*made.get()); }),
              "the number under group 40 of CIRCLE " + handle + " is infinite or no number");
    circle->upgradeOpen();
    circle->setRadius(1);
    EXPECT_EQ(errorOf([&] { saved(*made.get()); }), "no error");
}

} // namespace
} // namespace drawing_test
