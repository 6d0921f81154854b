#include "Session.h"

#include "BufferSession.h"
#include "Notes.h"
#include "ToolError.h"

#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"

#include <cstddef>

SSize GetDefaultSize(EViewType eView, EMountType eMount, SSize sInput)
{
    SSize sSize;
    CCustomGPUDewarper::GetDefaultSize(eView, eMount, sInput.nWidth, sInput.nHeight, sSize.nWidth,
                                       sSize.nHeight);
    return sSize;
}

std::string CDewarpSession::GetReason()
{
    const std::string strError = GetDewarper().GetLastErrorText();
    return strError.empty() ? "" : " (" + strError + ")";
}

void CDewarpSession::ThrowUnstarted()
{
    ThrowFailure("OpenGL ES 3.1 cannot be started" + GetReason() +
                 "; install a driver (on Debian: libegl1 and libgl1-mesa-dri) or try a smaller --size");
}

void CDewarpSession::ThrowUndrawn()
{
    ThrowFailure("the frame could not be drawn" + GetReason() + "; --verbose shows the whole log");
}

void CDewarpSession::ApplyView()
{
    CCustomGPUDewarper& rDewarper = GetDewarper();
    rDewarper.SetLogGLErrors(m_sOptions.bVerbose);
    rDewarper.SetLogShaderCode(m_sOptions.bVerbose);
    rDewarper.SetViewType(m_sOptions.eView);
    rDewarper.SetMountType(m_sOptions.eMount);
    rDewarper.SetLensType(m_sOptions.eLens);
    rDewarper.SetInterpolationType(m_sOptions.eInterpolation);
    rDewarper.SetYUVparams(m_sOptions.oYUVSpace.value_or(YUV_SPACE_AUTO),
                           m_sOptions.oYUVRange.value_or(YUV_RANGE_AUTO));
    rDewarper.SetFlip(m_sOptions.bFlipHorizontal, m_sOptions.bFlipVertical);
    rDewarper.SetStrictTiltLimits(m_sOptions.bStrictTilt);
    rDewarper.SetMountTilt(m_sOptions.oMountTilt.value_or(0.0f));
    if (m_sOptions.oRotation && IsFlatView(m_sOptions.eView))
        rDewarper.SetRotation(*m_sOptions.oRotation);
    if (m_sOptions.oGains)
        rDewarper.SetGains(m_sOptions.oGains->fLuma, m_sOptions.oGains->fChroma);
    if (m_sOptions.oEyeDistance)
        rDewarper.SetEyeDistance(*m_sOptions.oEyeDistance);
}

/// Where the view starts, unless the options say otherwise.
void CDewarpSession::ApplyPTZ()
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    CCustomGPUDewarper::GetDefaultPTZ(m_sOptions.eView, m_sOptions.eMount, fPan, fTilt, fZoom);
    GetDewarper().AbsolutePTZ(m_sOptions.oPan.value_or(fPan), m_sOptions.oTilt.value_or(fTilt),
                              m_sOptions.oZoom.value_or(fZoom));
}

void CDewarpSession::DrawFirst(SFrame& sFrame, SOverlays& sOverlays)
{
    ApplyView();
    PrepareOverlays(sFrame, sOverlays);
    ApplyOverlays(GetDewarper(), sOverlays);
    GiveFrame(sFrame);
    // Only now: a frame of a new size puts the view back to where it starts. Given before the first drawing
    // the position needs no second one, for the library tells every view's start without having drawn it.
    ApplyPTZ();
    DrawGiven();
}

void CDewarpSession::Draw(SFrame& sFrame)
{
    GiveFrame(sFrame);
    DrawGiven();
}

void CDewarpSession::DrawGiven()
{
    if (!GetDewarper().DrawGLScene(true))
        ThrowUndrawn();
}

namespace
{

/// CPU planes in, pixels out.
class CPlaneSession : public CDewarpSession
{
public:
    CPlaneSession(const SToolOptions& sOptions, SSize sSize) : CDewarpSession(sOptions)
    {
        if (!m_oDewarper.InitGL(sSize.nWidth, sSize.nHeight) || !m_oDewarper.StartGL())
            ThrowUnstarted();
    }
    ~CPlaneSession() override { m_oDewarper.StopGL(); }
    CPlaneSession(const CPlaneSession&) = delete;
    CPlaneSession& operator=(const CPlaneSession&) = delete;

    SPicture ReadBack() override;

protected:
    void GiveFrame(SFrame& sFrame) override;
    CCustomGPUDewarper& GetDewarper() override { return m_oDewarper; }

private:
    CCustomGPUDewarperOffscreen m_oDewarper;
};

void CPlaneSession::GiveFrame(SFrame& sFrame)
{
    SImageProperties sImage = sFrame.Describe();
    if (!m_oDewarper.SetTexture(&sImage, m_sOptions.oGains.has_value(), nullptr, 0))
        ThrowFailure("the frame was refused" + GetReason() + "; check --raw or try another picture");
}

SPicture CPlaneSession::ReadBack()
{
    int nSize = 0;
    SPicture sPicture;
    const unsigned char* pBuffer =
        m_oDewarper.GetImage(&nSize, &sPicture.nWidth, &sPicture.nHeight, &sPicture.nStride);
    if (pBuffer == nullptr)
        ThrowFailure("the picture could not be read back" + GetReason() + "; --verbose shows the whole log");
    // The buffer's first half, an even number of rows, is ours; the pixels follow it.
    const auto nEvenRows =
        static_cast<std::size_t>(sPicture.nHeight) + static_cast<std::size_t>(sPicture.nHeight % 2);
    sPicture.pPixels = pBuffer + nEvenRows * static_cast<std::size_t>(sPicture.nStride);
    return sPicture;
}

} // namespace

std::vector<std::string> CDewarpSession::GetNotes()
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    GetDewarper().GetPTZ(fPan, fTilt, fZoom);
    return ListLimitedPTZ(m_sOptions, fPan, fTilt, fZoom);
}

std::unique_ptr<CDewarpSession> StartSession(const SToolOptions& sOptions, SSize sInput)
{
    const SSize sSize = sOptions.oSize.value_or(GetDefaultSize(sOptions.eView, sOptions.eMount, sInput));
    if (sOptions.bBuffers)
        return std::make_unique<CBufferSession>(sOptions, sSize);
    return std::make_unique<CPlaneSession>(sOptions, sSize);
}
