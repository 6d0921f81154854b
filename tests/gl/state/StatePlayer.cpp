#include "tests/gl/state/StatePlayer.h"

#include "tests/fuzz/GLWatch.h"
#include "tests/gl/state/StateCalls.h"

#include <cmath>
#include <utility>

static const int FIRST_WIDTH = 64;
static const int FIRST_HEIGHT = 48;

CStatePlayer::CStatePlayer(EDewarpEngine eEngine)
{
    m_oDewarper.InitGL(FIRST_WIDTH, FIRST_HEIGHT);
    Start();
    if (eEngine == ENGINE_CPU)
        m_pProcessor = CreateDewarper(ENGINE_CPU, FIRST_WIDTH, FIRST_HEIGHT);
}

std::string CStatePlayer::Play(const std::vector<SStateCall>& vCalls)
{
    for (const SStateCall& rCall : vCalls) {
        rCall.fCall(*this, rCall.pArguments);
        if (!m_strFault.empty())
            break;
    }
    return m_strFault;
}

void CStatePlayer::Fail(const std::string& strFault)
{
    if (m_strFault.empty())
        m_strFault = strFault;
}

void CStatePlayer::SetTarget(int nWidth, int nHeight)
{
    const bool bTaken = m_oDewarper.InitGL(nWidth, nHeight);
    if (m_pProcessor != nullptr && m_pProcessor->InitTarget(nWidth, nHeight) != bTaken)
        Fail("the engines answer differently");
}

void CStatePlayer::Start()
{
    if (m_pProcessor != nullptr)
        return;
    m_bStarted = m_oDewarper.StartGL();
    m_bUploaded = false;
    if (!m_bStarted)
        Fail("GL does not start");
}

void CStatePlayer::Stop()
{
    if (m_pProcessor != nullptr)
        return;
    m_oDewarper.StopGL();
    m_bStarted = false;
    m_bUploaded = false;
}

void CStatePlayer::FreeObjects(bool bReinitialize)
{
    if (!m_bStarted || m_pProcessor != nullptr)
        return;
    m_bUploaded = false;
    // A comparison leaves no context current.
    void* pContext = nullptr;
    m_oDewarper.SetCurrentRenderingContext(&pContext);
    if (bReinitialize)
        m_oDewarper.ReinitializeOpenGLObjects();
    else
        m_oDewarper.FreeOpenGLObjects();
}

void CStatePlayer::GiveFrame(const std::shared_ptr<CFuzzFrame>& pFrame, const std::shared_ptr<SQPInfo>& pQP,
                             bool bGain, bool bGood)
{
    const bool bTaken = With([&](auto& d) { return d.SetTexture(&pFrame->sImage, bGain, pQP.get(), 1); });
    if (bTaken != bGood)
        Fail(bGood ? "a good frame is refused" : "a bad frame is taken");
    if (!bTaken)
        return;
    m_sGiven.pFrame = pFrame;
    m_sGiven.bGain = bGain;
    if (pQP != nullptr)
        m_sGiven.pQP = pQP;
    m_bWaiting = true;
}

void CStatePlayer::TakeInput(const SOverlayImage& sImage)
{
    if (!m_sGiven.vMasks.empty())
        return;
    m_sGiven.sInput = sImage;
    m_sGiven.bMasksChanged = false;
}

/// Masks and input overlay share one image: with the next frame masks take the place of an overlay, and an
/// emptied list takes away the overlay that was there when it was given.
void CStatePlayer::FollowMasks()
{
    if (!m_bStarted || m_sGiven.pFrame == nullptr)
        return;
    if (m_sGiven.bMasksChanged || !m_sGiven.vMasks.empty())
        m_sGiven.sInput = SOverlayImage();
    m_sGiven.bMasksChanged = false;
}

void CStatePlayer::Draw(bool bCompare)
{
    const bool bWanted = m_bStarted && (m_bWaiting || m_bUploaded);
    const bool bDrawn = With([](auto& d) { return d.DrawGLScene(false); });
    FollowMasks();
    const std::string strErrors = TakeGLErrors();
    if (!strErrors.empty())
        Fail("GL errors: " + strErrors);
    if (bDrawn != bWanted)
        Fail(bDrawn ? "a frame is drawn that is not there" : "a frame is not drawn");
    if (!bDrawn)
        return;
    m_bWaiting = false;
    m_bUploaded = true;
    // A view that was taken back shows the flat picture for one frame, and then what a fresh dewarper shows.
    if (m_oDewarper.pParams->eViewType == VIEW_UNSET && !With([](auto& d) { return d.DrawGLScene(false); }))
        Fail("a frame is not drawn");
    const SDewarpParams& rParams = *m_oDewarper.pParams;
    if (!std::isfinite(rParams.fPan) || !std::isfinite(rParams.fTilt) || !std::isfinite(rParams.fZoom))
        Fail("the position in force is no number: " + StateWords());
    else if (bCompare && m_pProcessor != nullptr)
        CompareProcessor();
    else if (bCompare)
        Compare();
}

