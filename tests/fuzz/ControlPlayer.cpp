// Frames, target, start and stop, and the order of calls.
#include "ControlPlayer.h"

#include "FuzzSupport.h"
#include "GLWatch.h"

#include <utility>

// Enough for any two operations to meet with frames between them; more takes time only.
static const int MOST_CALLS = 24;
static const int MOST_FRAMES = 3;
static const int LARGEST_TARGET = 64 * 48;

CPlayer::CPlayer(CFuzzBytes& rBytes, EDewarpEngine eEngine) : m_rBytes(rBytes)
{
    if (eEngine == ENGINE_CPU)
        m_pProcessor = CreateDewarper(ENGINE_CPU, 24, 16);
}

void CPlayer::NewFrame()
{
    auto pFrame = std::make_unique<CFuzzFrame>();
    MakeGoodFrame(m_rBytes, *pFrame);
    const std::unique_ptr<SQPInfo> pInfo = MakeQPInfo(m_rBytes);
    const bool bGain = m_rBytes.Byte() % 4 == 3;
    const bool bTaken =
        With([&](auto& d) { return d.SetTexture(&pFrame->sImage, bGain, pInfo.get(), m_rBytes.Byte()); });
    Require(bTaken || pInfo != nullptr, "a good frame is taken");
    if (!bTaken)
        return;
    m_pFrame = std::move(pFrame);
    m_bWaiting = true;
}

void CPlayer::BadFrame()
{
    CFuzzFrame oFrame;
    MakeGoodFrame(m_rBytes, oFrame);
    SImageProperties sImage = oFrame.sImage;
    switch (m_rBytes.Byte() % 5) {
    case 0:
        sImage.nWidth = m_rBytes.Byte() % 2 == 0 ? 16385 : m_rBytes.Between(-100, 1);
        break;
    case 1:
        sImage.nHeight = m_rBytes.Byte() % 2 == 0 ? 16385 : m_rBytes.Between(-100, 1);
        break;
    case 2:
        sImage.nStride = m_rBytes.Between(-100, sImage.nWidth - 1);
        break;
    case 3:
        sImage.nFormat = m_rBytes.Between(11, 200);
        break;
    default:
        sImage.pPlane0 = nullptr;
        break;
    }
    const unsigned int nLines = nLogLines;
    Require(!With([&](auto& d) { return d.SetTexture(&sImage, false, nullptr, 0); }),
            "a bad frame is refused");
    Require(nLogLines == nLines + 1, "with one log line");
}

void CPlayer::Draw()
{
    if (m_pProcessor != nullptr) {
        if (m_rBytes.Byte() % 4 == 3)
            DrawTo();
        else
            DrawAndCheck(*m_pProcessor, m_rBytes.Bool(), m_bWaiting);
        return;
    }
    const bool bWanted = m_bStarted && (m_bWaiting || m_bUploaded);
    if (!DrawAndCheck(m_oDewarper, m_rBytes.Bool(), bWanted))
        return;
    // The planes may go as soon as they have been drawn.
    m_pFrame.reset();
    m_bWaiting = false;
    m_bUploaded = true;
}

/// Into memory of exactly the size that is needed.
void CPlayer::DrawTo()
{
    static const EImageFormat FORMATS[] = {IMAGE_FORMAT_BGRA32, IMAGE_FORMAT_NV12, IMAGE_FORMAT_RGBA32,
                                           IMAGE_FORMAT_YUV420P};
    int nWidth = 0;
    int nHeight = 0;
    Require(m_pProcessor->GetTargetSize(nWidth, nHeight), "a target has a size");
    const EImageFormat eFormat = FORMATS[m_rBytes.Byte() % 4];
    const bool bYUV = eFormat == IMAGE_FORMAT_NV12 || eFormat == IMAGE_FORMAT_YUV420P;
    const int nRow = bYUV ? nWidth + nWidth % 2 : 4 * nWidth;
    const int nStride = nRow + m_rBytes.Between(0, 9) * 2;
    // The last row ends with its last pixel.
    const int nRows = bYUV ? nHeight + (nHeight + 1) / 2 : nHeight;
    const int nChroma = nStride / 2 * ((nHeight + 1) / 2);
    const int nBytes = eFormat == IMAGE_FORMAT_YUV420P ? nStride * nHeight + nChroma * 2 : nStride * nRows;
    const auto pTarget = std::make_unique<unsigned char[]>(static_cast<std::size_t>(nBytes));
    const bool bDrawn = m_pProcessor->DrawTo(pTarget.get(), nStride, eFormat);
    Require(bDrawn == m_bWaiting, "a good frame is drawn into any target");
}

