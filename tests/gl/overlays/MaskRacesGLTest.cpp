// Masks against a control thread: at no moment of a frame may a new mask and a new frame come apart.
#include "tests/gl/overlays/OverlayTools.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <thread>

namespace
{

const int WIDTH = 48;
const int HEIGHT = 40;
const unsigned int SECRET = 0xFF0000FF;
const unsigned int MASK = 0x0000FFFF;
const int PLACES = 4;

SGRect Place(int nPlace)
{
    return {3 + 11 * nPlace, 4 + 8 * nPlace, 9, 7};
}

SGPolygon MaskOver(const SGRect& s)
{
    return {{{s.x, s.y}, {s.x + s.width, s.y}, {s.x + s.width, s.y + s.height}, {s.x, s.y + s.height}}, MASK};
}

/// A grey frame with something secret at one place; -1: with nothing.
CTestFrame FrameWithSecret(int nPlace)
{
    STestImage sPicture = PlainPicture(WIDTH, HEIGHT, 0x808080FF);
    if (nPlace >= 0)
        FillRect(sPicture, Place(nPlace), SECRET);
    return {sPicture, IMAGE_FORMAT_RGB24};
}

int CountSecretPixels(const STestImage& sPicture)
{
    int nCount = 0;
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x)
            nCount += sPicture.At(x, y)[0] > 200 && sPicture.At(x, y)[1] < 60 ? 1 : 0;
    return nCount;
}

/// What a careful host does: a mask is there before the frame that needs it, and goes after it.
class CCarefulHost
{
public:
    explicit CCarefulHost(CCustomGPUDewarper& rDewarper) : m_rDewarper(rDewarper) {}

    /// The next step of an endless round: a frame to be masked, another one, one with nothing to hide.
    void Step()
    {
        const int nTo = static_cast<int>(m_nSteps++ % (PLACES + 1)) - 1;
        if (nTo >= 0)
            m_rDewarper.SetMaskPolygons(m_nAt >= 0 ? TPolygons{MaskOver(Place(m_nAt)), MaskOver(Place(nTo))}
                                                   : TPolygons{MaskOver(Place(nTo))});
        m_rDewarper.SetTexture(m_aFrames[static_cast<std::size_t>(nTo + 1)].Image(), false, nullptr,
                               m_nSteps);
        if (nTo < 0)
            m_rDewarper.SetMaskPolygons({});
        m_nAt = nTo;
    }

private:
    CCustomGPUDewarper& m_rDewarper;
    std::array<CTestFrame, PLACES + 1> m_aFrames = {
        FrameWithSecret(-1), FrameWithSecret(0), FrameWithSecret(1), FrameWithSecret(2), FrameWithSecret(3)};
    unsigned long long m_nSteps = 0;
    int m_nAt = -1;
};

/// Calls somebody at every place of a frame where a subclass's code runs, and counts who leaves the lock.
class CInterruptedDewarper : public CTestDewarper
{
public:
    CInterruptedDewarper() : CTestDewarper(WIDTH, HEIGHT) { SetViewType(VIEW_FISHEYE); }

    void Lock() override
    {
        CTestDewarper::Lock();
        ++m_nDepth;
    }
    void Unlock() override
    {
        const bool bLeft = --m_nDepth == 0;
        CTestDewarper::Unlock();
        if (!bLeft || !m_bInFrame)
            return;
        ++nTimesLeft;
        Interrupt(); // a control thread that waited for just this
    }
    void BindDefaultFrameBuffer() override
    {
        CTestDewarper::BindDefaultFrameBuffer();
        Interrupt();
    }
    void UploadTexture() override
    {
        Interrupt();
        CTestDewarper::UploadTexture();
        Interrupt();
    }
    bool OSDependentUploadTexture() override
    {
        Interrupt();
        return CTestDewarper::OSDependentUploadTexture();
    }
    bool InitializeTextures() override
    {
        Interrupt();
        return CTestDewarper::InitializeTextures();
    }
    void UploadOverlayTexture() override
    {
        Interrupt();
        CTestDewarper::UploadOverlayTexture();
        Interrupt();
    }
    bool AdjustPTZ() override
    {
        Interrupt();
        return CTestDewarper::AdjustPTZ();
    }
    bool CheckInitializations() override
    {
        Interrupt();
        return CTestDewarper::CheckInitializations();
    }
    void DrawRequired() override
    {
        CTestDewarper::DrawRequired();
        Interrupt();
    }
    int OSDependentCheckLoadShaders() override
    {
        Interrupt();
        return CTestDewarper::OSDependentCheckLoadShaders();
    }
    std::string GetFragShaderCode() override
    {
        Interrupt();
        return CTestDewarper::GetFragShaderCode();
    }
    void BindTextures() override
    {
        Interrupt();
        CTestDewarper::BindTextures();
    }
    bool BindOverlayTextures() override
    {
        Interrupt();
        return CTestDewarper::BindOverlayTextures();
    }
    void UnbindTextures() override
    {
        Interrupt();
        CTestDewarper::UnbindTextures();
    }
    void ExchangeOpenglFrontBackBuffers(void* pContext) override
    {
        Interrupt();
        CTestDewarper::ExchangeOpenglFrontBackBuffers(pContext);
    }
    void IncrementDrawCount() override
    {
        Interrupt();
        CTestDewarper::IncrementDrawCount();
    }

