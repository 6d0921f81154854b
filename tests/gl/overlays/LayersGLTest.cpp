// All layers together: over restarts, and in frames on which nothing changes.
#include "tests/gl/overlays/OverlayTools.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>

static const int WIDTH = 120;
static const int HEIGHT = 90;

/// Every layer at once.
class Layers : public testing::Test
{
protected:
    void SetAll()
    {
        SetInput(oDewarper, sInput);
        SetOutput(oDewarper, sOutput);
        oDewarper.SetStrings(vStrings);
    }

    STestImage Wanted(bool bMask) const
    {
        STestImage sWanted = sFrame;
        if (bMask)
            FillRect(sWanted, {20, 30, 40, 20}, 0xFF8000FF);
        else
            Blend(sWanted, sInput);
        DrawText(sWanted, vStrings);
        Blend(sWanted, sOutput);
        return sWanted;
    }

    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    const STestImage sInput = PatternPicture(WIDTH, HEIGHT, 140);
    const STestImage sOutput = [] {
        STestImage sImage = PlainPicture(WIDTH, HEIGHT, 0);
        FillRect(sImage, {100, 0, 20, 60}, 0x40FFFF80);
        return sImage;
    }();
    const TStrings vStrings = {Text("Ag", 4, 5, 64, 0xFFFFFFFF), Text("71", 82, 50, 32, 0x40FF40FF)};
    const TPolygons vMasks = {{{{20, 30}, {60, 30}, {60, 50}, {20, 50}}, 0xFF8000FF}};
    SFlatView oView{sFrame};
    CTestDewarper& oDewarper = oView.oDewarper;
};

TEST_F(Layers, ComeBackByThemselvesAfterARestart)
{
    SetAll();
    ASSERT_LE(CompareImages(oView.Draw(), Wanted(false)).nMax, 1);
    for (int i = 0; i < 12; ++i) {
        SCOPED_TRACE(i);
        if (i == 6)
            oDewarper.SetMaskPolygons(vMasks);
        if (i % 3 == 0)
            oDewarper.FreeOpenGLObjects();
        else if (i % 3 == 1)
            oDewarper.ReinitializeOpenGLObjects();
        else {
            ASSERT_TRUE(oDewarper.StopGL());
            EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), 0);
            ASSERT_TRUE(oDewarper.StartGL());
        }
        EXPECT_LE(CompareImages(oView.Draw(), Wanted(i >= 6)).nMax, 1);
        EXPECT_NO_GL_ERROR();
    }
    // The same without an output overlay, where text goes straight to the target.
    oDewarper.SetOutputOverlay(nullptr, 0, 0, 0);
    STestImage sWanted = sFrame;
    FillRect(sWanted, {20, 30, 40, 20}, 0xFF8000FF);
    DrawText(sWanted, vStrings);
    ASSERT_TRUE(oDewarper.StopGL());
    ASSERT_TRUE(oDewarper.StartGL());
    EXPECT_LE(CompareImages(oView.Draw(), sWanted).nMax, 1);
}

TEST_F(Layers, MayBeSetAndClearedWhileGLIsDown)
{
    SetAll();
    oView.Draw();
    ASSERT_TRUE(oDewarper.StopGL());
    CGLRecorder::Get().Start();
    oDewarper.SetInputOverlay(nullptr, 0, 0, 0);
    oDewarper.SetOutputOverlay(nullptr, 0, 0, 0);
    oDewarper.SetStrings(TStrings());
    oDewarper.SetMaskPolygons(vMasks);
    SetAll();
    STestImage sPart = sOutput;
    FillRect(sPart, {0, 80, 9, 9}, 0x0000FFFF);
    SetOutput(oDewarper, sPart, {{0, 80, 9, 9}});
    EXPECT_EQ(GLCalls(), 0);
    ASSERT_TRUE(oDewarper.StartGL());
    STestImage sWanted = Wanted(true);
    FillRect(sWanted, {0, 80, 9, 9}, 0x0000FFFF);
    EXPECT_LE(CompareImages(oView.Draw(), sWanted).nMax, 1);
}

TEST_F(Layers, ASteadyFrameMakesNothingUploadsNothingAndTakesNoMemory)
{
    SetAll();
    oDewarper.SetMaskPolygons(vMasks);
    for (int i = 0; i < 3; ++i)
        oView.Draw();
    CGLRecorder& oRecorder = CGLRecorder::Get();
    oRecorder.Start();
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(NamesTouched(), 0) << oRecorder.Dump();
    EXPECT_EQ(oRecorder.CountPrefix("glTexImage") + oRecorder.CountPrefix("glTexSubImage"), 0);
    EXPECT_EQ(oRecorder.Count("glBufferData") + oRecorder.Count("glCompileShader"), 0);
    // View, copy, two areas of text, output overlay.
    EXPECT_EQ(oRecorder.Count("glDrawArrays"), 1 + 1 + 2 + 1);
    oRecorder.Stop();
    CHeapCounter oHeap;
    const bool bDrawn =
        oDewarper.SetTexture(oView.oFrame.Image(), false, nullptr, 1) && oDewarper.DrawGLScene(false);
    EXPECT_EQ(oHeap.Count(), 0);
    EXPECT_TRUE(bDrawn);
}
