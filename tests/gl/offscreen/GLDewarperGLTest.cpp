// The GL engine behind the interface of both: every operation does what it does with the dewarper itself.
#include "dewarp/Dewarper.h"
#include "tests/support/TestDewarper.h"

#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <thread>

namespace
{

using CBare = CCustomGPUDewarperOffscreen;

const int WIDTH = 64;
const int HEIGHT = 48;
const float NONE = std::numeric_limits<float>::quiet_NaN();

/// One operation, and what it says, with both.
struct SOperation
{
    template <class F>
    SOperation(const char* pTheName, F f) : pName(pTheName), fBoth(f), fBare(f)
    {}

    const char* pName;
    std::function<std::string(CDewarper&)> fBoth;
    std::function<std::string(CBare&)> fBare;
};

template <class... V>
std::string Say(const V&... v)
{
    std::ostringstream oText;
    ((oText << v << ' '), ...);
    return oText.str();
}

/// A getter's three values.
template <class D, class T>
std::string Say3(D& d, void (D::*fGet)(T&, T&, T&))
{
    T a{};
    T b{};
    T c{};
    (d.*fGet)(a, b, c);
    return Say(a, b, c);
}

template <class D>
std::string SayLimits(D& d)
{
    const SPTZLimits s = d.GetViewLimits(VIEW_PANORAMA_HALF, MOUNT_WALL);
    return Say(s.sPan.fLow, s.sPan.bPeriodic, s.sTilt.fLow, s.sTilt.fHigh, s.sZoom.fLow, s.sZoom.fHigh);
}

CTestFrame& Frame()
{
    static CTestFrame oFrame(AsymmetricPicture(WIDTH, WIDTH), IMAGE_FORMAT_NV12);
    return oFrame;
}

std::vector<unsigned char>& OverlayPixels()
{
    static std::vector<unsigned char> vPixels(8 * 8 * 4, 0x80);
    return vPixels;
}

std::vector<SGPUString> Label()
{
    SGPUString sString;
    sString.strText = "label";
    sString.nHeight = 16;
    return {sString};
}

std::vector<SGPolygon> Mask()
{
    return {{{{10, 10}, {40, 12}, {20, 50}}, 0x102030FF}};
}

/// Two flags of a getter.
template <class D>
std::string SayFlip(D& d)
{
    bool bHorizontal = false;
    bool bVertical = false;
    d.GetFlip(bHorizontal, bVertical);
    return Say(bHorizontal, bVertical);
}

template <class D>
std::string SayGains(D& d)
{
    float fLuma = 0.0f;
    float fChroma = 0.0f;
    d.GetGains(fLuma, fChroma);
    return Say(fLuma, fChroma);
}

template <class D>
std::string SayVersion(D& d)
{
    int nMajor = -1;
    int nMinor = -1;
    const bool bKnown = d.GetDewarperVersion(nMajor, nMinor);
    return Say(bKnown, nMajor, nMinor);
}

/// What every getter says.
template <class D>
std::string SayAll(D& d)
{
    return Say(d.GetViewType(), d.GetMountType(), d.GetLensType(), d.GetLensInForce(),
               d.GetInterpolationType(), d.GetMountTilt(), d.GetStrictTiltLimits(), d.GetRotation(),
               d.GetEyeDistance(), SayFlip(d), SayGains(d), Say3(d, &D::GetYUVLevels), Say3(d, &D::GetPTZ),
               Say3(d, &D::GetPTZAnalog)) +
           Say(SayVersion(d), d.GetFisheyeRadius(), d.GetLastDisplayedTextureTimestamp(), d.IsDrawRequired(),
               d.GetLastErrorText(), SayLimits(d));
}

#define SET(WHAT)                                                                                            \
    SOperation(#WHAT, [](auto& d) {                                                                          \
        d.WHAT;                                                                                              \
        return std::string();                                                                                \
    })
#define ASK(WHAT) SOperation(#WHAT, [](auto& d) { return Say(d.WHAT); })