    /// Draws a frame in which place nWhich (0: the first) is interrupted. False: it was not reached.
    bool DrawInterrupted(int nWhich, bool& bDrawn)
    {
        m_nPlacesLeft = nWhich;
        m_bInFrame = true;
        bDrawn = DrawGLScene(true);
        m_bInFrame = false;
        return m_nPlacesLeft < 0;
    }

    std::function<void()> fInterruption;
    int nTimesLeft = 0; ///< that the lock was left altogether while a frame was drawn

private:
    void Interrupt()
    {
        if (m_bInFrame && !m_bInterrupted && m_nPlacesLeft-- == 0) {
            m_bInterrupted = true;
            fInterruption();
            m_bInterrupted = false;
        }
    }

    bool m_bInFrame = false;
    bool m_bInterrupted = false;
    int m_nDepth = 0;
    int m_nPlacesLeft = 0;
};

} // namespace

TEST(MaskRaces, AMaskAndAFrameThatComeAtAnyPlaceOfAFrameAreShownTogether)
{
    CInterruptedDewarper oDewarper;
    ASSERT_TRUE(oDewarper.Started());
    CCarefulHost oHost(oDewarper);
    oDewarper.fInterruption = [&] { oHost.Step(); };
    CLogCapture oLog;
    int nFrames = 0;
    int nShown = 0;
    int nPlaces = 0;
    // Every place is met in every state that the host's round can be in, with and without a frame in
    // between.
    for (int nRound = 0; nRound < 12 * (PLACES + 1); ++nRound) {
        bool bReached = true;
        for (int nWhich = 0; bReached; ++nWhich) {
            ASSERT_LT(nWhich, 200);
            for (int i = 0; i < nRound % 3; ++i)
                oHost.Step();
            bool bDrawn = false;
            bReached = oDewarper.DrawInterrupted(nWhich, bDrawn);
            for (int i = 0; i < 2; ++i, bDrawn = oDewarper.DrawGLScene(false)) {
                ++nFrames;
                nShown += bDrawn ? 1 : 0;
                ASSERT_EQ(CountSecretPixels(oDewarper.Picture()), 0)
                    << "place " << nWhich << " of round " << nRound;
            }
            nPlaces = std::max(nPlaces, nWhich);
        }
    }
    EXPECT_GT(nPlaces, 15) << "masks, upload and drawing are met";
    EXPECT_GT(nFrames, 1500);
    EXPECT_GT(nShown, nFrames / 2) << "and pictures are shown";
    EXPECT_NO_GL_ERROR();
}

