// SPDX-License-Identifier: MIT
// Files that are made to cost time or memory. Each has one megabyte or so and must be read in the time that
// its size allows; the limits below are wide enough for a build with sanitizers on a busy machine.
#include "drawing_support.h"

#include "visit_all.h"

#include <chrono>

using namespace drawing_test;

namespace {

std::string repeated(std::size_t times, const std::function<std::string(std::size_t)>& part) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i) all += part(i);
    return all;
}

/// Reads a file and opens all that it holds; gives the seconds that this took.
double secondsFor(const std::string& bytes) {
    const auto start = std::chrono::steady_clock::now();
    try {
        const auto db = readBytes(bytes);
        visitAll(*db.get());
    } catch (const OdError&) {
        // What counts here is the time.
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string entities(const std::string& text) {
    return "0\nSECTION\n2\nENTITIES\n" + text + "0\nENDSEC\n0\nEOF\n";
}

constexpr double kAllowed = 10; // seconds

} // namespace

TEST(ReaderLimits, BadNumbersByTheThousand) {
    EXPECT_LT(secondsFor(entities("0\nLWPOLYLINE\n8\n0\n" +
                                  repeated(100000, [](std::size_t) { return "10\nx\n20\ny\n"; }))),
              kAllowed);
}

TEST(ReaderLimits, KindsByTheThousand) {
    EXPECT_LT(secondsFor(entities(
                  repeated(80000, [](std::size_t i) { return "0\nK" + std::to_string(i) + "\n8\n0\n"; }))),
              kAllowed);
}

TEST(ReaderLimits, TablesByTheThousand) {
    const std::string layers =
        repeated(10000, [](std::size_t i) { return "0\nLAYER\n2\nL" + std::to_string(i) + "\n"; });
    const std::string heads = repeated(20000, [](std::size_t) { return "0\nTABLE\n2\nLAYER\n0\nENDTAB\n"; });
    EXPECT_LT(secondsFor("0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n" + layers + "0\nENDTAB\n" + heads +
                         "0\nENDSEC\n0\nEOF\n"),
              kAllowed);
}

TEST(ReaderLimits, LayersByTheThousand) {
    EXPECT_LT(secondsFor(entities(
                  repeated(60000, [](std::size_t i) { return "0\nLINE\n8\nL" + std::to_string(i) + "\n"; }))),
              kAllowed);
}

TEST(ReaderLimits, NestedBlocksByTheThousand) {
    const std::string blocks = repeated(20000, [](std::size_t i) {
        return "0\nBLOCK\n2\nB" + std::to_string(i) + "\n0\nINSERT\n2\nB" + std::to_string(i + 1) +
               "\n0\nENDBLK\n";
    });
    EXPECT_LT(secondsFor("0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n0\nEOF\n"), kAllowed);
}

TEST(ReaderLimits, OwnersInALongChain) {
    const std::string objects = repeated(40000, [](std::size_t i) {
        return "0\nXRECORD\n5\n" + utf8(OdDbHandle(i + 1).ascii()) + "\n330\n" +
               utf8(OdDbHandle(i + 2).ascii()) + "\n";
    });
    EXPECT_LT(secondsFor("0\nSECTION\n2\nOBJECTS\n" + objects + "0\nENDSEC\n0\nEOF\n"), kAllowed);
}

TEST(ReaderLimits, AttributesExtendedDataAndEscapesByTheThousand) {
    EXPECT_LT(secondsFor(entities("0\nINSERT\n2\nB\n" +
                                  repeated(40000, [](std::size_t) { return "0\nATTRIB\n2\nT\n1\n^J\n"; }))),
              kAllowed);
    EXPECT_LT(
        secondsFor(entities(
            "0\nLINE\n8\n0\n" +
            repeated(40000, [](std::size_t i) { return "1001\nA" + std::to_string(i) + "\n1000\nx\n"; }))),
        kAllowed);
    EXPECT_LT(secondsFor(entities("0\nLINE\n8\n0\n" +
                                  repeated(60000, [](std::size_t) { return "1001\nA\n1000\nx\n"; }))),
              kAllowed);
    EXPECT_LT(secondsFor(entities("0\nTEXT\n8\n0\n1\n" +
                                  repeated(100000, [](std::size_t) { return "\\M+182A0"; }) + "\n")),
              kAllowed);
}

TEST(ReaderLimits, AVertexCountIsNoReasonToTakeMemory) {
    const std::string wires =
        repeated(20000, [](std::size_t) { return "0\nLWPOLYLINE\n8\n0\n90\n2000000000\n10\n1\n20\n2\n"; });
    EXPECT_LT(secondsFor(entities(wires)), kAllowed);
}

TEST(ReaderLimits, BytesOfEveryValueAfterAMark) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string tail(64, static_cast<char>(byte));
        EXPECT_NE(errorOf([&] { readBytes(dxf::binaryMark() + tail); }), "no error");
        EXPECT_NE(errorOf([&] { readBytes("0\nSECTION\n" + tail); }), "no error");
    }
}
