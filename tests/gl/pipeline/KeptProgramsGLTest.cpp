// Programs are made once for their texts, and not more of them are kept than needed.
#include "tests/gl/overlays/OverlayTools.h"

#include <GLES3/gl31.h>
#include <functional>
#include <gtest/gtest.h>
#include <set>

namespace
{

const int WIDTH = 64;
const int HEIGHT = 48;
const int MOST_KEPT = 48;

class KeptPrograms : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(oDewarper.Started()); }
    /// Shaders that a frame compiles.
    int Compiled(CTestFrame& rFrame, bool bGain = false)
    {
        CGLRecorder::Get().Start();
        EXPECT_TRUE(oDewarper.SetTexture(rFrame.Image(), bGain, nullptr, 0));
        EXPECT_TRUE(oDewarper.DrawGLScene(false));
        return CGLRecorder::Get().Count("glCompileShader");
    }
    /// Plays steps with a frame after each, round and round: the first round may compile, later ones may not.
    void ExpectCompiledOnce(const std::vector<std::function<void()>>& vSteps)
    {
        int nFirst = 0;
        for (int nRound = 0; nRound < 3; ++nRound)
            for (std::size_t i = 0; i < vSteps.size(); ++i) {
                vSteps[i]();
                const int nCompiled = Compiled(oFrame);
                if (nRound == 0)
                    nFirst += nCompiled;
                else
                    EXPECT_EQ(nCompiled, 0) << "step " << i << " of round " << nRound;
                EXPECT_EQ(Compiled(oFrame), 0) << "the second frame of step " << i;
            }
        EXPECT_GT(nFirst, 0);
        EXPECT_NO_GL_ERROR();
    }
    static int Programs() { return CGLRecorder::Get().Living(GL_KIND_PROGRAM); }
    static int Shaders() { return CGLRecorder::Get().Living(GL_KIND_SHADER); }
    void SwitchAllPassesOn()
    {
        oDewarper.SetMaskPolygons({{{{2, 2}, {20, 2}, {20, 20}}, 0x204060FF}});
        oDewarper.SetStrings({Text("12:00", 4, 4, 16)});
        SetOutput(oDewarper, PlainPicture(16, 12, 0x00800080));
    }

    CTestFrame oFrame{AsymmetricPicture(64, 64), IMAGE_FORMAT_NV12};
    CTestDewarper oDewarper{WIDTH, HEIGHT};
};

} // namespace

TEST_F(KeptPrograms, AreThereWhenOverlaysMasksAndTextComeBack)
{
    const STestImage sLogo = PlainPicture(16, 12, 0x00800080);
    ExpectCompiledOnce(
        {[&] { SetInput(oDewarper, sLogo); }, [&] { oDewarper.SetInputOverlay(nullptr, 0, 0, 0); },
         [&] { SetOutput(oDewarper, sLogo); }, [&] { oDewarper.SetOutputOverlay(nullptr, 0, 0, 0); },
         [&] { oDewarper.SetStrings({Text("a", 0, 0, 16)}); }, [&] { SetOutput(oDewarper, sLogo); },
         [&] { oDewarper.SetStrings({}); }, [&] { oDewarper.SetOutputOverlay(nullptr, 0, 0, 0); },
         [&] {
             oDewarper.SetMaskPolygons({{{{2, 2}, {20, 2}, {20, 20}}, 0xFF}});
         },
         [&] { oDewarper.SetMaskPolygons({}); }});
}

TEST_F(KeptPrograms, AreThereWhenTheTargetHasItsSizeAgain)
{
    oDewarper.SetViewType(VIEW_PANORAMA_FULL);
    for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL}) {
        oDewarper.SetMountType(eMount);
        ExpectCompiledOnce({[&] { oDewarper.InitGL(WIDTH, HEIGHT); }, [&] { oDewarper.InitGL(90, 90); },
                            [&] { oDewarper.InitGL(30, 80); }, [&] { oDewarper.InitGL(120, 20); }});
    }
}

TEST_F(KeptPrograms, AreThereWhenViewMountAndLensComeBack)
{
    std::vector<std::function<void()>> vSteps;
    for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL})
        for (const ELensType eLens : {LENS_DSL419, LENS_DSL215})
            for (const std::string& strView : CCustomGPUDewarper::ListViewNames())
                vSteps.emplace_back([this, eMount, eLens, strView] {
                    oDewarper.SetMountType(eMount);
                    oDewarper.SetLensType(eLens);
                    oDewarper.SetViewType(CCustomGPUDewarper::FindViewType(strView));
                });
    ExpectCompiledOnce(vSteps);
}