void CPlayer::DrawNowAndThen()
{
    if (m_nFrames++ < MOST_FRAMES)
        Draw();
}

void CPlayer::TargetSize()
{
    const bool bAny = m_rBytes.Byte() % 2 == 0;
    const int nWidth = bAny ? m_rBytes.Int() : m_rBytes.Between(1, 64);
    const int nHeight = bAny ? m_rBytes.Int() : m_rBytes.Between(1, 48);
    const unsigned int nLines = nLogLines;
    const bool bGood = nWidth > 0 && nHeight > 0 && nWidth <= 16384 && nHeight <= 16384;
    Require((m_pProcessor != nullptr ? m_pProcessor->InitTarget(nWidth, nHeight)
                                     : m_oDewarper.InitGL(nWidth, nHeight)) == bGood,
            "sizes from 1 to 16384 are taken");
    Require(bGood || nLogLines == nLines + 1, "others are refused with one log line");
    // What would take the software renderer long to draw is taken back.
    if (bGood && static_cast<long long>(nWidth) * nHeight > LARGEST_TARGET)
        m_pProcessor != nullptr ? m_pProcessor->InitTarget(16, 12) : m_oDewarper.InitGL(16, 12);
}

void CPlayer::Restart()
{
    if (m_pProcessor != nullptr) {
        m_pProcessor->SetThreadCount(m_rBytes.Between(-1, 3));
        Require(m_pProcessor->GetThreadCount() >= 0, "a number of threads");
        return;
    }
    if (m_rBytes.Bool())
        Require(m_oDewarper.StopGL(), "GL can be stopped at any time");
    m_bUploaded = false;
    m_bStarted = m_rBytes.Byte() % 4 != 3;
    if (m_bStarted)
        Require(m_oDewarper.StartGL(), "GL can be started at any time");
    else
        Require(m_oDewarper.StopGL() && LivingGLNames() == 0, "nothing is left behind");
}

void CPlayer::FreeObjects()
{
    if (!m_bStarted)
        return;
    m_bUploaded = false;
    if (m_rBytes.Bool())
        m_oDewarper.FreeOpenGLObjects();
    else
        m_oDewarper.ReinitializeOpenGLObjects();
}

void CPlayer::PlayCalls()
{
    static const FCall CALLS[] = {
        &CPlayer::NewFrame,     &CPlayer::BadFrame,      &CPlayer::DrawNowAndThen, &CPlayer::TargetSize,
        &CPlayer::Restart,      &CPlayer::FreeObjects,   &CPlayer::Choices,        &CPlayer::Choices,
        &CPlayer::Colours,      &CPlayer::Orientation,   &CPlayer::Switches,       &CPlayer::AbsoluteMove,
        &CPlayer::RelativeMove, &CPlayer::AnalogueMove,  &CPlayer::MouseDrag,      &CPlayer::MouseWheel,
        &CPlayer::InputOverlay, &CPlayer::OutputOverlay, &CPlayer::MaskList,       &CPlayer::MaskBytes,
        &CPlayer::StringList,   &CPlayer::StringBytes,   &CPlayer::Getters,        &CPlayer::DrawNowAndThen,
    };
    for (int i = 0; i < MOST_CALLS && !m_rBytes.IsEmpty(); ++i) {
        (this->*CALLS[m_rBytes.Byte() % std::size(CALLS)])();
        if (i % 6 == 5)
            DrawNowAndThen();
    }
    Draw();
}

void CPlayer::Play()
{
    // Half of the inputs meet a dewarper that is not started yet, or has no frame yet.
    const unsigned int nStart = m_rBytes.Byte();
    if (m_pProcessor == nullptr) {
        Require(m_oDewarper.InitGL(24, 16), "a small target");
        m_bStarted = nStart % 8 != 7;
        if (m_bStarted)
            Require(m_oDewarper.StartGL(), "a context");
    }
    if ((nStart & 8) == 0)
        NewFrame();
    // The cheapest view first: the input chooses another one.
    if ((nStart & 16) == 0)
        With([](auto& d) { d.SetViewType(VIEW_FISHEYE); });
    PlayCalls();
    m_oDewarper.StopGL();
    Require(LivingGLNames() == 0, "nothing is left behind");
}
