// What each kind of request rebuilds, and what it leaves alone.
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <string>

/// What one frame did.
struct SFrameWork
{
    int nPrograms = 0;      ///< linked
    bool bNewTexts = false; ///< the view's texts were never in use before
    int nTexturesMade = 0;  ///< generated
    int nBuffersMade = 0;
    int nBuffersFilled = 0;
    int nUploads = 0; ///< texture updates
    int nMatrices = 0;
    int nDraws = 0;
};

class Requests : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(oDewarper.Started());
        oDewarper.SetLensType(LENS_DSL419);
        oDewarper.SetViewType(VIEW_VCAM);
        oDewarper.SetMountType(MOUNT_CEILING);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        DrawAndCount(oFrame);
    }

    SFrameWork DrawAndCount(CTestFrame& oWhich, bool bGain = false, SQPInfo* pQP = nullptr)
    {
        CGLRecorder& o = CGLRecorder::Get();
        o.Start();
        EXPECT_TRUE(oDewarper.SetTexture(oWhich.Image(), bGain, pQP, 0));
        EXPECT_TRUE(oDewarper.DrawGLScene(false));
        SFrameWork sWork;
        sWork.nPrograms = o.Count("glLinkProgram");
        sWork.bNewTexts =
            oTexts.insert(oDewarper.sMainShader.strVertexShader + oDewarper.sMainShader.strFragmentShader)
                .second;
        sWork.nTexturesMade = o.Count("glGenTextures");
        sWork.nBuffersMade = o.Count("glGenBuffers");
        sWork.nBuffersFilled = o.Count("glBufferData") + o.Count("glBufferSubData");
        sWork.nUploads = o.Count("glTexSubImage2D");
        sWork.nMatrices = o.Count("glUniformMatrix4fv");
        sWork.nDraws = o.Count("glDrawArrays");
        EXPECT_LE(o.Count("glGenBuffers"), o.Count("glDeleteBuffers") + nNewMeshes * 2)
            << "no buffer is lost";
        EXPECT_EQ(o.TakeErrorText(), "");
        return sWork;
    }

    /// A request that only moves the view.
    void ExpectOnlyMatrices(const SFrameWork& s)
    {
        EXPECT_EQ(s.nPrograms, 0);
        EXPECT_EQ(s.nTexturesMade, 0);
        EXPECT_EQ(s.nBuffersMade, 0);
        EXPECT_EQ(s.nBuffersFilled, 0);
        EXPECT_EQ(s.nUploads, 3);
        EXPECT_EQ(s.nMatrices, 1);
        EXPECT_EQ(s.nDraws, 1);
    }
    /// A request that takes another program, which is made once however often it comes back, and touches
    /// nothing else.
    void ExpectOnlyAProgram(const SFrameWork& s)
    {
        EXPECT_EQ(s.nPrograms, s.bNewTexts ? 1 : 0);
        EXPECT_EQ(s.nTexturesMade, 0);
        EXPECT_EQ(s.nBuffersMade, 0);
        EXPECT_EQ(s.nBuffersFilled, 0);
        EXPECT_EQ(s.nUploads, 3);
        EXPECT_EQ(s.nMatrices, 1) << "a new program needs its matrix";
        EXPECT_EQ(s.nDraws, 1);
        EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_SHADER), 2 * CGLRecorder::Get().Living(GL_KIND_PROGRAM));
    }
    void ExpectNothing(const SFrameWork& s)
    {
        EXPECT_EQ(s.nPrograms + s.nTexturesMade + s.nBuffersMade + s.nBuffersFilled + s.nMatrices, 0);
        EXPECT_EQ(s.nDraws, 1);
    }

    int nNewMeshes = 0; ///< meshes that the frame adds to those there are
    std::set<std::string> oTexts;
    CTestDewarper oDewarper{96, 64};
    CTestFrame oFrame{AsymmetricPicture(64, 64), IMAGE_FORMAT_YUV420P};
};

TEST_F(Requests, AnAbsoluteMoveIsMatrixWork)
{
    oDewarper.AbsolutePTZ(120.0f, 30.0f, 90.0f);
    ExpectOnlyMatrices(DrawAndCount(oFrame));
    ExpectNothing(DrawAndCount(oFrame));
    EXPECT_EQ(oDewarper.pParams->eLensType, LENS_DSL419) << "the lens is in force again";
}

