#include "dewarp/CustomGPUGeometry.h"

#include <gtest/gtest.h>

namespace
{

struct SDetection
{
    int nWidth;
    int nHeight;
    ELensType eLens;
};

} // namespace

TEST(LensSizes, KnownFrameSizesSelectTheirLens)
{
    const SDetection CASES[] = {
        {1056, 960, LENS_DSL215},   {2144, 1944, LENS_DSL215},  {1488, 1360, LENS_DSL215},
        {528, 480, LENS_DSL215},    {1056, 992, LENS_DSL419},   {2080, 1960, LENS_DSL419},
        {1472, 1384, LENS_DSL419},  {544, 512, LENS_DSL419},    {2528, 2376, LENS_DSL419},
        {3200, 3000, LENS_DSL419},  {3360, 3000, LENS_DSL239},  {2240, 2000, LENS_DSL239},
        {1568, 1400, LENS_DSL239},  {1120, 1000, LENS_DSL239},  {672, 600, LENS_DSL239},
        {2992, 2992, LENS_DSL419},  {2800, 2800, LENS_DSL419},  {2304, 2304, LENS_DSL419},
        {1920, 1920, LENS_DSL419},  {512, 512, LENS_DSL419},    {1440, 1440, LENS_DSL419},
        {992, 992, LENS_DSL419},    {1920, 1080, LENS_UNKNOWN}, {960, 1056, LENS_UNKNOWN},
        {1920, 1921, LENS_UNKNOWN}, {0, 0, LENS_UNKNOWN},       {-1920, -1920, LENS_UNKNOWN},
    };
    for (const SDetection& s : CASES)
        EXPECT_EQ(AutoDetectLensType(s.nWidth, s.nHeight), s.eLens) << s.nWidth << "x" << s.nHeight;
}
