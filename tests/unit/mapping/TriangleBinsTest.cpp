#include "dewarp/mapping/TriangleBins.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

static std::vector<std::uint32_t> At(const CTriangleBins& oBins, double x, double y)
{
    const std::span<const std::uint32_t> oFound = oBins.At(x, y);
    return {oFound.begin(), oFound.end()};
}

TEST(TriangleBins, AreEmptyBeforeTheyAreMade)
{
    EXPECT_TRUE(CTriangleBins().At(1.0, 1.0).empty());
}

TEST(TriangleBins, TellEveryBoxThatHasAPointInItsOrder)
{
    std::mt19937 oRandom(1);
    const auto Between = [&](double a, double b) {
        return std::uniform_real_distribution<double>(a, b)(oRandom);
    };
    std::vector<SBox> vBoxes;
    for (int n = 0; n < 500; ++n) {
        const double x = Between(-50.0, 350.0);
        const double y = Between(-50.0, 150.0);
        vBoxes.push_back({x, y, x + Between(0.0, 40.0), y + Between(0.0, n % 50 == 0 ? 300.0 : 10.0)});
    }
    CTriangleBins oBins;
    oBins.Build({0.0, 0.0, 300.0, 100.0}, vBoxes);
    std::size_t nTold = 0;
    for (int i = 0; i < 5000; ++i) {
        // Points beside the area are asked for too.
        const double x = Between(-60.0, 360.0);
        const double y = Between(-60.0, 160.0);
        const std::vector<std::uint32_t> vFound = At(oBins, x, y);
        EXPECT_TRUE(std::is_sorted(vFound.begin(), vFound.end()));
        for (std::uint32_t n = 0; n < vBoxes.size(); ++n) {
            const bool bTold = std::binary_search(vFound.begin(), vFound.end(), n);
            EXPECT_TRUE(bTold || !vBoxes[n].Has(x, y, 0.0));
        }
        nTold += vFound.size();
    }
    EXPECT_LT(nTold, 5000u * vBoxes.size() / 10);
}

TEST(TriangleBins, StaySmallWhereEveryBoxCoversAll)
{
    const std::vector<SBox> vBoxes(3000, {0.0, 0.0, 100.0, 100.0});
    CTriangleBins oBins;
    oBins.Build({0.0, 0.0, 100.0, 100.0}, vBoxes);
    EXPECT_EQ(oBins.At(50.0, 50.0).size(), vBoxes.size());
    EXPECT_LT(oBins.CountBytes(), 1000000u);
}

TEST(TriangleBins, LeaveOutWhatIsNotFinite)
{
    const double fNone = std::numeric_limits<double>::quiet_NaN();
    const double fFar = std::numeric_limits<double>::infinity();
    CTriangleBins oBins;
    oBins.Build({0.0, 0.0, 10.0, 10.0},
                {{fNone, 0.0, 10.0, 10.0}, {0.0, 0.0, fFar, 10.0}, {0.0, 0.0, 10.0, 10.0}});
    EXPECT_EQ(At(oBins, 5.0, 5.0), std::vector<std::uint32_t>{2});
    EXPECT_EQ(At(oBins, 1e300, -1e300), std::vector<std::uint32_t>{2});
}

TEST(TriangleBins, DoWithoutAnArea)
{
    CTriangleBins oBins;
    oBins.Build({0.0, 0.0, 0.0, 0.0}, {{0.0, 0.0, 1.0, 1.0}, {2.0, 2.0, 3.0, 3.0}});
    EXPECT_EQ(oBins.At(0.5, 0.5).size(), 2u);
    oBins.Build({0.0, 0.0, 10.0, 10.0}, {});
    EXPECT_TRUE(oBins.At(0.5, 0.5).empty());
}
