// Sampling of graphic buffers, beside the desktop class.
#include "TestVela.h"

#include "tests/support/EngineDewarper.h"

#include <cstdio>
#include <random>

namespace
{

const int INPUT_SIZE = 250;
const int TARGET_WIDTH = 160;
const int TARGET_HEIGHT = 120;

/// Grey noise: chroma of graphic buffers is the driver's.
STestImage GreyNoise()
{
    std::mt19937 oRandom(5);
    STestImage sPicture(INPUT_SIZE, INPUT_SIZE);
    for (int y = 0; y < INPUT_SIZE; ++y)
        for (int x = 0; x < INPUT_SIZE; ++x) {
            const int n = static_cast<int>(oRandom() % 256);
            sPicture.Set(x, y, n, n, n);
        }
    return sPicture;
}

SReferenceSetup SetupOf(EViewType eView)
{
    SReferenceSetup s;
    s.eView = eView;
    s.nLensType = LENS_DSL419;
    s.nImageWidth = s.nImageHeight = INPUT_SIZE;
    s.nTargetWidth = TARGET_WIDTH;
    s.nTargetHeight = TARGET_HEIGHT;
    return s;
}

} // namespace

TEST(VelaSampling, IsThatOfTheDesktopClass)
{
    CTestFrame oFrame(GreyNoise(), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(INPUT_SIZE, INPUT_SIZE);
    CTestBuffer oOutput(TARGET_WIDTH, TARGET_HEIGHT);
    oInput.Fill(oFrame);
    for (const EViewType eView : {VIEW_FISHEYE, VIEW_VCAM}) {
        CTestVela oVela(TARGET_WIDTH, TARGET_HEIGHT);
        ASSERT_TRUE(oVela.Started());
        ASSERT_TRUE(oVela.Apply(SetupOf(eView), oInput, oOutput));
        for (const ESampling eSampling :
             {SAMPLING_NEAREST, SAMPLING_LINEAR, SAMPLING_CUBIC, SAMPLING_LANCZOS}) {
            for (const bool bMinification : {false, true}) {
                EXPECT_TRUE(oVela.SetSampling(eSampling));
                oVela.SetMinification(bMinification);
                ASSERT_TRUE(oVela.DrawFrame(oInput, oOutput));
                const STestImage sBuffer = oOutput.Texels();
                CEngineDewarper oDesktop(ENGINE_GL, TARGET_WIDTH, TARGET_HEIGHT);
                ASSERT_TRUE(oDesktop.Apply(SetupOf(eView), oFrame));
                EXPECT_TRUE(oDesktop->SetSampling(eSampling));
                oDesktop->SetMinification(bMinification);
                ASSERT_TRUE(oDesktop.DrawFrame(oFrame));
                const STestImage sPicture = oDesktop.Picture();
                std::vector<double> vOff;
                for (int y = 0; y < TARGET_HEIGHT; ++y)
                    for (int x = 0; x < TARGET_WIDTH; ++x)
                        vOff.push_back(std::abs(sBuffer.At(x, y)[0] - sPicture.At(x, y)[1]));
                std::printf("  view %d, sampling %d, averaged %d: mean %.3f\n", eView, eSampling,
                            bMinification, Mean(vOff));
                // Linear filters weigh in 256ths, and both round on their own.
                EXPECT_LE(Mean(vOff), 1.5);
            }
        }
    }
    EXPECT_NO_GL_ERROR();
}