TEST_F(KeptPrograms, AreLimitedInNumberHoweverManyTextsThereWere)
{
    const int nLost = CGLRecorder::Get().NamesLostWithContexts();
    std::set<std::string> oTexts;
    for (int i = 0; i < 220; ++i) {
        oDewarper.SetGains(1.0f + 0.01f * static_cast<float>(i), 1.0f);
        EXPECT_EQ(Compiled(oFrame, true), 2) << i;
        oTexts.insert(oDewarper.sMainShader.strFragmentShader);
        ASSERT_LE(Programs(), MOST_KEPT);
        ASSERT_EQ(Shaders(), 2 * Programs());
        ASSERT_TRUE(glIsProgram(oDewarper.sMainShader.nProgram));
        ASSERT_EQ(CGLRecorder::Get().Count("glDeleteProgram"), i < MOST_KEPT ? 0 : 1) << i;
    }
    EXPECT_EQ(oTexts.size(), 220u);
    EXPECT_EQ(Programs(), MOST_KEPT);
    // The last ones are kept, the first one is made anew and right.
    oDewarper.SetGains(1.0f + 0.01f * 200.0f, 1.0f);
    EXPECT_EQ(Compiled(oFrame, true), 0);
    oDewarper.SetGains(1.0f, 1.0f);
    EXPECT_EQ(Compiled(oFrame, true), 2);
    const STestImage sPicture = oDewarper.Picture();
    ASSERT_TRUE(oDewarper.StopGL());
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), 0);
    EXPECT_EQ(CGLRecorder::Get().NamesLostWithContexts(), nLost);
    CTestDewarper oFresh(WIDTH, HEIGHT);
    oFresh.SetGains(1.0f, 1.0f);
    ASSERT_TRUE(oFresh.SetTexture(oFrame.Image(), true, nullptr, 0));
    ASSERT_TRUE(oFresh.DrawGLScene(false));
    EXPECT_EQ(CompareImages(sPicture, oFresh.Picture()).nMax, 0);
    EXPECT_NO_GL_ERROR();
}

TEST_F(KeptPrograms, ThatAreInUseAreNeverLetGo)
{
    SwitchAllPassesOn();
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), true, nullptr, 0));
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    // Text and masks are drawn once and stand then: their programs are not used for the whole of the time.
    for (int i = 0; i < MOST_KEPT + 12; ++i) {
        oDewarper.SetGains(1.0f + 0.01f * static_cast<float>(i), 1.0f);
        ASSERT_EQ(Compiled(oFrame, true), 2) << i;
    }
    for (const SShaderProperties* pRecord :
         {&oDewarper.sMainShader, &oDewarper.sOutputOverlayShader, &oDewarper.sStringShader,
          &oDewarper.sStringCompositeShader, &oDewarper.sMaskShader, &oDewarper.sTextureToTextureShader}) {
        ASSERT_NE(pRecord->nProgram, 0u);
        EXPECT_TRUE(glIsProgram(pRecord->nProgram));
    }
    SwitchAllPassesOn(); // masks and text are to be drawn anew
    EXPECT_EQ(Compiled(oFrame, true), 0);
    EXPECT_LE(Programs(), MOST_KEPT);
    EXPECT_EQ(Shaders(), 2 * Programs());
    EXPECT_NO_GL_ERROR();
}

TEST_F(KeptPrograms, AreInAFirstFrameExactlyThoseThatDraw)
{
    for (int nLayers = 0; nLayers < 8; ++nLayers) {
        SCOPED_TRACE(nLayers);
        CTestDewarper oFirst(WIDTH, HEIGHT);
        if (nLayers & 1)
            oFirst.SetMaskPolygons({{{{2, 2}, {20, 2}, {20, 20}}, 0x204060FF}});
        if (nLayers & 2)
            oFirst.SetStrings({Text("12:00", 4, 4, 16)});
        if (nLayers & 4)
            SetOutput(oFirst, PlainPicture(16, 12, 0x00800080));
        CGLRecorder::Get().Start();
        ASSERT_TRUE(oFirst.DrawFrame(oFrame));
        std::set<int> oDrawing;
        int nCurrent = 0;
        for (const SGLCall& rCall : CGLRecorder::Get().Calls()) {
            const std::string strName = rCall.pName;
            if (strName == "glUseProgram")
                nCurrent = rCall.Int(0);
            else if (strName == "glDrawArrays")
                oDrawing.insert(nCurrent);
        }
        EXPECT_EQ(CGLRecorder::Get().Count("glLinkProgram"), static_cast<int>(oDrawing.size()));
        EXPECT_EQ(CGLRecorder::Get().Count("glCompileShader"), 2 * static_cast<int>(oDrawing.size()));
        CGLRecorder::Get().Start();
        ASSERT_TRUE(oFirst.DrawFrame(oFrame));
        EXPECT_EQ(CGLRecorder::Get().Count("glLinkProgram"), 0);
    }
    EXPECT_NO_GL_ERROR();
}