const SOperation OPERATIONS[] = {
    ASK(DrawGLScene(false)),
    ASK(SetTexture(nullptr, false, nullptr, 3)),
    ASK(SetTexture(Frame().Image(), true, nullptr, 4)),
    ASK(DrawGLScene(true)),
    SET(SetViewType(VIEW_PANORAMA_HALF)),
    SET(SetMountType(MOUNT_WALL)),
    SET(SetLensType(LENS_DSL215)),
    SET(SetInterpolationType(INTERPOLATION_LINEAR)),
    SET(SetWireFrame(true)),
    SET(SetYUVparams(YUV_SPACE_BT709, YUV_RANGE_LIMITED)),
    ASK(DrawGLScene(false)),
    SET(SetMountTilt(20.0f)),
    SET(SetMountTilt(NONE)),
    SET(SetStrictTiltLimits(false)),
    ASK(DrawGLScene(false)),
    SET(SetViewType(VIEW_FISHEYE)),
    SET(SetRotation(90)),
    SET(SetRotation(17)),
    SET(SetFlip(true, false)),
    SET(SetGains(1.25f, 0.5f)),
    SET(SetYUVLevels(20, 230, 24)),
    SET(SetYUVLevels(20, 20, 24)),
    ASK(DrawGLScene(false)),
    SET(SetViewType(VIEW_VCAM)),
    SET(SetMountType(MOUNT_CEILING)),
    SET(SetEyeDistance(0.5f)),
    ASK(DrawGLScene(false)),
    SET(AbsolutePTZ(30.0f, 40.0f, 90.0f)),
    SET(RelativePTZ(1.0f, 2.0f, -3.0f)),
    ASK(DrawGLScene(false)),
    SET(AnaloguePTZ(0.5f, -0.25f, 0.0f)),
    ASK(DrawGLScene(false)),
    SET(AnaloguePTZ(0.0f, 0.0f, 0.0f)),
    SET(OnMouseDown(5, 5)),
    SET(OnMouseMove(15, 25, false, true)),
    SET(OnMouseUp()),
    SET(OnMouseWheel(2.0)),
    ASK(DrawGLScene(false)),
    ASK(SetInputOverlay(OverlayPixels().data(), 8, 8, 0)),
    ASK(SetOutputOverlay(OverlayPixels().data(), 8, 8, 0, {{2, 2, 3, 3}})),
    ASK(SetOutputOverlay(OverlayPixels().data(), 0, 8, 0, {})),
    ASK(DrawGLScene(false)),
    ASK(SetInputOverlay(nullptr, 0, 0, 0)),
    SET(SetMaskPolygons(Mask())),
    SET(SetStrings(Label())),
    ASK(DrawGLScene(false)),
    SET(SetMaskPolygons(nullptr, 0)),
    SET(SetStrings(nullptr, 0)),
    ASK(DrawGLScene(false)),
};

/// The drawn picture through the interface.
template <class D>
std::string Picture(D& d)
{
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* const pImage = d.GetImage(&nSize, &nWidth, &nHeight, &nStride);
    if (pImage == nullptr)
        return "none";
    const auto* const pRows = reinterpret_cast<const char*>(pImage + (nHeight + nHeight % 2) * nStride);
    return Say(nWidth, nHeight, nStride) + std::string(pRows, static_cast<std::size_t>(nSize));
}

/// What an operation brought about.
struct SOutcome
{
    std::string strResult;
    std::string strAnswers; ///< of every getter afterwards
    std::string strPicture;
    std::string strLog;
};

template <class F, class D>
SOutcome OutcomeOf(const F& f, D& rDewarper)
{
    const CLogCapture oLog;
    SOutcome s;
    s.strResult = f();
    s.strAnswers = SayAll(rDewarper);
    s.strPicture = Picture(rDewarper);
    s.strLog = oLog.Text();
    return s;
}

std::unique_ptr<CDewarper> Make(int nWidth = WIDTH, int nHeight = HEIGHT)
{
    return CreateDewarper(ENGINE_GL, nWidth, nHeight);
}

} // namespace

TEST(GLDewarper, EveryOperationDoesWhatItDoesWithTheDewarperItself)
{
    std::vector<SOutcome> vBare;
    {
        CTestDewarper oBare(WIDTH, HEIGHT);
        ASSERT_TRUE(oBare.Started());
        CCustomGPUDewarper& rBare = oBare;
        for (const SOperation& rOperation : OPERATIONS)
            vBare.push_back(OutcomeOf([&] { return rOperation.fBare(oBare); }, rBare));
    }
    const std::unique_ptr<CDewarper> pDewarper = Make();
    ASSERT_NE(pDewarper, nullptr);
    std::size_t i = 0;
    for (const SOperation& rOperation : OPERATIONS) {
        SCOPED_TRACE(rOperation.pName);
        const SOutcome sOutcome = OutcomeOf([&] { return rOperation.fBoth(*pDewarper); }, *pDewarper);
        EXPECT_EQ(sOutcome.strResult, vBare[i].strResult);
        EXPECT_EQ(sOutcome.strAnswers, vBare[i].strAnswers);
        EXPECT_EQ(sOutcome.strLog, vBare[i].strLog);
        EXPECT_TRUE(sOutcome.strPicture == vBare[i].strPicture) << "another picture";
        ++i;
    }
    EXPECT_NO_GL_ERROR();
}

