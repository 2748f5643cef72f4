// Every resize member on pictures that end (or start) exactly at an inaccessible page: a read past
// the source picture, a write past the destination region or past the work space faults here.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

#include "../primitives/ippResize.h"
#include "GuardedBlock.h"
#include "ResizeReference.h"
#include "ResizeTestPicture.h"

namespace {

const int kModes[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, IPPI_INTER_LANCZOS};
const GuardedBlock::Guard kGuards[] = {GuardedBlock::Guard::AfterEnd, GuardedBlock::Guard::BeforeStart};

// Regions that touch the picture's edges, pictures one sample wide or high, factors up and down.
struct Geometry {
    IppiSize src;
    IppiRect roi;
    double xFactor, yFactor;
};
const Geometry kGeometries[] = {
    {{9, 9}, {0, 0, 9, 9}, 2.5, 0.4},   {{13, 6}, {4, 2, 9, 4}, 0.3, 3.2}, {{1, 7}, {0, 0, 1, 7}, 3.0, 1.5},
    {{7, 1}, {3, 0, 4, 1}, 1.0, 2.0},   {{10, 12}, {9, 11, 1, 1}, 4.0, 4.0}, {{8, 8}, {0, 0, 8, 8}, 1.0, 1.0},
};

int OutputLength(int length, double factor)
{
    return std::max(1, static_cast<int>(length * factor + 1e-7));
}

TEST(ResizeGuard, CornerMembersStayInsideSourcePictureAndDestinationRegion)
{
    std::mt19937 rng(31);
    for (bool bytes : {true, false})
        for (int mode : kModes)
            for (const Geometry& g : kGeometries)
                for (GuardedBlock::Guard guard : kGuards) {
                    TestPicture src(g.src, 4, bytes, guard);
                    src.FillRandom(rng);
                    const int w = std::min(g.roi.width, g.src.width - g.roi.x);
                    const int h = std::min(g.roi.height, g.src.height - g.roi.y);
                    const IppiSize dstRoiSize = {OutputLength(w, g.xFactor), OutputLength(h, g.yFactor)};
                    TestPicture dst(dstRoiSize, 4, bytes, guard);
                    const std::vector<uint8_t> before = dst.Bytes();
                    ASSERT_EQ(ResizeCorners(src, g.roi, dst, dstRoiSize, g.xFactor, g.yFactor, mode), ippStsNoErr);
                    const ResizeReference::Expected expected =
                        ResizeReference::Corners(src.AsSource(), g.roi, dstRoiSize, g.xFactor, g.yFactor, mode);
                    ASSERT_TRUE(ResizeReference::Matches(expected, dst.Origin(), dst.step, dst.size, before))
                        << mode << " " << g.src.width << "x" << g.src.height;
                }
}

// The destination region is smaller than the mapped picture, so that writes reach its last pixel;
// shifts move the map over its first. The work space is exactly what ippiResizeGetBufSize gives.
TEST(ResizeGuard, AreaMembersStayInsideSourceDestinationRegionAndWorkSpace)
{
    std::mt19937 rng(37);
    for (bool bytes : {true, false})
        for (int channels : {1, 4})
            for (int mode : kModes)
                for (const Geometry& g : kGeometries)
                    for (GuardedBlock::Guard guard : kGuards) {
                        TestPicture src(g.src, channels, bytes, guard);
                        src.FillRandom(rng);
                        const int w = std::min(g.roi.width, g.src.width - g.roi.x);
                        const int h = std::min(g.roi.height, g.src.height - g.roi.y);
                        const double xShift = -g.roi.x * g.xFactor - 0.3, yShift = -g.roi.y * g.yFactor + 0.2;
                        const IppiRect dstRoi = {0, 0, std::max(1, static_cast<int>(w * g.xFactor) - 1),
                                                 std::max(1, static_cast<int>(h * g.yFactor) - 1)};
                        TestPicture dst({dstRoi.width, dstRoi.height}, channels, bytes, guard);
                        const std::vector<uint8_t> before = dst.Bytes();
                        int workBytes = 0;
                        ASSERT_EQ(ippiResizeGetBufSize(g.roi, dstRoi, channels, mode, &workBytes), ippStsNoErr);
                        GuardedBlock work(static_cast<size_t>(workBytes), guard);
                        const IppStatus status =
                            ResizeAreasAt(bytes, channels, src.Origin(), g.src, src.step, g.roi, dst.Origin(), dst.step,
                                          dstRoi, g.xFactor, g.yFactor, xShift, yShift, mode, work.Data());
                        const ResizeReference::Expected expected = ResizeReference::Areas(
                            src.AsSource(), g.roi, dstRoi, g.xFactor, g.yFactor, xShift, yShift, mode);
                        ASSERT_EQ(status, expected.columns > 0 ? ippStsNoErr : ippStsNoOperation);
                        ASSERT_TRUE(ResizeReference::Matches(expected, dst.Origin(), dst.step, dst.size, before))
                            << mode << " " << g.src.width << "x" << g.src.height;
                    }
}

// Factors and shifts at the ends of double precision read the edge samples or map to nothing;
// they never reach past the pictures.
TEST(ResizeGuard, ExtremeFactorsAndShiftsStayInside)
{
    const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    const double factors[] = {1e-300, 4.9e-324, 1e300, inf, 1.0};
    const double shifts[] = {0.0, -1e300, 1e300, -inf, nan, -3e9};
    std::mt19937 rng(67);
    for (int mode : kModes)
        for (double xFactor : factors)
            for (double yFactor : {1.0, xFactor})
                for (double shift : shifts) {
                    TestPicture src({9, 9}, 4, true, GuardedBlock::Guard::AfterEnd);
                    TestPicture dst({6, 5}, 4, true, GuardedBlock::Guard::AfterEnd);
                    src.FillRandom(rng);
                    const IppiRect whole = {0, 0, 9, 9}, dstRoi = {0, 0, 6, 5};
                    int workBytes = 0;
                    ASSERT_EQ(ippiResizeGetBufSize(whole, dstRoi, 4, mode, &workBytes), ippStsNoErr);
                    GuardedBlock work(static_cast<size_t>(workBytes), GuardedBlock::Guard::AfterEnd);
                    const IppStatus corners =
                        ResizeCorners(src, whole, dst, dst.size, xFactor, yFactor, mode);
                    EXPECT_TRUE(corners == ippStsNoErr || corners == ippStsResizeNoOperationErr) << corners;
                    const IppStatus areas =
                        ResizeAreasAt(true, 4, src.Origin(), src.size, src.step, whole, dst.Origin(), dst.step, dstRoi,
                                      xFactor, yFactor, shift, -shift, mode, work.Data());
                    EXPECT_TRUE(areas == ippStsNoErr || areas == ippStsNoOperation) << areas;
                }
}

} // namespace
