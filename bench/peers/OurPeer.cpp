// This library: a fisheye frame in, a view read back or left in the target.

#include "bench/peers/Peer.h"
#include "dewarp/LumorDewarp.h"

#include <GLES3/gl31.h>

namespace
{

// Zoom is twice the height of the view in degrees.
const float ZOOM = 2.0f * PEER_HEIGHT_ANGLE;

class COurPeer final : public CPeer
{
public:
    COurPeer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bToMemory) : m_bToMemory(bToMemory)
    {
        const bool bRGBA = rCase.ePixels == PEER_RGBA;
        m_sImage.pPlane0 = bRGBA ? rFrame.RGBA() : rFrame.Luma();
        m_sImage.pPlane1 = bRGBA ? nullptr : rFrame.UV();
        m_sImage.nWidth = rFrame.Width();
        m_sImage.nHeight = rFrame.Height();
        m_sImage.nStride = bRGBA ? 4 * rFrame.Width() : rFrame.Width();
        m_sImage.nFormat = bRGBA ? IMAGE_FORMAT_RGBA32 : IMAGE_FORMAT_NV12;
        if (!m_oDewarper.InitGL(rCase.nWidth, rCase.nHeight) || !m_oDewarper.StartGL())
            PeerFailed("no context for this library");
        m_oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
        m_oDewarper.SetViewType(VIEW_VCAM);
        m_oDewarper.SetMountType(MOUNT_CEILING);
        m_oDewarper.SetLensType(LENS_UNKNOWN); // equidistant
        COurPeer::SetPan(PEER_FIRST_PAN);
        COurPeer::Frame();
    }

    std::string Name() const override { return m_bToMemory ? "lumor" : "lumor, not read back"; }

    void SetPan(float fPan) override { m_oDewarper.AbsolutePTZ(fPan, PEER_TILT, ZOOM); }

    void Frame() override
    {
        if (!m_oDewarper.SetTexture(&m_sImage, false, nullptr, 0) || !m_oDewarper.DrawGLScene(true))
            PeerFailed("this library draws nothing");
        if (m_bToMemory)
            ReadBack();
        else
            glFinish();
    }

    SLuma Luma() override
    {
        if (!m_bToMemory)
            ReadBack();
        SLuma sLuma{m_nWidth, m_nHeight, {}};
        const std::size_t nPixels = static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight);
        sLuma.vPixels.resize(nPixels);
        for (std::size_t i = 0; i < nPixels; ++i) {
            const unsigned char* p = m_pRows + 4 * i; // blue first
            sLuma.vPixels[i] =
                static_cast<unsigned char>((114 * p[0] + 587 * p[1] + 299 * p[2] + 500) / 1000);
        }
        return sLuma;
    }

private:
    void ReadBack()
    {
        int nSize = 0;
        int nStride = 0;
        const unsigned char* pStart = m_oDewarper.GetImage(&nSize, &m_nWidth, &m_nHeight, &nStride);
        if (pStart == nullptr)
            PeerFailed("this library reads nothing back");
        m_pRows =
            pStart + static_cast<std::size_t>(nStride) * static_cast<std::size_t>((m_nHeight + 1) / 2 * 2);
    }

    bool m_bToMemory;
    SImageProperties m_sImage;
    CCustomGPUDewarperOffscreen m_oDewarper;
    const unsigned char* m_pRows = nullptr;
    int m_nWidth = 0;
    int m_nHeight = 0;
};

} // namespace

PPeer MakeOurPeer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bToMemory)
{
    return std::make_unique<COurPeer>(rCase, rFrame, bToMemory);
}
