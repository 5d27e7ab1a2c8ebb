// SPDX-License-Identifier: MIT
#include "drawing_support.h"

#include <numbers>

using std::numbers::pi;

namespace {

void expectNear(const OdGePoint3d& p, double x, double y, double z) {
    EXPECT_NEAR(p.x, x, 1e-12);
    EXPECT_NEAR(p.y, y, 1e-12);
    EXPECT_NEAR(p.z, z, 1e-12);
}

} // namespace

TEST(GeometryTest, MeasuresUnsignedAngles) {
    const OdGeVector3d x(1, 0, 0);
    EXPECT_DOUBLE_EQ(x.angleTo({0, 1, 0}), pi / 2);
    EXPECT_DOUBLE_EQ(x.angleTo({0, -1, 0}), pi / 2);
    EXPECT_DOUBLE_EQ(x.angleTo({-3, 0, 0}), pi);
    EXPECT_EQ(x.angleTo({5, 0, 0}), 0);
    EXPECT_EQ(x.angleTo({0, 0, 0}), 0) << "a null vector has no direction";
    EXPECT_EQ(OdGeVector3d().angleTo(x), 0);
}

TEST(GeometryTest, CountsWithPointsAndVectors) {
    const OdGePoint3d a(1, 2, 3), b(4, 6, 3);
    EXPECT_EQ(b - a, OdGeVector3d(3, 4, 0));
    EXPECT_EQ((b - a).length(), 5);
    EXPECT_EQ(a.distanceTo(b), 5);
    EXPECT_EQ(a + OdGeVector3d(1, 1, 1), OdGePoint3d(2, 3, 4));
    EXPECT_EQ(a - OdGeVector3d(1, 1, 1), OdGePoint3d(0, 1, 2));
    EXPECT_EQ(-OdGeVector3d(1, -2, 3), OdGeVector3d(-1, 2, -3));
    EXPECT_EQ(OdGeVector3d(1, 2, 3) * 2, OdGeVector3d(2, 4, 6));
    EXPECT_EQ(OdGeVector3d::kXAxis.crossProduct(OdGeVector3d::kYAxis), OdGeVector3d::kZAxis);
    EXPECT_EQ(OdGePoint2d(0, 0).distanceTo({3, 4}), 5);
    EXPECT_EQ(OdGePoint3d::kOrigin, OdGePoint3d());
    EXPECT_EQ(OdGeScale3d(), OdGeScale3d(1, 1, 1));
}

TEST(GeometryTest, MultipliesMatricesFromTheLeft) {
    const OdGeMatrix3d move = OdGeMatrix3d::translation({-10, -5, 0});
    expectNear(move * OdGePoint3d(10, 5, 0), 0, 0, 0);
    const OdGeMatrix3d turn = OdGeMatrix3d::rotationZ(pi / 2);
    expectNear(turn * OdGePoint3d(1, 0, 0), 0, 1, 0);
    expectNear((turn * move) * OdGePoint3d(11, 5, 0), 0, 1, 0);
    expectNear((move * turn) * OdGePoint3d(1, 0, 0), -10, -4, 0);
    expectNear(OdGeMatrix3d() * OdGePoint3d(1, 2, 3), 1, 2, 3);
    expectNear(OdGeMatrix3d::scaling({2, -3, 4}) * OdGePoint3d(1, 1, 1), 2, -3, 4);
    const OdGeVector3d turned = move * OdGeVector3d(1, 2, 3);
    EXPECT_EQ(turned, OdGeVector3d(1, 2, 3)) << "a vector has no place to move from";
}

TEST(GeometryTest, TurnsPlanesByTheArbitraryAxisRule) {
    expectNear(OdGeMatrix3d::planeToWorld({0, 0, 1}) * OdGePoint3d(1, 2, 3), 1, 2, 3);
    expectNear(OdGeMatrix3d::planeToWorld({0, 0, -1}) * OdGePoint3d(1, 2, 3), -1, 2, -3);
    expectNear(OdGeMatrix3d::planeToWorld({1, 0, 0}) * OdGePoint3d(1, 2, 3), 3, 1, 2);
    expectNear(OdGeMatrix3d::planeToWorld({0, 0, 7}) * OdGePoint3d(1, 2, 3), 1, 2, 3);
    expectNear(OdGeMatrix3d::planeToWorld({0, 0, 0}) * OdGePoint3d(1, 2, 3), 1, 2, 3);
}

TEST(ColorTest, TellsItsMethods) {
    EXPECT_EQ(OdCmColor().method(), OdCmColor::kByLayer);
    EXPECT_EQ(OdCmColor::fromIndex(0).method(), OdCmColor::kByBlock);
    EXPECT_EQ(OdCmColor::fromIndex(256).method(), OdCmColor::kByLayer);
    EXPECT_EQ(OdCmColor::fromIndex(1).method(), OdCmColor::kByIndex);
    EXPECT_EQ(OdCmColor::fromIndex(1).colorIndex(), 1);
    EXPECT_EQ(OdCmColor::fromRgb(1, 2, 3).rgb(), 0x010203u);
    EXPECT_EQ(OdCmColor::fromRgb(1, 2, 3).method(), OdCmColor::kByColor);
    EXPECT_NE(OdCmColor::fromIndex(1), OdCmColor::fromIndex(2));
}

TEST(GeometryTest, AddsAndSubtractsPointsOfThePlaneAndVectors) {
    EXPECT_EQ(OdGePoint2d(1, 2) + OdGePoint2d(3, 5), OdGePoint2d(4, 7));
    EXPECT_EQ(OdGePoint2d(1, 2) - OdGePoint2d(3, 5), OdGePoint2d(-2, -3));
    EXPECT_EQ(OdGeVector3d(1, 2, 3) - OdGeVector3d(3, 5, 9), OdGeVector3d(-2, -3, -6));
    EXPECT_EQ(-OdGeVector3d(1, 2, 3), OdGeVector3d(-1, -2, -3));
}