TEST_F(Requests, ARelativeMoveIsMatrixWork)
{
    oDewarper.RelativePTZ(5.0f, 10.0f, -20.0f);
    ExpectOnlyMatrices(DrawAndCount(oFrame));
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, AnAnalogueMoveIsMatrixWorkAtEveryFrame)
{
    oDewarper.AnaloguePTZ(1.0f, 1.0f, 0.0f);
    ExpectOnlyMatrices(DrawAndCount(oFrame));
    ExpectOnlyMatrices(DrawAndCount(oFrame));
    oDewarper.AnaloguePTZ(0.0f, 0.0f, 0.0f);
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, ADragIsMatrixWork)
{
    oDewarper.OnMouseDown(0, 0);
    oDewarper.OnMouseMove(7, 9, false, false);
    ExpectOnlyMatrices(DrawAndCount(oFrame));
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, AMoveWorksWithTheLensOfTheFrameSizeToo)
{
    oDewarper.SetLensType(LENS_AUTO);
    DrawAndCount(oFrame);
    oDewarper.AbsolutePTZ(100.0f, 20.0f, 90.0f);
    ExpectOnlyMatrices(DrawAndCount(oFrame));
    EXPECT_EQ(oDewarper.pParams->eLensType, LENS_UNKNOWN);
}

TEST_F(Requests, ANewViewUploadsItsMeshOnce)
{
    oDewarper.SetViewType(VIEW_FISHEYE);
    nNewMeshes = 1;
    SFrameWork s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 0);
    EXPECT_EQ(s.nTexturesMade, 0);
    EXPECT_EQ(s.nBuffersMade, 2);
    EXPECT_EQ(s.nBuffersFilled, 2);
    // Back again: the camera still has its mesh.
    oDewarper.SetViewType(VIEW_VCAM);
    nNewMeshes = 0;
    s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nBuffersMade + s.nBuffersFilled, 0);
    EXPECT_EQ(s.nMatrices, 1);
}

TEST_F(Requests, ANewMountTurnsTheCameraWithoutANewMesh)
{
    oDewarper.SetMountType(MOUNT_WALL);
    ExpectOnlyMatrices(DrawAndCount(oFrame));
    EXPECT_EQ(oDewarper.pParams->fTilt, 90.0f);
}

TEST_F(Requests, ANewLensBuildsTheMeshAnew)
{
    oDewarper.SetLensType(LENS_DSL215);
    const SFrameWork s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 0);
    EXPECT_EQ(s.nTexturesMade, 0);
    EXPECT_EQ(s.nBuffersMade, 2);
    EXPECT_EQ(s.nBuffersFilled, 2);
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, ANewLensInAPanoramaBringsItsClipRule)
{
    oDewarper.SetViewType(VIEW_PANORAMA_DUAL);
    nNewMeshes = 1;
    DrawAndCount(oFrame);
    nNewMeshes = 0;
    oDewarper.SetLensType(LENS_DSL239);
    SFrameWork s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 1);
    EXPECT_NE(oDewarper.sMainShader.strFragmentShader.find("v_TexCoordinate.y<0.0"), std::string::npos);
    oDewarper.SetLensType(LENS_DSL419);
    s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 0) << "the program of before";
    EXPECT_EQ(oDewarper.sMainShader.strFragmentShader.find("v_TexCoordinate.y<0.0"), std::string::npos);
}

TEST_F(Requests, ANewFilterRebuildsNothing)
{
    oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
    ExpectNothing(DrawAndCount(oFrame));
    int nLinear = 0;
    for (const SGLCall& sCall : CGLRecorder::Get().Named("glTexParameteri"))
        nLinear += sCall.Int(2) == GL_LINEAR ? 1 : 0;
    EXPECT_EQ(nLinear, 6) << "both filters of three planes";
}

TEST_F(Requests, ColourRequestsTakeAProgramOfTheirTextEach)
{
    const std::function<void()> aRequests[] = {
        [this] { oDewarper.SetYUVparams(YUV_SPACE_BT709, YUV_RANGE_FULL); },
        [this] { oDewarper.SetYUVparams(YUV_SPACE_BT709, YUV_RANGE_LIMITED); },
        [this] { oDewarper.SetYUVLevels(20, 230, 20); },
        [this] { oDewarper.SetGains(1.25f, 1.5f); },
        [this] { oDewarper.SetFlip(true, false); },
        [this] { oDewarper.SetFlip(true, true); },
    };
    for (std::size_t i = 0; i < std::size(aRequests); ++i) {
        SCOPED_TRACE("request " + std::to_string(i));
        aRequests[i]();
        ExpectOnlyAProgram(DrawAndCount(oFrame));
        ExpectNothing(DrawAndCount(oFrame));
    }
}

TEST_F(Requests, TheGainSwitchOfAFrameWritesANewProgram)
{
    ExpectOnlyAProgram(DrawAndCount(oFrame, true));
    ExpectNothing(DrawAndCount(oFrame, true));
    ExpectOnlyAProgram(DrawAndCount(oFrame, false));
}

