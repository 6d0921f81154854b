// Side information of a frame: without macroblock types every block shows its picture.
#include "tests/support/EngineDewarper.h"
#include "tests/support/TestDewarper.h"

#include <cstddef>
#include <gtest/gtest.h>

namespace
{

/// Values for each block; nTypes: their type, -1: there are none.
struct SQuantisers : SQPInfo
{
    SQuantisers(int nCols, int nRows, int nTypes)
    {
        nWidth = nCols;
        nHeight = nRows;
        nStride = nCols + 3;
        const std::size_t nBytes = static_cast<std::size_t>(nStride) * static_cast<std::size_t>(nRows);
        pQP = new unsigned char[nBytes];
        if (nTypes >= 0)
            pMBType = new unsigned char[nBytes];
        for (std::size_t i = 0; i < nBytes; ++i) {
            pQP[i] = static_cast<unsigned char>(i * 37 + 5);
            if (nTypes >= 0)
                pMBType[i] = static_cast<unsigned char>(nTypes);
        }
    }
};

class Quantisers : public CEngineTest
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(oDewarper.Started());
        oDewarper->SetViewType(VIEW_FISHEYE);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        sPlain = oDewarper.Picture();
    }
    STestImage Draw(SQPInfo* pQP)
    {
        EXPECT_TRUE(oDewarper->SetTexture(oFrame.Image(), false, pQP, 0));
        EXPECT_TRUE(oDewarper->DrawGLScene(false));
        return oDewarper.Picture();
    }

    CTestFrame oFrame{AsymmetricPicture(64, 48), IMAGE_FORMAT_YUV420P};
    CEngineDewarper oDewarper{GetParam(), 64, 48};
    STestImage sPlain;
};

} // namespace

TEST_P(Quantisers, WithoutTypesChangeNothing)
{
    SQuantisers sInfo(4, 3, -1);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(CompareImages(Draw(&sInfo), sPlain).nMax, 0) << "frame " << i;
    EXPECT_EQ(CompareImages(Draw(nullptr), sPlain).nMax, 0);
    EXPECT_NO_GL_ERROR();
}

TEST_P(Quantisers, WithoutTypesChangeNothingAfterThereWereTypes)
{
    SQuantisers sTyped(4, 3, 255);
    SQuantisers sBare(4, 3, -1);
    SQuantisers sBareOfAnotherSize(7, 5, -1);
    SQuantisers sTypedOfAnotherSize(7, 5, 255);
    const STestImage sMarked = Draw(&sTyped);
    ASSERT_GT(CompareImages(sMarked, sPlain).nMax, 8) << "types do show";
    EXPECT_EQ(CompareImages(Draw(&sBare), sPlain).nMax, 0);
    EXPECT_EQ(CompareImages(Draw(nullptr), sPlain).nMax, 0);
    EXPECT_EQ(CompareImages(Draw(&sTyped), sMarked).nMax, 0);
    EXPECT_EQ(CompareImages(Draw(&sBareOfAnotherSize), sPlain).nMax, 0);
    EXPECT_GT(CompareImages(Draw(&sTypedOfAnotherSize), sPlain).nMax, 8);
    EXPECT_EQ(CompareImages(Draw(&sBare), sPlain).nMax, 0);
    EXPECT_EQ(CompareImages(Draw(&sTyped), sMarked).nMax, 0);
    SQPInfo sNone;
    EXPECT_EQ(CompareImages(Draw(&sNone), sPlain).nMax, 0);
    EXPECT_NO_GL_ERROR();
}

INSTANTIATE_ENGINES(Quantisers);

TEST(QuantisersOverARestart, WithoutTypesChangeNothing)
{
    CTestFrame oFrame(AsymmetricPicture(64, 48), IMAGE_FORMAT_YUV420P);
    CTestDewarper oDewarper(64, 48);
    oDewarper.SetViewType(VIEW_FISHEYE);
    const auto Draw = [&](SQPInfo* pQP) {
        EXPECT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, pQP, 0));
        EXPECT_TRUE(oDewarper.DrawGLScene(false));
        return oDewarper.Picture();
    };
    const STestImage sPlain = Draw(nullptr);
    SQuantisers sTyped(4, 3, 255);
    SQuantisers sBare(4, 3, -1);
    Draw(&sTyped);
    ASSERT_TRUE(oDewarper.StopGL());
    ASSERT_TRUE(oDewarper.StartGL());
    EXPECT_EQ(CompareImages(Draw(&sBare), sPlain).nMax, 0);
    oDewarper.FreeOpenGLObjects();
    EXPECT_EQ(CompareImages(Draw(nullptr), sPlain).nMax, 0);
    EXPECT_NO_GL_ERROR();
}
