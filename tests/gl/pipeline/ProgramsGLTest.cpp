// When the main program is rebuilt, and what happens when it cannot be built.
#include "platform/ShaderDialect.h"
#include "tests/support/TestDewarper.h"

#include <GLES3/gl31.h>
#include <gtest/gtest.h>

class Programs : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(oDewarper.Started()); }
    int LinkedInNextFrame()
    {
        CGLRecorder::Get().Start();
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        return CGLRecorder::Get().Count("glLinkProgram");
    }
    /// No later shader compiles.
    static void BreakTheCompiler() { CGLRecorder::Get().Inject("GL_COMPILE_STATUS", 0.0, 0, 1000); }

    CTestDewarper oDewarper{64, 48};
    CTestFrame oFrame{AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12};
};

TEST_F(Programs, TheFirstFrameBuildsThoughNoRequestDiffers)
{
    EXPECT_FALSE(oDewarper.bShadersLoaded);
    EXPECT_EQ(LinkedInNextFrame(), 1);
    EXPECT_TRUE(oDewarper.bShadersLoaded);
    EXPECT_EQ(LinkedInNextFrame(), 0);
    EXPECT_EQ(oDewarper.CheckLoadShaders(), 0);
}

TEST_F(Programs, TheDriverIsHandedTheGivenTextFirst)
{
    // Save where a driver is known to run another precision faster.
    SetShaderPrecisionAdaption(false);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    SetShaderPrecisionAdaption(true);
    const std::vector<SGLCall> vTexts = CGLRecorder::Get().Named("glShaderSource");
    ASSERT_GE(vTexts.size(), 2u);
    EXPECT_EQ(vTexts[0].strText, oDewarper.sMainShader.strVertexShader);
    EXPECT_EQ(vTexts[1].strText, oDewarper.sMainShader.strFragmentShader);
}

TEST_F(Programs, SamplersAreBoundToTheirUnits)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    GLint nUnit = -1;
    const unsigned int nProgram = oDewarper.sMainShader.nProgram;
    glGetUniformiv(nProgram, glGetUniformLocation(nProgram, "samplerY"), &nUnit);
    EXPECT_EQ(nUnit, 0);
    glGetUniformiv(nProgram, glGetUniformLocation(nProgram, "samplerUV"), &nUnit);
    EXPECT_EQ(nUnit, 1);
    EXPECT_GE(oDewarper.sMainShader.nPositionLocation, 0);
    EXPECT_GE(oDewarper.sMainShader.nTexCoordLocation, 0);
    EXPECT_GE(oDewarper.sMainShader.nMVPMatrixLocation, 0);
}

TEST_F(Programs, AGainOfMinusZeroIsAGainOfZero)
{
    oDewarper.SetGains(0.0f, 1.0f);
    EXPECT_EQ(LinkedInNextFrame(), 1);
    oDewarper.SetGains(-0.0f, 1.0f);
    EXPECT_EQ(LinkedInNextFrame(), 0);
}

TEST_F(Programs, AnInputOverlayWithoutSizeLeavesItsSamplerUnbound)
{
    oDewarper.sMainShader.bInputOverlay = true;
    CGLRecorder::Get().Start();
    ASSERT_EQ(oDewarper.sInputOverlay.nWidth, 0);
    // A frame must be known before a text can be written.
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    ASSERT_EQ(oDewarper.CheckLoadShaders(), 1);
    EXPECT_NE(oDewarper.sMainShader.strFragmentShader.find("samplerInputOverlay"), std::string::npos);
    for (const SGLCall& sCall : CGLRecorder::Get().Named("glGetUniformLocation"))
        EXPECT_NE(sCall.strText, "samplerInputOverlay");
}

TEST_F(Programs, AFailedFirstBuildIsTriedAgainAtEveryFrame)
{
    CLogCapture oLog;
    BreakTheCompiler();
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    EXPECT_FALSE(oDewarper.DrawGLScene(false));
    EXPECT_FALSE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(oDewarper.CheckLoadShaders(), -1);
    EXPECT_FALSE(oDewarper.bShadersLoaded);
    CGLRecorder::Get().ClearInjections();
    EXPECT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_TRUE(oDewarper.bShadersLoaded);
    EXPECT_NO_GL_ERROR();
}

TEST_F(Programs, AFragmentTextThatFailsLeavesBothNamesOnRecordButDeleted)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    // The vertex shader compiles, nothing after it does.
    CGLRecorder::Get().Inject("GL_COMPILE_STATUS", 0.0, 1, 1000);
    oDewarper.SetFlip(true, false);
    EXPECT_EQ(oDewarper.CheckLoadShaders(), -1);
    EXPECT_NE(oDewarper.sMainShader.nVertexShader, 0u);
    EXPECT_NE(oDewarper.sMainShader.nFragmentShader, 0u);
    EXPECT_FALSE(glIsShader(oDewarper.sMainShader.nVertexShader));
    EXPECT_FALSE(glIsShader(oDewarper.sMainShader.nFragmentShader));
    EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_PROGRAM), 1) << "the one before is kept";
    CGLRecorder::Get().ClearInjections();
    // The request was taken over: nothing is to be done until the next one. Nor can anything be drawn.
    EXPECT_EQ(oDewarper.CheckLoadShaders(), 0);
    EXPECT_FALSE(oDewarper.DrawGLScene(false));
    oDewarper.SetFlip(false, false);
    EXPECT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_SHADER), 2);
    EXPECT_NO_GL_ERROR();
}

