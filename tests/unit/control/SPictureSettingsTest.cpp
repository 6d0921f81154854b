#include "dewarp/control/SPictureSettings.h"
#include "dewarp/records/LogTag.h"
#include "platform/Report.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>
#include <limits>

TEST(SPictureSettings, GainsThatAreNoNumbersAreRefusedWithOneLine)
{
    CReport oReport(DEWARP_LOG_TAG);
    SPictureSettings sSettings;
    EXPECT_TRUE(sSettings.SetGains(0.5f, -1.0f, oReport));
    CLogCapture oLog;
    EXPECT_FALSE(sSettings.SetGains(std::numeric_limits<float>::quiet_NaN(), 1.0f, oReport));
    EXPECT_FALSE(sSettings.SetGains(1.0f, std::numeric_limits<float>::infinity(), oReport));
    EXPECT_EQ(oLog.Lines().size(), 2u) << oLog.Text();
    EXPECT_EQ(sSettings.fLumaGain, 0.5f);
    EXPECT_EQ(sSettings.fChromaGain, -1.0f);
}

TEST(SPictureSettings, SamplingsThatAreNotListedAreRefusedWithOneLine)
{
    CReport oReport(DEWARP_LOG_TAG);
    SPictureSettings sSettings;
    EXPECT_TRUE(sSettings.SetSampling(SAMPLING_CUBIC, oReport));
    const CLogCapture oLog;
    EXPECT_FALSE(sSettings.SetSampling(static_cast<ESampling>(-2), oReport));
    EXPECT_FALSE(sSettings.SetSampling(static_cast<ESampling>(4), oReport));
    EXPECT_EQ(oLog.Lines().size(), 2u) << oLog.Text();
    EXPECT_EQ(sSettings.eSampling, SAMPLING_CUBIC);
}

TEST(SPictureSettings, SamplingStandsAboveTheTypeOfInterpolation)
{
    SPictureSettings sSettings;
    EXPECT_EQ(sSettings.SamplingInForce(INTERPOLATION_LINEAR), SAMPLING_LINEAR);
    EXPECT_EQ(sSettings.SamplingInForce(INTERPOLATION_NEAREST), SAMPLING_NEAREST);
    EXPECT_EQ(sSettings.SamplingInForce(static_cast<EInterpolationType>(7)), SAMPLING_NEAREST);
    sSettings.eSampling = SAMPLING_LANCZOS;
    EXPECT_EQ(sSettings.SamplingInForce(INTERPOLATION_NEAREST), SAMPLING_LANCZOS);
}

TEST(SPictureSettings, SpaceRangeAndFlipsAreTakenAsTheyCome)
{
    SPictureSettings sSettings;
    sSettings.SetYUV(YUV_SPACE_BT2020, YUV_RANGE_LIMITED);
    EXPECT_EQ(sSettings.sYUV2RGB.eSpace, YUV_SPACE_BT2020);
    EXPECT_EQ(sSettings.sYUV2RGB.eRange, YUV_RANGE_LIMITED);
    sSettings.SetFlip(true, false);
    EXPECT_TRUE(sSettings.bFlipHorizontal);
    EXPECT_FALSE(sSettings.bFlipVertical);
}