std::string CStatePlayer::StateWords()
{
    const SDewarpParams& rParams = *m_oDewarper.pParams;
    return "view " + std::to_string(rParams.eViewType) + " (asked for " +
           std::to_string(m_oDewarper.GetViewType()) + "), mount " + std::to_string(rParams.eMountType) +
           ", lens " + std::to_string(rParams.eLensType) + " (asked for " +
           std::to_string(m_oDewarper.GetLensType()) + "), at " + NumberWords(rParams.fPan) + ", " +
           NumberWords(rParams.fTilt) + ", " + NumberWords(rParams.fZoom) + ", mount tilt " +
           NumberWords(rParams.fMountTilt) + (rParams.bStrictTiltLimits ? "" : " not strict") +
           ", rotation " + std::to_string(m_oDewarper.GetRotation());
}

/// The drawn picture's rows; empty: none.
template <class D>
static std::vector<unsigned char> PictureOf(D& rDewarper, int& nWidth)
{
    int nSize = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pStart = rDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride);
    if (pStart == nullptr)
        return {};
    const unsigned char* pRows = pStart + static_cast<std::ptrdiff_t>(nHeight + nHeight % 2) * nStride;
    return std::vector<unsigned char>(pRows, pRows + nSize);
}

template <class D>
static void CopySettings(CCustomGPUDewarperOffscreen& rFrom, D& rTo)
{
    rTo.SetViewType(rFrom.GetViewType());
    // A mount that was asked for may be "unset": then the one in force stays.
    rTo.SetMountType(rFrom.pParams->eMountType);
    rTo.SetLensType(rFrom.GetLensType() == LENS_UNSET ? rFrom.pParams->eLensType : rFrom.GetLensType());
    rTo.SetMountTilt(rFrom.GetMountTilt());
    rTo.SetStrictTiltLimits(rFrom.GetStrictTiltLimits());
    rTo.SetInterpolationType(rFrom.GetInterpolationType());
    rTo.SetRotation(rFrom.GetRotation());
    rTo.SetEyeDistance(rFrom.GetEyeDistance());
    bool bHorizontal = false;
    bool bVertical = false;
    rFrom.GetFlip(bHorizontal, bVertical);
    rTo.SetFlip(bHorizontal, bVertical);
    float fLuma = 0.0f;
    float fChroma = 0.0f;
    rFrom.GetGains(fLuma, fChroma);
    rTo.SetGains(fLuma, fChroma);
    int nLumaMin = 0;
    int nLumaMax = 0;
    int nChromaMin = 0;
    rFrom.GetYUVLevels(nLumaMin, nLumaMax, nChromaMin);
    rTo.SetYUVLevels(nLumaMin, nLumaMax, nChromaMin);
}

template <class D>
bool CStatePlayer::DrawFresh(D& rFresh, const SGiven& rGiven)
{
    CopySettings(m_oDewarper, rFresh);
    rFresh.SetYUVparams(rGiven.eSpace, rGiven.eRange);
    rFresh.SetStrings(rGiven.vStrings);
    if (!rGiven.vMasks.empty())
        rFresh.SetMaskPolygons(rGiven.vMasks);
    SOverlayImage sInput = rGiven.sInput;
    if (sInput.IsThere())
        rFresh.SetInputOverlay(sInput.vPixels.data(), sInput.nWidth, sInput.nHeight, 0);
    SOverlayImage sOutput = rGiven.sOutput;
    if (sOutput.IsThere())
        rFresh.SetOutputOverlay(sOutput.vPixels.data(), sOutput.nWidth, sOutput.nHeight, 0, {});
    // The first frame brings the view's own position; ours comes after it.
    const auto DrawFrame = [&] {
        return rFresh.SetTexture(&rGiven.pFrame->sImage, rGiven.bGain, rGiven.pQP.get(), 1) &&
               rFresh.DrawGLScene(false);
    };
    if (!DrawFrame())
        return false;
    const SDewarpParams& rParams = *m_oDewarper.pParams;
    rFresh.AbsolutePTZ(rParams.fPan, rParams.fTilt, rParams.fZoom);
    return DrawFrame();
}

