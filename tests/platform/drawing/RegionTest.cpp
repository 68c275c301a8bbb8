// What can be asked of regions. Their pixels are compared in ShapeTest.cpp.
#include <gtest/gtest.h>

#include <climits>

#include "GdiObjects.h"
#include "ObjectTable.h"

namespace {

TEST(Regions, CombineAndTellWhatCameOut) {
    const HRGN left = CreateRectRgn(0, 0, 10, 10);
    const HRGN right = CreateRectRgn(20, 0, 30, 10);
    const HRGN result = CreateRectRgn(1, 1, 2, 2);
    EXPECT_EQ(CombineRgn(result, left, right, RGN_OR), COMPLEXREGION);
    EXPECT_EQ(drawing::RegionOf(result), QRegion(0, 0, 10, 10) + QRegion(20, 0, 10, 10));
    EXPECT_EQ(CombineRgn(result, left, right, RGN_DIFF), SIMPLEREGION);
    EXPECT_EQ(CombineRgn(result, left, nullptr, RGN_COPY), SIMPLEREGION);
    // The target may be a source, and be XORed away and back.
    EXPECT_EQ(CombineRgn(result, result, left, RGN_XOR), NULLREGION);
    EXPECT_EQ(CombineRgn(result, left, result, RGN_XOR), SIMPLEREGION);
    EXPECT_EQ(CombineRgn(result, left, right, 9), RGN_ERROR);
    EXPECT_EQ(CombineRgn(result, left, nullptr, RGN_OR), RGN_ERROR);
    DeleteObject(left);
    EXPECT_EQ(CombineRgn(result, left, right, RGN_OR), RGN_ERROR);
    EXPECT_EQ(drawing::RegionOf(result), QRegion(0, 0, 10, 10));
    DeleteObject(right);
    DeleteObject(result);
}

TEST(Regions, CornersComeInAnyOrder) {
    const HRGN region = CreateRectRgn(20, 20, 3, 4);
    EXPECT_EQ(drawing::RegionOf(region), QRegion(3, 4, 17, 16));
    DeleteObject(region);
    const HRGN one = CreateEllipticRgn(40, 33, 7, 9);
    const HRGN other = CreateEllipticRgn(7, 9, 40, 33);
    EXPECT_EQ(drawing::RegionOf(one), drawing::RegionOf(other));
    DeleteObject(one);
    DeleteObject(other);
}

// Also for the thin ones, whose tips Windows leaves undefined: all rows are there, both halves are alike, and each row is as
// wide as the one nearer to the tip, or wider.
TEST(Regions, EllipsesOfAnySizeAreWhole) {
    for (int width = 2; width <= 70; ++width) {
        for (int height = 2; height <= 70; ++height) {
            const HRGN handle = CreateEllipticRgn(0, 0, width, height);
            const QRegion region = drawing::RegionOf(handle);
            DeleteObject(handle);
            ASSERT_EQ(region.boundingRect(), QRect(0, 0, width - 1, height - 1)) << width << " x " << height;
            int widest = 0;
            int rows = 0;
            for (const QRect& band : region) {
                ASSERT_EQ(band.left(), width - 2 - band.right()) << width << " x " << height;
                if (2 * band.bottom() < height) {
                    ASSERT_GE(band.width(), widest) << width << " x " << height;
                    widest = band.width();
                }
                rows += band.height();
            }
            ASSERT_EQ(rows, height - 1) << width << " x " << height;
        }
    }
    for (const SIZE& size : {SIZE{0, 0}, SIZE{1, 9}, SIZE{9, 1}, SIZE{0, 5}}) {
        const HRGN empty = CreateEllipticRgn(3, 3, 3 + size.cx, 3 + size.cy);
        EXPECT_TRUE(drawing::RegionOf(empty).isEmpty());
        DeleteObject(empty);
    }
}

}  // namespace
