#include "dewarp/tables/LensDistortion.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace
{

struct SMeasuredLens
{
    int nLens;
    const float* pDomain;
    const float* pRange;
    int nEntries;
};

template <int nEntries>
SMeasuredLens Measured(int nLens, const float (&afDomain)[nEntries], const float (&afRange)[nEntries])
{
    return {nLens, afDomain, afRange, nEntries};
}

const std::vector<SMeasuredLens> LENSES = {
    Measured(215, LENS_DISTORTION::fDomainForDSL215, LENS_DISTORTION::fRangeForDSL215),
    Measured(239, LENS_DISTORTION::fDomainForDSL239, LENS_DISTORTION::fRangeForDSL239),
    Measured(418, LENS_DISTORTION::fDomainForDSL418, LENS_DISTORTION::fRangeForDSL418),
    Measured(419, LENS_DISTORTION::fDomainForDSL419, LENS_DISTORTION::fRangeForDSL419),
};

} // namespace

TEST(LensDistortion, TablesAreTheMeasuredDataToTheLastBit)
{
    std::ifstream oFile(std::string(TEST_SOURCE_DIR) + "/golden/geometry/lens_tables.txt");
    std::string strComment;
    ASSERT_TRUE(std::getline(oFile, strComment));
    for (const SMeasuredLens& sLens : LENSES) {
        int nLens = 0;
        int nEntries = 0;
        double fStep = 0.0;
        ASSERT_TRUE(oFile >> nLens >> nEntries >> fStep);
        ASSERT_EQ(nLens, sLens.nLens);
        ASSERT_EQ(nEntries, sLens.nEntries);
        for (int i = 0; i < nEntries; ++i) {
            std::string strHeight;
            ASSERT_TRUE(oFile >> strHeight);
            EXPECT_EQ(sLens.pRange[i], std::stof(strHeight)) << nLens << " entry " << i;
            EXPECT_EQ(sLens.pDomain[i], static_cast<float>(i * fStep)) << nLens << " entry " << i;
        }
    }
}

TEST(LensDistortion, TablesRiseStrictlyFromZero)
{
    for (const SMeasuredLens& sLens : LENSES) {
        EXPECT_EQ(sLens.pDomain[0], 0.0f);
        EXPECT_EQ(sLens.pRange[0], 0.0f);
        for (int i = 1; i < sLens.nEntries; ++i) {
            EXPECT_GT(sLens.pDomain[i], sLens.pDomain[i - 1]);
            EXPECT_GT(sLens.pRange[i], sLens.pRange[i - 1]);
        }
    }
}

TEST(LensDistortion, TablesEndWhereTheLensWasMeasured)
{
    EXPECT_EQ(LENS_DISTORTION::fDomainForDSL215[85], 93.5f);
    EXPECT_EQ(LENS_DISTORTION::fDomainForDSL215[17], 18.7f);
    EXPECT_EQ(LENS_DISTORTION::fDomainForDSL418[100], 92.5f);
    EXPECT_EQ(LENS_DISTORTION::fDomainForDSL419[90], 90.0f);
    EXPECT_EQ(LENS_DISTORTION::fDomainForDSL239[100], 92.5f);
    EXPECT_EQ(LENS_DISTORTION::fRangeForDSL419[89], 2.254168f);
    EXPECT_EQ(LENS_DISTORTION::fRangeForDSL419[90], 2.267918f);
}