template bool CStatePlayer::DrawFresh(CCustomGPUDewarperOffscreen& rFresh, const SGiven& rGiven);
template bool CStatePlayer::DrawFresh(CDewarper& rFresh, const SGiven& rGiven);

void CStatePlayer::Compare()
{
    ++m_nCompared;
    int nWidth = 0;
    int nHeight = 0;
    const std::vector<unsigned char> vOurs = PictureOf(m_oDewarper, nWidth);
    CCustomGPUDewarperOffscreen oFresh;
    m_oDewarper.GetTargetWidthHeight(nWidth, nHeight);
    if (!oFresh.InitGL(nWidth, nHeight) || !oFresh.StartGL() || !DrawFresh(oFresh, m_sGiven)) {
        Fail("a fresh dewarper does not draw the frame: " + StateWords());
        return;
    }
    const std::vector<unsigned char> vTheirs = PictureOf(oFresh, nWidth);
    const SDewarpParams& rParams = *oFresh.pParams;
    const std::string strFresh = ", fresh at " + NumberWords(rParams.fPan) + ", " +
                                 NumberWords(rParams.fTilt) + ", " + NumberWords(rParams.fZoom) + ", lens " +
                                 std::to_string(rParams.eLensType);
    // What is drawn with may hold a mark that this picture does not show.
    const bool bSameText = oFresh.sMainShader.strVertexShader == m_oDewarper.sMainShader.strVertexShader &&
                           oFresh.sMainShader.strFragmentShader == m_oDewarper.sMainShader.strFragmentShader;
    oFresh.StopGL();
    TakeGLErrors();
    ComparePictures(vOurs, vTheirs, nWidth, strFresh);
    if (!bSameText)
        Fail("the program differs from a fresh one's, the picture does not: " + StateWords() + strFresh);
}

void CStatePlayer::ComparePictures(const std::vector<unsigned char>& vOurs,
                                   const std::vector<unsigned char>& vTheirs, int nWidth,
                                   const std::string& strFresh)
{
    if (vOurs.size() != vTheirs.size())
        return Fail("the pictures differ in size: " + StateWords());
    int nDiffering = 0;
    std::size_t nFirst = 0;
    for (std::size_t i = 0; i < vOurs.size(); i += 4)
        if (!std::equal(&vOurs[i], &vOurs[i] + 4, &vTheirs[i])) {
            nFirst = nDiffering++ == 0 ? i / 4 : nFirst;
        }
    if (nDiffering > 0)
        Fail("the picture differs from a fresh one in " + std::to_string(nDiffering) + " of " +
             std::to_string(vOurs.size() / 4) + " pixels, first at " +
             std::to_string(nFirst % static_cast<std::size_t>(nWidth)) + ", " +
             std::to_string(nFirst / static_cast<std::size_t>(nWidth)) + ": " + StateWords() + strFresh);
}

/// What getters of both engines say.
void CStatePlayer::CompareAnswers()
{
    const auto Same = [&](auto fAsk) {
        float afGL[3] = {};
        float afProcessor[3] = {};
        fAsk(m_oDewarper, afGL);
        fAsk(*m_pProcessor, afProcessor);
        return std::equal(afGL, afGL + 3, afProcessor);
    };
    if (!Same([](auto& d, float* p) { d.GetPTZ(p[0], p[1], p[2]); }) ||
        !Same([](auto& d, float* p) { d.GetPTZAnalog(p[0], p[1], p[2]); }) ||
        !Same([](auto& d, float* p) { p[0] = static_cast<float>(d.GetLensInForce()); }) ||
        !Same([](auto& d, float* p) { p[0] = d.IsDrawRequired() ? 1.0f : 0.0f; }))
        Fail("the engines answer differently: " + StateWords());
}

void CStatePlayer::CompareProcessor()
{
    ++m_nCompared;
    CompareAnswers();
    int nWidth = 0;
    int nHeight = 0;
    m_oDewarper.GetTargetWidthHeight(nWidth, nHeight);
    const std::unique_ptr<CDewarper> pFresh = CreateDewarper(ENGINE_CPU, nWidth, nHeight);
    if (pFresh == nullptr || !DrawFresh(*pFresh, m_sGiven))
        return Fail("a fresh dewarper does not draw the frame: " + StateWords());
    const std::vector<unsigned char> vTheirs = PictureOf(*pFresh, nWidth);
    ComparePictures(PictureOf(*m_pProcessor, nWidth), vTheirs, nWidth, "");
    if (m_fLook && m_strFault.empty())
        m_fLook(*this);
}