TEST(MaskRaces, NoStepOfAFrameLeavesTheLock)
{
    CInterruptedDewarper oDewarper;
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame = FrameWithSecret(-1);
    CTestFrame oLarger(AsymmetricPicture(2 * WIDTH, HEIGHT), IMAGE_FORMAT_NV12);
    oDewarper.fInterruption = [] {};
    const STestImage sLogo = PlainPicture(8, 8, 0x00FF0080);
    const std::function<void()> vHistory[] = {
        [] {},
        [&] { oDewarper.SetMaskPolygons({MaskOver(Place(1))}); },
        [&] { SetInput(oDewarper, sLogo); },
        [&] { oDewarper.SetMaskPolygons({}); },
        [&] { SetInput(oDewarper, sLogo); },
        [&] { oDewarper.SetMaskPolygons({}); },
        [&] {
            oDewarper.SetMaskPolygons({MaskOver(Place(2)), MaskOver(Place(0))});
        },
        [&] { SetOutput(oDewarper, sLogo); },
        [&] { oDewarper.SetStrings({Text("12", 4, 4, 16)}); },
        [&] { oDewarper.SetTexture(oLarger.Image(), false, nullptr, 0); },
        [&] { oDewarper.InitGL(WIDTH / 2, HEIGHT); },
        [&] { oDewarper.SetMaskPolygons({}); },
        [&] { CGLRecorder::Get().Inject("GL_LINK_STATUS", 0.0, 0, 1), oDewarper.SetFlip(true, false); },
        [&] { oDewarper.FreeOpenGLObjects(); },
    };
    CLogCapture oLog;
    for (const std::function<void()>& fStep : vHistory) {
        oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0);
        fStep();
        bool bDrawn = false;
        oDewarper.nTimesLeft = 0;
        oDewarper.DrawInterrupted(0, bDrawn);
        EXPECT_EQ(oDewarper.nTimesLeft, 1) << "at its end, step " << &fStep - vHistory;
    }
    EXPECT_NO_GL_ERROR();
}

/// Lets a control thread go on at one GL call of a frame, and gives it the time to get in.
struct SGate
{
    static void OnCall(const SGLCall& /*sCall*/, void* pUser)
    {
        SGate& r = *static_cast<SGate*>(pUser);
        const int nCall = r.nCallsLeft--;
        if (nCall == 0)
            r.bOpen = true;
        if (nCall <= 0 && nCall > -3 && !r.bDone)
            std::this_thread::sleep_for(std::chrono::microseconds(50));
    }

    std::atomic<bool> bOpen{false};
    std::atomic<bool> bDone{false};
    std::atomic<bool> bOver{false};
    int nCallsLeft = 0;
};

/// A rendering thread that is slow to take its lock again, should it ever leave it.
class CSlowDewarper : public CTestDewarper
{
public:
    CSlowDewarper() : CTestDewarper(WIDTH, HEIGHT) { SetViewType(VIEW_FISHEYE); }

    void Lock() override
    {
        CTestDewarper::Lock();
        ++m_nDepth;
    }
    void Unlock() override
    {
        const bool bLeft = --m_nDepth == 0;
        const bool bRendering = std::this_thread::get_id() == m_oRendering;
        CTestDewarper::Unlock();
        if (bLeft && bRendering)
            std::this_thread::sleep_for(std::chrono::microseconds(50));
    }

private:
    const std::thread::id m_oRendering = std::this_thread::get_id();
    int m_nDepth = 0;
};

TEST(MaskRaces, AControlThreadThatTriesAtEveryGLCallOfAFrameNeverHasASecretShown)
{
    CSlowDewarper oDewarper;
    ASSERT_TRUE(oDewarper.Started());
    CCarefulHost oHost(oDewarper);
    oHost.Step();
    CGLRecorder::Get().Stop();
    SGate oGate;
    std::thread oControl([&] {
        while (!oGate.bOver) {
            if (oGate.bOpen && !oGate.bDone) {
                oHost.Step();
                oGate.bDone = true;
            }
            std::this_thread::yield();
        }
    });
    int nShown = 0;
    int nSeen = 0;
    const int FRAMES = 2500;
    for (int i = 0; i < FRAMES; ++i) {
        oGate.nCallsLeft = i % 61;
        oGate.bDone = false;
        CGLRecorder::Get().SetWatcher(SGate::OnCall, &oGate);
        nShown += oDewarper.DrawGLScene(false) ? 1 : 0;
        CGLRecorder::Get().SetWatcher(nullptr, nullptr);
        nSeen += CountSecretPixels(oDewarper.Picture());
        oGate.bOpen = true;
        while (!oGate.bDone)
            std::this_thread::yield();
        oGate.bOpen = false;
    }
    oGate.bOver = true;
    oControl.join();
    EXPECT_EQ(nSeen, 0);
    EXPECT_GT(nShown, FRAMES * 9 / 10);
    EXPECT_NO_GL_ERROR();
}