TEST_F(Programs, AProgramThatDoesNotLinkIsDeleted)
{
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    CGLRecorder::Get().Inject("GL_LINK_STATUS", 0.0, 0, 1);
    SShaderProperties sRecord;
    sRecord.strVertexShader = "#version 310 es\nvoid main() { gl_Position = vec4(0.0); }\n";
    sRecord.strFragmentShader =
        "#version 310 es\nprecision mediump float;\nout vec4 c;\nvoid main() { c = vec4(1.0); }\n";
    EXPECT_EQ(oDewarper.LoadShaderPrograms(sRecord), -3);
    EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_SHADER), 0);
    EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_PROGRAM), 0);
    EXPECT_EQ(oDewarper.LoadShaderPrograms(sRecord), 0);
    sRecord.Free();
    EXPECT_EQ(CGLRecorder::Get().Living(GL_KIND_SHADER), 0);
    EXPECT_NO_GL_ERROR();
}

TEST_F(Programs, CompileErrorsAreLoggedWithTheDriversWords)
{
    SShaderProperties sRecord;
    sRecord.strVertexShader = "#version 310 es\nvoid main() { this is no shader }\n";
    CLogCapture oLog;
    EXPECT_EQ(oDewarper.LoadShaderPrograms(sRecord), -1);
    EXPECT_TRUE(oLog.Contains("LoadShaderPrograms: vertex shader error is: ")) << oLog.Text();
    sRecord.strVertexShader = "#version 310 es\nvoid main() { gl_Position = vec4(0.0); }\n";
    sRecord.strFragmentShader = "#version 310 es\nnonsense\n";
    oLog.Clear();
    EXPECT_EQ(oDewarper.LoadShaderPrograms(sRecord), -2);
    EXPECT_TRUE(oLog.Contains("LoadShaderPrograms: fragment shader error is: ")) << oLog.Text();
    for (const SLogLine& sLine : oLog.Lines()) {
        EXPECT_EQ(sLine.nPriority, 4);
        EXPECT_EQ(sLine.strTag, "LUMORVIDEOMANAGER_DEWRAP");
    }
}

TEST_F(Programs, ShaderTextsAreLoggedWhenAskedFor)
{
    for (const bool bLog : {false, true}) {
        oDewarper.SetLogShaderCode(bLog);
        oDewarper.SetFlip(bLog, false);
        CLogCapture oLog;
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(oLog.Contains("LoadShaderPrograms: Vertex Shader:"), bLog);
        EXPECT_EQ(oLog.Contains("LoadShaderPrograms: Fragment Shader:"), bLog);
    }
}

TEST_F(Programs, EveryFormatSpaceRangeGainAndQuantiserTextCompiles)
{
    SQPInfo sQP;
    sQP.nWidth = sQP.nHeight = sQP.nStride = 2;
    sQP.pQP = new unsigned char[4]();
    sQP.pMBType = new unsigned char[4]();
    sQP.pMotion = new unsigned int[4]();
    SQPInfo sNone;
    for (const int nFormat :
         {IMAGE_FORMAT_RGB24, IMAGE_FORMAT_BGR24, IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P,
          IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_BGRA32, IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_NV21}) {
        CTestFrame oAny(AsymmetricPicture(16, 16), nFormat);
        for (int i = 0; i < 32; ++i) {
            oDewarper.SetYUVparams(static_cast<EYUVSpace>(1 + i / 8), static_cast<EYUVRange>(1 + i / 4 % 2));
            const bool bQP = nFormat == IMAGE_FORMAT_YUV420P && i % 2 != 0;
            ASSERT_TRUE(oDewarper.SetTexture(oAny.Image(), i / 2 % 2 != 0, bQP ? &sQP : &sNone, 0));
            EXPECT_TRUE(oDewarper.DrawGLScene(false)) << "format " << nFormat << " variant " << i;
        }
    }
    for (const SGLErrorNote& sError : CGLRecorder::Get().TakeErrors())
        EXPECT_EQ(sError.strCall, "glTexSubImage2D") << "only blue-first uploads may be refused";
}

TEST_F(Programs, LevelsThatGiveWholeNumbersDraw)
{
    oDewarper.SetYUVparams(YUV_SPACE_BT601, YUV_RANGE_LIMITED);
    oDewarper.SetYUVLevels(0, 255, 0);
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_NE(oDewarper.sMainShader.strFragmentShader.find("(y-0)/1;"), std::string::npos)
        << "the record keeps the text as it was written";
    EXPECT_NO_GL_ERROR();
}
