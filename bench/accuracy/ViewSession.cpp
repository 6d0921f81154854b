#include "bench/accuracy/ViewSession.h"

#include <GLES3/gl31.h>

#include <stdexcept>

CViewSession::CViewSession(int nTargetWidth, int nTargetHeight)
{
    if (!InitGL(nTargetWidth, nTargetHeight) || !StartGL())
        throw std::runtime_error("no OpenGL ES 3.1 context is to be had");
}

void CViewSession::Show(const SReferenceSetup& sSetup, CTestFrame& oFrame, bool bLinear)
{
    SetViewType(sSetup.eView);
    SetMountType(sSetup.eMount);
    SetLensType(static_cast<ELensType>(sSetup.nLensType));
    SetMountTilt(static_cast<float>(sSetup.fMountTilt));
    SetStrictTiltLimits(sSetup.bStrict);
    // A new view or mount brings its own angles with its first frame; ours come after it.
    ShowFrame(oFrame, bLinear);
    AbsolutePTZ(static_cast<float>(sSetup.fPan), static_cast<float>(sSetup.fTilt),
                static_cast<float>(sSetup.fZoom));
    ShowFrame(oFrame, bLinear);
    if (pParams->fPan != static_cast<float>(sSetup.fPan) ||
        pParams->fTilt != static_cast<float>(sSetup.fTilt) ||
        pParams->fZoom != static_cast<float>(sSetup.fZoom))
        throw std::runtime_error("a case lies outside its view's limits");
}

void CViewSession::ShowFrame(CTestFrame& oFrame, bool bLinear)
{
    SetInterpolationType(bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
    if (!SetTexture(oFrame.Image(), false, nullptr, 0) || !DrawGLScene(false))
        throw std::runtime_error("a frame could not be drawn");
}

STestImage CViewSession::Picture()
{
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pStart = GetImage(&nSize, &nWidth, &nHeight, &nStride);
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
    const CViewSession oSession(16, 16);
    std::string strName;
    for (const GLenum nName : {GLenum{GL_RENDERER}, GLenum{GL_VERSION}}) {
        const GLubyte* pText = glGetString(nName);
        strName += strName.empty() ? "" : ", ";
        strName += pText == nullptr ? "?" : reinterpret_cast<const char*>(pText);
    }
    return strName;
}
