// This library through its shared operations: a fisheye frame in, a view in the host's memory.

#include "bench/peers/EnginePeer.h"

#include "bench/Layers.h"
#include "bench/peers/PlaneRing.h"

namespace
{

// Zoom is twice the height of the view in degrees.
const float ZOOM = 2.0f * PEER_HEIGHT_ANGLE;

class CEnginePeer final : public CPeer
{
public:
    CEnginePeer(const SPeerCase& rCase, CPeerFrame& rFrame, EDewarpEngine eEngine, const SPeerLayers& rLayers)
        : m_sCase(rCase), m_sLayers(rLayers), m_oInput(rCase.nBuffers, rCase.bOwnPlanes),
          m_oOutput(rCase.nBuffers, true), m_pDewarper(CreateDewarper(eEngine, rCase.nWidth, rCase.nHeight))
    {
        if (m_pDewarper == nullptr)
            PeerFailed("an engine of this library does not start");
        DescribeInput(rFrame);
        DescribeOutput();
        SetUp();
        for (int i = 0; i < rCase.nBuffers; ++i)
            CEnginePeer::Frame(); // every piece of memory was written once
    }

    std::string Name() const override
    {
        std::string strName = m_pDewarper->GetEngine() == ENGINE_CPU ? "processor" : "OpenGL";
        for (const auto& [bLayer, pLayer] :
             {std::pair{m_sLayers.bMasks, "masks"}, {m_sLayers.bText, "text"}, {m_sLayers.bClock, "clock"}}) {
            if (bLayer)
                strName += std::string(" + ") + pLayer;
        }
        return strName;
    }

    void SetPan(float fPan) override { m_pDewarper->AbsolutePTZ(fPan, PEER_TILT, ZOOM); }

    void Frame() override
    {
        m_oInput.Next();
        m_oOutput.Next();
        PointAtPlanes();
        if (m_sLayers.bClock)
            m_pDewarper->SetStrings(BenchStrings(++m_nSecond));
        if (!m_pDewarper->SetTexture(&m_sImage, false, nullptr, 0) || !m_pDewarper->DrawTo(m_sTarget))
            PeerFailed("an engine of this library draws nothing: " + m_pDewarper->GetLastErrorText());
    }

    SLuma Luma() override
    {
        SLuma sLuma{m_sCase.nWidth, m_sCase.nHeight, {}};
        const std::size_t nPixels =
            static_cast<std::size_t>(m_sCase.nWidth) * static_cast<std::size_t>(m_sCase.nHeight);
        const unsigned char* pFirst = m_sTarget.apPlanes[0];
        for (std::size_t i = 0; i < nPixels; ++i) {
            const unsigned char* p = pFirst + 4 * i; // blue first
            sLuma.vPixels.push_back(
                m_sCase.bYUVOut
                    ? pFirst[i]
                    : static_cast<unsigned char>((114 * p[0] + 587 * p[1] + 299 * p[2] + 500) / 1000));
        }
        return sLuma;
    }

private:
    void DescribeInput(CPeerFrame& rFrame)
    {
        const bool bRGBA = m_sCase.ePixels == PEER_RGBA;
        const std::size_t nPixels =
            static_cast<std::size_t>(rFrame.Width()) * static_cast<std::size_t>(rFrame.Height());
        m_oInput.Add(bRGBA ? rFrame.RGBA() : rFrame.Luma(), bRGBA ? 4 * nPixels : nPixels);
        if (!bRGBA)
            m_oInput.Add(rFrame.UV(), nPixels / 2);
        m_sImage.nWidth = rFrame.Width();
        m_sImage.nHeight = rFrame.Height();
        m_sImage.nStride = bRGBA ? 4 * rFrame.Width() : rFrame.Width();
        m_sImage.nFormat = bRGBA ? IMAGE_FORMAT_RGBA32 : IMAGE_FORMAT_NV12;
    }

    void DescribeOutput()
    {
        const std::size_t nPixels =
            static_cast<std::size_t>(m_sCase.nWidth) * static_cast<std::size_t>(m_sCase.nHeight);
        m_oOutput.AddEmpty(m_sCase.bYUVOut ? nPixels : 4 * nPixels);
        if (m_sCase.bYUVOut)
            m_oOutput.AddEmpty(nPixels / 2);
        m_sTarget.eFormat = m_sCase.bYUVOut ? IMAGE_FORMAT_NV12 : IMAGE_FORMAT_BGRA32;
        m_sTarget.anStrides[0] = m_sCase.bYUVOut ? m_sCase.nWidth : 4 * m_sCase.nWidth;
        m_sTarget.anStrides[1] = m_sCase.nWidth;
    }

    void PointAtPlanes()
    {
        const bool bRGBA = m_sCase.ePixels == PEER_RGBA;
        m_sImage.pPlane0 = m_oInput.Plane(0);
        m_sImage.pPlane1 = bRGBA ? nullptr : m_oInput.Plane(1);
        m_sTarget.apPlanes[0] = m_oOutput.Plane(0);
        m_sTarget.apPlanes[1] = m_sCase.bYUVOut ? m_oOutput.Plane(1) : nullptr;
    }

    void SetUp()
    {
        const EViewType aeViews[] = {VIEW_VCAM, VIEW_PANORAMA_FULL, VIEW_VCAM_QUAD};
        CDewarper& rDewarper = *m_pDewarper;
        rDewarper.SetThreadCount(m_sCase.nThreads);
        rDewarper.SetInterpolationType(m_sCase.bNearest ? INTERPOLATION_NEAREST : INTERPOLATION_LINEAR);
        rDewarper.SetViewType(aeViews[m_sCase.eView]);
        rDewarper.SetMountType(MOUNT_CEILING);
        rDewarper.SetLensType(LENS_UNKNOWN); // equidistant
        if (m_sLayers.bMasks)
            rDewarper.SetMaskPolygons(BenchMasks(0));
        if (m_sLayers.bText)
            rDewarper.SetStrings(BenchStrings(0));
        CEnginePeer::SetPan(PEER_FIRST_PAN);
    }

    SPeerCase m_sCase;
    SPeerLayers m_sLayers;
    CPlaneRing m_oInput;
    CPlaneRing m_oOutput;
    SImageProperties m_sImage;
    SFrameTarget m_sTarget;
    std::unique_ptr<CDewarper> m_pDewarper;
    int m_nSecond = 0;
};

} // namespace

PPeer MakeEnginePeer(const SPeerCase& rCase, CPeerFrame& rFrame, EDewarpEngine eEngine,
                     const SPeerLayers& rLayers)
{
    return std::make_unique<CEnginePeer>(rCase, rFrame, eEngine, rLayers);
}

std::string EngineText(EDewarpEngine eEngine, int nThreads)
{
    const std::unique_ptr<CDewarper> pDewarper = CreateDewarper(eEngine, 64, 64);
    if (pDewarper == nullptr)
        return "";
    pDewarper->SetThreadCount(nThreads);
    return pDewarper->GetEngineText();
}