TEST_F(Requests, AskingForWhatIsInForceRebuildsNothing)
{
    oDewarper.SetViewType(VIEW_VCAM);
    oDewarper.SetMountType(MOUNT_CEILING);
    oDewarper.SetLensType(LENS_DSL419);
    oDewarper.SetInterpolationType(INTERPOLATION_NEAREST);
    oDewarper.SetYUVparams(YUV_SPACE_AUTO, YUV_RANGE_AUTO);
    oDewarper.SetFlip(false, false);
    oDewarper.SetRotation(0);
    oDewarper.SetGains(1.1765f, 2.0f);
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, ARotationTurnsThePictureWithTheMeshThereIs)
{
    oDewarper.SetViewType(VIEW_FISHEYE);
    nNewMeshes = 1;
    DrawAndCount(oFrame);
    nNewMeshes = 0;
    oDewarper.SetRotation(90);
    const SFrameWork s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nTexturesMade + s.nBuffersMade + s.nBuffersFilled, 0);
    EXPECT_EQ(s.nMatrices, 1);
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, ANewFrameSizeRebuildsTexturesAndMeshOnceAndKeepsTheProgram)
{
    CTestFrame oLarge(AsymmetricPicture(80, 72), IMAGE_FORMAT_YUV420P);
    const SFrameWork s = DrawAndCount(oLarge);
    EXPECT_EQ(s.nPrograms, 0) << "its texts say nothing of sizes";
    EXPECT_EQ(s.nTexturesMade, 3);
    EXPECT_EQ(s.nBuffersMade, 2);
    EXPECT_EQ(CGLRecorder::Get().Count("glDeleteTextures"), 3);
    const SFrameWork sNext = DrawAndCount(oLarge);
    ExpectNothing(sNext);
    EXPECT_EQ(sNext.nUploads, 3);
}

TEST_F(Requests, ANewFormatRebuildsTexturesAndProgramOnce)
{
    CTestFrame oPacked(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGBA32);
    const SFrameWork s = DrawAndCount(oPacked);
    EXPECT_EQ(s.nPrograms, 1);
    EXPECT_EQ(s.nTexturesMade, 1);
    const SFrameWork sNext = DrawAndCount(oPacked);
    ExpectNothing(sNext);
    EXPECT_EQ(sNext.nUploads, 1);
}

TEST_F(Requests, ANewTargetSizeMovesTheProjectionOnly)
{
    ASSERT_TRUE(oDewarper.InitGL(80, 80));
    const SFrameWork s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 0);
    EXPECT_EQ(s.nBuffersMade + s.nBuffersFilled, 0);
    EXPECT_EQ(s.nMatrices, 1);
    EXPECT_EQ(oDewarper.Picture().nWidth, 80);
    EXPECT_EQ(oDewarper.Picture().nHeight, 80);
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, APanoramaFollowsANewTargetSizeWithItsClipBands)
{
    oDewarper.SetViewType(VIEW_PANORAMA_QUARTER);
    nNewMeshes = 1;
    DrawAndCount(oFrame);
    nNewMeshes = 0;
    EXPECT_EQ(oDewarper.sMainShader.anClipPlanes[0], -1);
    ASSERT_TRUE(oDewarper.InitGL(200, 64));
    SFrameWork s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 1);
    // The strip's quarter is 25 / 14 as wide as high: 200 - 114.28 leaves bands of 42.
    EXPECT_EQ(oDewarper.sMainShader.anClipPlanes[0], 42);
    EXPECT_EQ(oDewarper.sMainShader.anClipPlanes[1], 158);
    s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 0);
    EXPECT_EQ(s.nDraws, 2);
}

TEST_F(Requests, QuantiserDataRebuildTheProgramOnceWhenTheyComeAndWhenTheyGo)
{
    SQPInfo sQP;
    sQP.nWidth = sQP.nStride = 4;
    sQP.nHeight = 4;
    sQP.pQP = new unsigned char[16]();
    sQP.pMBType = new unsigned char[16]();
    sQP.pMotion = new unsigned int[16]();
    SFrameWork s = DrawAndCount(oFrame, false, &sQP);
    EXPECT_EQ(s.nPrograms, 1);
    EXPECT_EQ(s.nTexturesMade, 5) << "the planes anew, and two more";
    EXPECT_EQ(s.nUploads, 5);
    s = DrawAndCount(oFrame, false, &sQP);
    ExpectNothing(s);
    EXPECT_EQ(s.nUploads, 5);
    // A frame without data keeps what there is; a record without data ends it.
    ExpectNothing(DrawAndCount(oFrame));
    SQPInfo sNone;
    s = DrawAndCount(oFrame, false, &sNone);
    EXPECT_EQ(s.nPrograms, 0) << "the program of before";
    EXPECT_EQ(s.nUploads, 3);
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, QuantiserDataMayChangeTheirSizeOrLackTheirTypes)
{
    SQPInfo sQP;
    for (const int nSize : {4, 7, 3}) {
        SQPInfo sNext;
        sNext.nWidth = nSize;
        sNext.nHeight = nSize;
        sNext.nStride = nSize + 1;
        const std::size_t nBytes = static_cast<std::size_t>(nSize) * static_cast<std::size_t>(nSize + 1);
        sNext.pQP = new unsigned char[nBytes]();
        sNext.pMBType = new unsigned char[nBytes]();
        sNext.pMotion = new unsigned int[nBytes]();
        EXPECT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, &sNext, 0));
        EXPECT_TRUE(oDewarper.DrawGLScene(false));
        EXPECT_EQ(oDewarper.anTextureUnitSize[3][0], nSize);
        EXPECT_EQ(oDewarper.anTextureUnitSize[4][1], nSize);
    }
    sQP.nWidth = sQP.nHeight = sQP.nStride = 3;
    sQP.pQP = new unsigned char[9]();
    EXPECT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, &sQP, 0));
    EXPECT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(CGLRecorder::Get().TakeErrorText(), "");
}

