#include "Session.h"

#include "Notes.h"
#include "ToolError.h"

#include <cstddef>

SSize GetDefaultSize(EViewType eView, EMountType eMount, SSize sInput)
{
    if (IsFlatView(eView))
        return sInput;
    if (IsStripView(eView) && eMount == MOUNT_WALL)
        return {1600, 640};
    switch (eView) {
    case VIEW_PANORAMA_FULL:
        return {2500, 350};
    case VIEW_PANORAMA_HALF:
        return {2000, 560};
    case VIEW_PANORAMA_QUARTER:
        return {1500, 840};
    case VIEW_PANORAMA_DUAL:
        return {1600, 1000};
    case VIEW_PANORAMA_TRIPLE:
        return {1920, 800};
    default:
        return {1280, 720};
    }
}

CDewarpSession::CDewarpSession(const SToolOptions& sOptions, const CLogCollector& oLog, SSize sInput)
    : m_sOptions(sOptions), m_oLog(oLog)
{
    const SSize sSize = sOptions.oSize.value_or(GetDefaultSize(sOptions.eView, sOptions.eMount, sInput));
    if (!m_oDewarper.InitGL(sSize.nWidth, sSize.nHeight) || !m_oDewarper.StartGL())
        ThrowFailure("OpenGL ES 3.1 cannot be started" + m_oLog.GetReason() +
                     "; install a driver (on Debian: libegl1 and libgl1-mesa-dri) or try a smaller --size");
}

CDewarpSession::~CDewarpSession()
{
    m_oDewarper.StopGL();
}

void CDewarpSession::ApplyView()
{
    m_oDewarper.SetLogGLErrors(m_sOptions.bVerbose);
    m_oDewarper.SetLogShaderCode(m_sOptions.bVerbose);
    m_oDewarper.SetViewType(m_sOptions.eView);
    m_oDewarper.SetMountType(m_sOptions.eMount);
    m_oDewarper.SetLensType(m_sOptions.eLens);
    m_oDewarper.SetInterpolationType(m_sOptions.eInterpolation);
    m_oDewarper.SetYUVparams(m_sOptions.oYUVSpace.value_or(YUV_SPACE_AUTO),
                             m_sOptions.oYUVRange.value_or(YUV_RANGE_AUTO));
    m_oDewarper.SetFlip(m_sOptions.bFlipHorizontal, m_sOptions.bFlipVertical);
    m_oDewarper.SetStrictTiltLimits(m_sOptions.bStrictTilt);
    m_oDewarper.SetMountTilt(m_sOptions.oMountTilt.value_or(0.0f));
    if (m_sOptions.oRotation && IsFlatView(m_sOptions.eView))
        m_oDewarper.SetRotation(*m_sOptions.oRotation);
    if (m_sOptions.oGains)
        m_oDewarper.SetGains(m_sOptions.oGains->fLuma, m_sOptions.oGains->fChroma);
    if (m_sOptions.oEyeDistance)
        m_oDewarper.SetEyeDistance(*m_sOptions.oEyeDistance);
}

void CDewarpSession::ApplyPTZ()
{
    // The frame drawn before put the view's own defaults in force; they stay where nothing was asked for.
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    m_oDewarper.GetPTZ(fPan, fTilt, fZoom);
    m_oDewarper.AbsolutePTZ(m_sOptions.oPan.value_or(fPan), m_sOptions.oTilt.value_or(fTilt),
                            m_sOptions.oZoom.value_or(fZoom));
}

void CDewarpSession::DrawFirst(SFrame& sFrame, SOverlays& sOverlays)
{
    ApplyView();
    ApplyOverlays(m_oDewarper, sOverlays);
    Draw(sFrame);
    if (m_sOptions.oPan || m_sOptions.oTilt || m_sOptions.oZoom) {
        ApplyPTZ();
        Draw(sFrame);
    }
}

void CDewarpSession::Draw(SFrame& sFrame)
{
    SImageProperties sImage = sFrame.Describe();
    if (!m_oDewarper.SetTexture(&sImage, m_sOptions.oGains.has_value(), nullptr, 0))
        ThrowFailure("the frame was refused" + m_oLog.GetReason() + "; check --raw or try another picture");
    if (!m_oDewarper.DrawGLScene(true))
        ThrowFailure("the frame could not be drawn" + m_oLog.GetReason() + "; --verbose shows the whole log");
}

SPicture CDewarpSession::ReadBack()
{
    int nSize = 0;
    SPicture sPicture;
    const unsigned char* pBuffer =
        m_oDewarper.GetImage(&nSize, &sPicture.nWidth, &sPicture.nHeight, &sPicture.nStride);
    if (pBuffer == nullptr)
        ThrowFailure("the picture could not be read back" + m_oLog.GetReason() +
                     "; --verbose shows the whole log");
    // The buffer's first half, an even number of rows, is ours; the pixels follow it.
    const auto nEvenRows =
        static_cast<std::size_t>(sPicture.nHeight) + static_cast<std::size_t>(sPicture.nHeight % 2);
    sPicture.pPixels = pBuffer + nEvenRows * static_cast<std::size_t>(sPicture.nStride);
    return sPicture;
}

std::vector<std::string> CDewarpSession::GetNotes()
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    m_oDewarper.GetPTZ(fPan, fTilt, fZoom);
    return ListLimitedPTZ(m_sOptions, fPan, fTilt, fZoom);
}
