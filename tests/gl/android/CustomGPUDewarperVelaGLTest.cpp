// Start and stop of the Android class: what it makes, in which order, what it says when that fails.
#include "TestVela.h"

#include <EGL/egl.h>
#include <cstdint>

namespace
{

/// How many calls of eglGetError a start makes before the one that follows another call.
int ErrorQueriesBefore(const char* pCall)
{
    CGLRecorder& oRecorder = CGLRecorder::Get();
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(16, 16);
    oRecorder.Start();
    oDewarper.StartGL();
    int nQueries = 0;
    for (const SGLCall& rCall : oRecorder.Calls()) {
        if (std::string(rCall.pName) == pCall)
            return nQueries;
        nQueries += std::string(rCall.pName) == "eglGetError";
    }
    return -1;
}

} // namespace

TEST(CustomGPUDewarperVela, MembersStartUnset)
{
    CCustomGPUDewarperVela oDewarper;
    EXPECT_EQ(oDewarper.nTargetWidth, 0);
    EXPECT_EQ(oDewarper.nTargetHeight, 0);
    EXPECT_EQ(oDewarper.nNumConfigs, 0);
    EXPECT_EQ(oDewarper.mConfig, nullptr);
    EXPECT_EQ(oDewarper.mSurface, EGL_NO_SURFACE);
    EXPECT_EQ(oDewarper.mContext, EGL_NO_CONTEXT);
    EXPECT_EQ(oDewarper.mDisplay, EGL_NO_DISPLAY);
    EXPECT_EQ(oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
    EXPECT_EQ(oDewarper.mOutputImage, EGL_NO_IMAGE_KHR);
    EXPECT_EQ(oDewarper.mSync, EGL_NO_SYNC_KHR);
    EXPECT_FALSE(oDewarper.bExternalTarget);
    EXPECT_EQ(oDewarper.nInputTexture, 0u);
    EXPECT_EQ(oDewarper.nRenderbuffer, 0u);
    EXPECT_EQ(oDewarper.nFramebuffer, 0u);
    EXPECT_FALSE(oDewarper.mDrawToTexture);
    EXPECT_EQ(oDewarper.nStringsState, -1);
    EXPECT_FALSE(oDewarper.bLogShaderCode);
    EXPECT_FALSE(oDewarper.bGLStarted);
}

TEST(CustomGPUDewarperVela, LifeIsLogged)
{
    CLogCapture oLog;
    {
        CCustomGPUDewarperVela oDewarper;
        ASSERT_EQ(oLog.Lines().size(), 1u);
        ExpectLine(oLog, 0, INFO_PRIORITY, "CCustomGPUDewarperVela: Enter");
        oLog.Clear();
    }
    ASSERT_EQ(oLog.Lines().size(), 2u);
    ExpectLine(oLog, 0, INFO_PRIORITY, "~CCustomGPUDewarperVela: DeInitialize the OpenGLES");
    ExpectLine(oLog, 1, INFO_PRIORITY, "StopGL: Stop OpenGLES");
}

TEST(CustomGPUDewarperVela, TargetSizeIsTheGivenOneBeforeAndAfterTheStart)
{
    CCustomGPUDewarperVela oDewarper;
    EXPECT_TRUE(oDewarper.InitGL(123, 45));
    EXPECT_EQ(CGLRecorder::Get().CountPrefix("gl") + CGLRecorder::Get().CountPrefix("egl"), 0);
    int nWidth = 0;
    int nHeight = 0;
    EXPECT_TRUE(oDewarper.GetTargetWidthHeight(nWidth, nHeight));
    EXPECT_EQ(nWidth, 123);
    EXPECT_EQ(nHeight, 45);
    ASSERT_TRUE(oDewarper.StartGL());
    EGLint nSurfaceWidth = 0;
    EGLint nSurfaceHeight = 0;
    eglQuerySurface(oDewarper.mDisplay, oDewarper.mSurface, EGL_WIDTH, &nSurfaceWidth);
    eglQuerySurface(oDewarper.mDisplay, oDewarper.mSurface, EGL_HEIGHT, &nSurfaceHeight);
    EXPECT_EQ(nSurfaceWidth, 123);
    EXPECT_EQ(nSurfaceHeight, 45);
    EXPECT_TRUE(oDewarper.GetTargetWidthHeight(nWidth, nHeight));
    EXPECT_EQ(nWidth, 123);
}

TEST(CustomGPUDewarperVela, StartSaysWhatItMakes)
{
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(640, 360);
    CLogCapture oLog;
    ASSERT_TRUE(oDewarper.StartGL());
    ASSERT_EQ(oLog.Lines().size(), 6u) << oLog.Text();
    ExpectLine(oLog, 0, INFO_PRIORITY, "StartGL: Enter");
    EGLint nMajor = 0;
    EGLint nMinor = 0;
    std::sscanf(eglQueryString(oDewarper.mDisplay, EGL_VERSION), "%d.%d", &nMajor, &nMinor);
    ExpectLine(oLog, 1, INFO_PRIORITY,
               "StartGL: egl major version is: " + std::to_string(nMajor) +
                   " and minro is: " + std::to_string(nMinor));
    ExpectLine(oLog, 2, INFO_PRIORITY,
               "StartGL: egl numconfig returned is: " + std::to_string(oDewarper.nNumConfigs));
    ExpectLine(oLog, 3, INFO_PRIORITY, "StartGL: Creating a surface of width is: 640 and height is: 360");
    ExpectLine(oLog, 4, INFO_PRIORITY, "StartGL: GetPTZ values are: 0.000000, 0.000000, 180.000000");
    ExpectLine(oLog, 5, INFO_PRIORITY, "StartGL: Initialized the OpenGLES");
    EXPECT_EQ(oDewarper.nNumConfigs, 1);
}

TEST(CustomGPUDewarperVela, StartAsksForTheListedConfiguration)
{
    CGLRecorder& oRecorder = CGLRecorder::Get();
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(16, 16);
    oRecorder.Start();
    ASSERT_TRUE(oDewarper.StartGL());
    const std::vector<SGLCall> vChoices = oRecorder.Named("eglChooseConfig");
    ASSERT_EQ(vChoices.size(), 1u);
    EXPECT_EQ(vChoices[0].Int(3), 1) << "one configuration is asked for";
    const auto* const pList =
        reinterpret_cast<const EGLint*>(static_cast<std::uintptr_t>(vChoices[0].aArgs[1]));
    const EGLint aExpected[] = {EGL_SURFACE_TYPE,
                                EGL_PBUFFER_BIT,
                                EGL_RED_SIZE,
                                5,
                                EGL_GREEN_SIZE,
                                6,
                                EGL_BLUE_SIZE,
                                5,
                                EGL_RENDERABLE_TYPE,
                                EGL_OPENGL_ES2_BIT,
                                EGL_CONFORMANT,
                                EGL_OPENGL_ES2_BIT,
                                EGL_COLOR_BUFFER_TYPE,
                                EGL_RGB_BUFFER,
                                EGL_LUMINANCE_SIZE,
                                0,
                                EGL_NONE};
    for (std::size_t i = 0; i < std::size(aExpected); ++i)
        EXPECT_EQ(pList[i], aExpected[i]) << "entry " << i;
    const char* const aOrder[] = {"eglGetDisplay",   "eglInitialize",           "eglBindAPI",
                                  "eglChooseConfig", "eglCreatePbufferSurface", "eglCreateContext",
                                  "eglMakeCurrent"};
    for (std::size_t i = 0; i + 1 < std::size(aOrder); ++i)
        EXPECT_LT(oRecorder.Find(aOrder[i]), oRecorder.Find(aOrder[i + 1])) << aOrder[i];
    EXPECT_EQ(oRecorder.Named("eglCreateContext")[0].Int(2), 0) << "shared with no other context";
    EGLint nVersion = 0;
    eglQueryContext(oDewarper.mDisplay, oDewarper.mContext, EGL_CONTEXT_CLIENT_VERSION, &nVersion);
    EXPECT_EQ(nVersion, 2);
    EXPECT_EQ(eglGetCurrentContext(), oDewarper.mContext);
    EXPECT_EQ(eglGetCurrentSurface(EGL_DRAW), oDewarper.mSurface);
}

TEST(CustomGPUDewarperVela, StartHasEverythingMadeAnew)
{
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(16, 16);
    oDewarper.bExternalTarget = true;
    oDewarper.bSceneInitialized = true;
    ASSERT_TRUE(oDewarper.StartGL());
    EXPECT_TRUE(oDewarper.bGLStarted);
    EXPECT_FALSE(oDewarper.bExternalTarget);
    EXPECT_FALSE(oDewarper.bSceneInitialized);
    EXPECT_TRUE(oDewarper.bTexturesNeedInit);
    EXPECT_TRUE(oDewarper.sMainShader.bForceReload);
    EXPECT_TRUE(oDewarper.bViewSetupRequired);
    EXPECT_TRUE(oDewarper.bResetObjects);
    EXPECT_TRUE(oDewarper.bAbsolutePTZPending);
    EXPECT_NE(oDewarper.nFramebuffer, 0u);
    EXPECT_NE(oDewarper.nRenderbuffer, 0u);
    EXPECT_EQ(oDewarper.nInputTexture, 0u);
}

TEST(CustomGPUDewarperVela, EveryStepOfTheStartMayFail)
{
    struct SStep
    {
        const char* pCall;
        double fResult;
        int nSkip;
        int nTimes;
        const char* pLine; ///< null: none
        int nPriority;
    };
    const SStep aSteps[] = {
        {"eglGetDisplay", 0, 0, 1, "StartGL: Error getting the display", ERROR_PRIORITY},
        {"eglInitialize", 0, 0, 1, "StartGL: Error in opengl es init", ERROR_PRIORITY},
        {"eglBindAPI", 0, 0, 1, "StartGL: Error in eslbind", ERROR_PRIORITY},
        {"eglGetError", EGL_BAD_ALLOC, ErrorQueriesBefore("eglChooseConfig") - 1, 1, "StartGL failed (3003).",
         INFO_PRIORITY},
        {"eglChooseConfig", 0, 0, 1, "StartGL: Error choosing the config", ERROR_PRIORITY},
        {"eglCreatePbufferSurface", 0, 0, 1, "StartGL: Error creating surface", ERROR_PRIORITY},
        // Asked for in version 2, then in version 3.
        {"eglCreateContext", 0, 0, 2, "StartGL: Error creating surface", ERROR_PRIORITY},
        {"eglMakeCurrent", 0, 0, 1, nullptr, 0},
        {"eglGetError", EGL_CONTEXT_LOST, ErrorQueriesBefore("eglMakeCurrent"), 1, "StartGL failed4 (300e).",
         INFO_PRIORITY},
    };
    const SLiving sBefore;
    for (const SStep& rStep : aSteps) {
        SCOPED_TRACE(std::string(rStep.pCall) + (rStep.pLine != nullptr ? rStep.pLine : ""));
        {
            CCustomGPUDewarperVela oDewarper;
            oDewarper.InitGL(16, 16);
            CGLRecorder::Get().Start();
            CGLRecorder::Get().Inject(rStep.pCall, rStep.fResult, rStep.nSkip, rStep.nTimes);
            CLogCapture oLog;
            EXPECT_FALSE(oDewarper.StartGL());
            CGLRecorder::Get().ClearInjections();
            EXPECT_FALSE(oDewarper.bGLStarted);
            const std::string strLast = oLog.Lines().back().strText;
            if (rStep.pLine != nullptr)
                ExpectLine(oLog, oLog.Lines().size() - 1, rStep.nPriority, rStep.pLine);
            else
                EXPECT_EQ(strLast, "StartGL: Creating a surface of width is: 16 and height is: 16");
            EXPECT_EQ(oDewarper.GetLastErrorText(), rStep.pLine != nullptr ? rStep.pLine : "");
            EXPECT_EQ(oDewarper.nFramebuffer, 0u);
            EXPECT_FALSE(oDewarper.DrawGLScene(true));

            // Stopping touches nothing of what was made; starting again does not mind it.
            CGLRecorder::Get().Start();
            EXPECT_TRUE(oDewarper.StopGL());
            EXPECT_EQ(CGLRecorder::Get().CountPrefix("egl"), 0) << CGLRecorder::Get().Dump();
            EXPECT_TRUE(oDewarper.StartGL());
            EXPECT_TRUE(oDewarper.StopGL());
        }
        EXPECT_EQ(SLiving(), sBefore);
        EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    }
}

TEST(CustomGPUDewarperVela, AStartThatFailedLeavesNothingBehindForGood)
{
    const SLiving sBefore;
    for (const char* pCall : {"eglChooseConfig", "eglCreatePbufferSurface", "eglMakeCurrent"}) {
        CCustomGPUDewarperVela oDewarper;
        oDewarper.InitGL(16, 16);
        CGLRecorder::Get().Inject(pCall, 0.0);
        EXPECT_FALSE(oDewarper.StartGL());
    }
    EXPECT_EQ(SLiving(), sBefore);
    // No use of the display was left counted: the last one really ends it.
    CGLRecorder::Get().Start();
    {
        CCustomGPUDewarperVela oDewarper;
        oDewarper.InitGL(16, 16);
        EXPECT_TRUE(oDewarper.StartGL());
    }
    EXPECT_EQ(CGLRecorder::Get().Count("eglTerminate"), 1);
}

TEST(CustomGPUDewarperVela, AContextOfAnOldVersionIsAskedForAgain)
{
    static const char szOld[] = "OpenGL ES 2.0 of long ago";
    static const char szAlmost[] = "OpenGL ES 3.0";
    const SLiving sBefore;
    for (const char* pVersion : {szOld, szAlmost}) {
        CCustomGPUDewarperVela oDewarper;
        oDewarper.InitGL(16, 16);
        CGLRecorder::Get().Start();
        CGLRecorder::Get().Inject("glGetString",
                                  static_cast<double>(reinterpret_cast<std::uintptr_t>(pVersion)));
        ASSERT_TRUE(oDewarper.StartGL());
        EXPECT_EQ(CGLRecorder::Get().Count("eglCreateContext"), 2);
        EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), sBefore.nContexts + 1);
        EGLint nVersion = 0;
        eglQueryContext(oDewarper.mDisplay, oDewarper.mContext, EGL_CONTEXT_CLIENT_VERSION, &nVersion);
        EXPECT_EQ(nVersion, 3);
        EXPECT_EQ(eglGetCurrentContext(), oDewarper.mContext);
    }
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(16, 16);
    CGLRecorder::Get().Inject("glGetString", static_cast<double>(reinterpret_cast<std::uintptr_t>(szOld)), 0,
                              2);
    CLogCapture oLog;
    EXPECT_FALSE(oDewarper.StartGL());
    ExpectLine(oLog, oLog.Lines().size() - 1, ERROR_PRIORITY, "StartGL: Error creating surface");
}

TEST(CustomGPUDewarperVela, ADriverWithoutVersion2IsAskedForVersion3)
{
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(16, 16);
    CGLRecorder::Get().Inject("eglCreateContext", 0.0);
    CLogCapture oLog;
    EXPECT_TRUE(oDewarper.StartGL());
    EXPECT_FALSE(oLog.Contains("Error"));
}