TEST_F(Requests, MovesInTheDualPanoramaRefillItsMesh)
{
    oDewarper.SetViewType(VIEW_PANORAMA_DUAL);
    nNewMeshes = 1;
    DrawAndCount(oFrame);
    nNewMeshes = 0;
    oDewarper.AbsolutePTZ(20.0f, 10.0f, 180.0f);
    const SFrameWork s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms + s.nTexturesMade + s.nBuffersMade, 0);
    EXPECT_EQ(s.nBuffersFilled, 2);
    EXPECT_EQ(s.nMatrices, 1);
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, TheWallPanoramaRefillsItsMeshForPanAndInclinationButNotForTilt)
{
    oDewarper.SetViewType(VIEW_PANORAMA_FULL);
    oDewarper.SetMountType(MOUNT_WALL);
    nNewMeshes = 1;
    DrawAndCount(oFrame);
    nNewMeshes = 0;
    oDewarper.AbsolutePTZ(0.0f, 20.0f, 180.0f);
    ExpectOnlyMatrices(DrawAndCount(oFrame));
    oDewarper.AbsolutePTZ(15.0f, 20.0f, 180.0f);
    SFrameWork s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms + s.nBuffersMade, 0);
    EXPECT_EQ(s.nBuffersFilled, 2);
    // An inclined camera also cuts what lies behind it.
    oDewarper.SetMountTilt(12.0f);
    s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 1);
    EXPECT_EQ(s.nBuffersMade, 0);
    EXPECT_EQ(s.nBuffersFilled, 2);
    EXPECT_NE(oDewarper.sMainShader.strFragmentShader.find("gl_FragCoord.z<0.475"), std::string::npos);
    oDewarper.SetStrictTiltLimits(false);
    s = DrawAndCount(oFrame);
    EXPECT_EQ(s.nPrograms, 0);
    EXPECT_EQ(s.nBuffersFilled, 2);
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, TheSpaceAndRangeOfTheFrameItselfAreFollowed)
{
    CTestFrame oOther(AsymmetricPicture(64, 64), IMAGE_FORMAT_YUV420P, 0, YUV_SPACE_BT709, true);
    ExpectOnlyAProgram(DrawAndCount(oOther));
    ExpectNothing(DrawAndCount(oOther));
    // A host's own choice beats the frame's.
    oDewarper.SetYUVparams(YUV_SPACE_BT2020, YUV_RANGE_FULL);
    ExpectOnlyAProgram(DrawAndCount(oOther));
    ExpectNothing(DrawAndCount(oFrame));
}

TEST_F(Requests, ASecondStartDrawsTheSameSizeAgain)
{
    oDewarper.AbsolutePTZ(70.0f, 30.0f, 100.0f);
    DrawAndCount(oFrame);
    const STestImage sBefore = oDewarper.Picture();
    ASSERT_TRUE(oDewarper.StopGL());
    ASSERT_TRUE(oDewarper.StartGL());
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(CompareImages(sBefore, oDewarper.Picture()).nMax, 0);
    EXPECT_EQ(CGLRecorder::Get().TakeErrorText(), "");
}

TEST_F(Requests, FreedGLObjectsComeBackWithTheNextFrame)
{
    const STestImage sBefore = oDewarper.Picture();
    for (const bool bReinitialize : {false, true}) {
        if (bReinitialize)
            oDewarper.ReinitializeOpenGLObjects();
        else
            oDewarper.FreeOpenGLObjects();
        EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_BUFFER), 0);
        EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_PROGRAM), 0);
        EXPECT_EQ(oDewarper.nTextureY, 0u);
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(CompareImages(sBefore, oDewarper.Picture()).nMax, 0);
    }
}