/// Why there are no wire frames is said in each engine's own words.
static std::string WithoutOwnWords(std::string strText)
{
    const std::string strOwn = "OpenGL ES draws no";
    const std::size_t nAt = strText.find(strOwn);
    return nAt == std::string::npos ? strText : strText.replace(nAt, strOwn.size(), "no engine draws");
}

TEST(BothEngines, AnswerEveryOperationAlikeAndSayTheSame)
{
    const std::unique_ptr<CDewarper> pGL = Make();
    const std::unique_ptr<CDewarper> pProcessor = CreateDewarper(ENGINE_CPU, WIDTH, HEIGHT);
    ASSERT_NE(pGL, nullptr);
    ASSERT_NE(pProcessor, nullptr);
    for (const SOperation& rOperation : OPERATIONS) {
        SCOPED_TRACE(rOperation.pName);
        const SOutcome sGL = OutcomeOf([&] { return rOperation.fBoth(*pGL); }, *pGL);
        const SOutcome sProcessor = OutcomeOf([&] { return rOperation.fBoth(*pProcessor); }, *pProcessor);
        EXPECT_EQ(sProcessor.strResult, sGL.strResult);
        EXPECT_EQ(sProcessor.strAnswers, WithoutOwnWords(sGL.strAnswers));
        EXPECT_EQ(sProcessor.strLog, WithoutOwnWords(sGL.strLog));
        EXPECT_EQ(sProcessor.strPicture.size(), sGL.strPicture.size());
    }
}

TEST(GLDewarper, SaysWhoDraws)
{
    const std::unique_ptr<CDewarper> pDewarper = Make();
    ASSERT_NE(pDewarper, nullptr);
    EXPECT_EQ(pDewarper->GetEngine(), ENGINE_GL);
    EXPECT_EQ(pDewarper->GetEngineText().find("OpenGL ES, llvmpipe"), 0u) << pDewarper->GetEngineText();
}

TEST(GLDewarper, KeepsWhatTheProcessorEngineHas)
{
    const std::unique_ptr<CDewarper> pDewarper = Make();
    ASSERT_NE(pDewarper, nullptr);
    EXPECT_EQ(pDewarper->GetThreadCount(), 0);
    pDewarper->SetThreadCount(3);
    EXPECT_EQ(pDewarper->GetThreadCount(), 3);
    const CLogCapture oLog;
    pDewarper->SetThreadCount(-2);
    EXPECT_EQ(pDewarper->GetThreadCount(), 3);
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_EQ(oLog.Lines()[0].strText, "SetThreadCount: -2 is not a number of threads");
    EXPECT_EQ(pDewarper->GetLastErrorText(), oLog.Lines()[0].strText);
}

TEST(GLDewarper, TheTargetIsMadeOnceAndTakesAnotherSize)
{
    const std::unique_ptr<CDewarper> pDewarper = Make();
    ASSERT_NE(pDewarper, nullptr);
    int nWidth = 0;
    int nHeight = 0;
    EXPECT_TRUE(pDewarper->GetTargetSize(nWidth, nHeight));
    EXPECT_EQ(nWidth, WIDTH);
    EXPECT_EQ(nHeight, HEIGHT);
    const int nContexts = CGLRecorder::Get().Living(EGL_KIND_CONTEXT);
    EXPECT_TRUE(pDewarper->InitTarget(20, 10));
    EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), nContexts);
    const CLogCapture oLog;
    EXPECT_FALSE(pDewarper->InitTarget(0, 10));
    EXPECT_EQ(oLog.Lines().size(), 1u);
    ASSERT_TRUE(pDewarper->SetTexture(Frame().Image(), false, nullptr, 0));
    ASSERT_TRUE(pDewarper->DrawGLScene(true));
    EXPECT_EQ(Picture(*pDewarper).substr(0, 9), "20 10 80 ");
}

TEST(GLDewarper, ControlOperationsMayComeFromOtherThreadsWhileFramesAreDrawn)
{
    const std::unique_ptr<CDewarper> pDewarper = Make();
    ASSERT_NE(pDewarper, nullptr);
    std::thread oSteering([&] {
        for (int i = 0; i < 200; ++i) {
            pDewarper->AbsolutePTZ(static_cast<float>(i), 30.0f, 90.0f);
            pDewarper->SetThreadCount(i);
            pDewarper->GetEngineText();
        }
    });
    std::vector<unsigned char> vPixels(WIDTH * HEIGHT * 4);
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(pDewarper->SetTexture(Frame().Image(), false, nullptr, 0));
        EXPECT_TRUE(pDewarper->DrawTo(vPixels.data(), WIDTH * 4, IMAGE_FORMAT_BGRA32));
    }
    oSteering.join();
    EXPECT_EQ(pDewarper->GetThreadCount(), 199);
}
