#include "bench/accuracy/ViewSession.h"

#include <GLES3/gl31.h>

#include <stdexcept>

static EDewarpEngine s_eEngine = ENGINE_GL;
static bool s_bExact = false;

void UseEngine(EDewarpEngine eEngine, bool bExact)
{
    s_eEngine = eEngine;
    s_bExact = bExact;
}

CViewSession::CViewSession(int nTargetWidth, int nTargetHeight)
{
    if (!InitGL(nTargetWidth, nTargetHeight) || !StartGL())
        throw std::runtime_error("no OpenGL ES 3.1 context is to be had");
    if (s_eEngine != ENGINE_CPU)
        return;
    m_pProcessor = std::make_unique<CCustomCPUDewarper>();
    m_pProcessor->SetExactGeometry(s_bExact);
    if (!m_pProcessor->InitTarget(nTargetWidth, nTargetHeight))
        throw std::runtime_error("the processor engine has no target");
}

/// Calls rUse with each dewarper that has to know.
template <class F>
void CViewSession::Each(F&& rUse)
{
    rUse(static_cast<CCustomGPUDewarperOffscreen&>(*this));
    if (m_pProcessor != nullptr)
        rUse(*m_pProcessor);
}

void CViewSession::Show(const SReferenceSetup& sSetup, CTestFrame& oFrame, bool bLinear)
{
    Each([&](auto& rDewarper) {
        rDewarper.SetViewType(sSetup.eView);
        rDewarper.SetMountType(sSetup.eMount);
        rDewarper.SetLensType(static_cast<ELensType>(sSetup.nLensType));
        rDewarper.SetMountTilt(static_cast<float>(sSetup.fMountTilt));
        rDewarper.SetStrictTiltLimits(sSetup.bStrict);
    });
    // A new view or mount brings its own angles with its first frame; ours come after it.
    ShowFrame(oFrame, bLinear);
    Each([&](auto& rDewarper) {
        rDewarper.AbsolutePTZ(static_cast<float>(sSetup.fPan), static_cast<float>(sSetup.fTilt),
                              static_cast<float>(sSetup.fZoom));
    });
    ShowFrame(oFrame, bLinear);
    if (pParams->fPan != static_cast<float>(sSetup.fPan) ||
        pParams->fTilt != static_cast<float>(sSetup.fTilt) ||
        pParams->fZoom != static_cast<float>(sSetup.fZoom))
        throw std::runtime_error("a case lies outside its view's limits");
}

void CViewSession::ShowFisheye(EYUVSpace eSpace, EYUVRange eRange, CTestFrame& oFrame, bool bLinear)
{
    Each([&](auto& rDewarper) {
        rDewarper.SetViewType(VIEW_FISHEYE);
        rDewarper.SetYUVparams(eSpace, eRange);
    });
    ShowFrame(oFrame, bLinear);
}

void CViewSession::ShowFrame(CTestFrame& oFrame, bool bLinear)
{
    Each([&](auto& rDewarper) {
        rDewarper.SetInterpolationType(bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
        if (!rDewarper.SetTexture(oFrame.Image(), false, nullptr, 0) || !rDewarper.DrawGLScene(false))
            throw std::runtime_error("a frame could not be drawn");
    });
}

std::string CViewSession::ProcessorText() const
{
    return m_pProcessor->GetEngineText();
}

STestImage CViewSession::Picture()
{
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pStart = m_pProcessor != nullptr
                                      ? m_pProcessor->GetImage(&nSize, &nWidth, &nHeight, &nStride)
                                      : GetImage(&nSize, &nWidth, &nHeight, &nStride);
    if (pStart == nullptr)
        throw std::runtime_error("a picture could not be read back");
    const std::size_t nRow = static_cast<std::size_t>(nStride);
    const unsigned char* pRows = pStart + nRow * static_cast<std::size_t>((nHeight + 1) / 2 * 2);
    STestImage sImage(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const unsigned char* pPixel =
                pRows + nRow * static_cast<std::size_t>(y) + 4 * static_cast<std::size_t>(x);
            sImage.Set(x, y, pPixel[2], pPixel[1], pPixel[0], pPixel[3]);
        }
    return sImage;
}

std::string DriverName()
{
    CViewSession oSession(16, 16);
    if (s_eEngine == ENGINE_CPU)
        return oSession.ProcessorText();
    std::string strName;
    for (const GLenum nName : {GLenum{GL_RENDERER}, GLenum{GL_VERSION}}) {
        const GLubyte* pText = glGetString(nName);
        strName += strName.empty() ? "" : ", ";
        strName += pText == nullptr ? "?" : reinterpret_cast<const char*>(pText);
    }
    return strName;
}
