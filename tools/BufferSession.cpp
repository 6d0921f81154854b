#include "BufferSession.h"

#include "BufferFrames.h"
#include "SessionOf.h"

#include "dewarp/android/CustomGPUDewarperVela.h"
#include "dewarp/records/YUVColour.h"

#include <ui/GraphicBuffer.h>

#include <cstdlib>

namespace
{

using android::GraphicBuffer;

const uint64_t USAGE = GraphicBuffer::USAGE_SW_READ_OFTEN | GraphicBuffer::USAGE_SW_WRITE_OFTEN;

bool IsSet(const char* pName)
{
    return std::getenv(pName) != nullptr;
}

/// The default display is asked for; without a window system Mesa has one by name only.
void ChooseDisplay()
{
    if (!IsSet("EGL_PLATFORM") && !IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY"))
        setenv("EGL_PLATFORM", "surfaceless", 0);
}

void ConvertPixels(std::optional<SFrame>& oImage, EYUVSpace eSpace, EYUVRange eRange)
{
    if (!oImage)
        return;
    std::vector<unsigned char>& rBytes = oImage->avPlanes[0];
    for (std::size_t i = 0; i + 3 < rBytes.size(); i += 4) {
        const unsigned int nColour = static_cast<unsigned int>(rBytes[i]) << 24 |
                                     static_cast<unsigned int>(rBytes[i + 1]) << 16 |
                                     static_cast<unsigned int>(rBytes[i + 2]) << 8;
        const unsigned int nYUV = ConvertColourToYUV(nColour, eSpace, eRange);
        for (std::size_t k = 0; k < 3; k++)
            rBytes[i + k] = static_cast<unsigned char>(nYUV >> (24 - 8 * k));
    }
}

class CBufferSession : public CSessionOf<CCustomGPUDewarperVela>
{
public:
    CBufferSession(const SToolOptions& sOptions, SSize sSize);
    ~CBufferSession() override { m_oDewarper.StopGL(); }

    SPicture ReadBack() override;
    EDewarpEngine GetEngine() override { return ENGINE_GL; }
    std::string GetEngineText() override { return "OpenGL ES, graphic buffers"; }

protected:
    CCustomGPUDewarperVela& GetDewarper() override { return m_oDewarper; }
    void GiveFrame(SFrame& sFrame) override;
    void DrawGiven() override;
    void PrepareOverlays(const SFrame& sFrame, SOverlays& sOverlays) override;
    unsigned int ColorForDewarper(unsigned int nColor) const override
    {
        return ConvertColourToYUV(nColor, m_eSpace, m_eRange);
    }

private:
    CCustomGPUDewarperVela m_oDewarper;
    std::unique_ptr<GraphicBuffer> m_pInput; ///< made for the first frame
    GraphicBuffer m_oOutput;
    std::vector<unsigned char> m_vPixels;
    EYUVSpace m_eSpace = YUV_SPACE_BT601; ///< of the YUV in both buffers
    EYUVRange m_eRange = YUV_RANGE_FULL;
};

CBufferSession::CBufferSession(const SToolOptions& sOptions, SSize sSize)
    : CSessionOf<CCustomGPUDewarperVela>(sOptions),
      m_oOutput(static_cast<uint32_t>(sSize.nWidth), static_cast<uint32_t>(sSize.nHeight),
                HAL_PIXEL_FORMAT_YCBCR_420_888, 1, USAGE, "lumor-dewarp")
{
    ChooseDisplay();
    m_oDewarper.SetLogGLErrors(sOptions.bVerbose);
    m_oDewarper.SetLogShaderCode(sOptions.bVerbose);
    m_oDewarper.InitGL(sSize.nWidth, sSize.nHeight);
    if (m_oOutput.initCheck() != 0 || !m_oDewarper.StartGL())
        ThrowNoDriver(m_oDewarper.GetLastErrorText(), "leave out --buffers");
}

void CBufferSession::PrepareOverlays(const SFrame& sFrame, SOverlays& sOverlays)
{
    // What was asked for, what the frame says, and what the library takes otherwise.
    m_eSpace = m_sOptions.oYUVSpace.value_or(YUV_SPACE_AUTO);
    m_eRange = m_sOptions.oYUVRange.value_or(YUV_RANGE_AUTO);
    if (m_eSpace == YUV_SPACE_AUTO && sFrame.GetPlaneCount() > 1)
        m_eSpace = sFrame.eYUVSpace;
    if (m_eRange == YUV_RANGE_AUTO && sFrame.GetPlaneCount() > 1)
        m_eRange = sFrame.eYUVRange;
    ConvertPixels(sOverlays.oInput, m_eSpace, m_eRange);
    ConvertPixels(sOverlays.oOutput, m_eSpace, m_eRange);
    for (SGPolygon& rMask : sOverlays.vMasks)
        rMask.nColor = ConvertColourToYUV(rMask.nColor, m_eSpace, m_eRange);
    for (SGPUString& rText : sOverlays.vTexts)
        rText.nColor = ConvertColourToYUV(rText.nColor, m_eSpace, m_eRange);
}

void CBufferSession::GiveFrame(SFrame& sFrame)
{
    if (m_pInput == nullptr)
        m_pInput = std::make_unique<GraphicBuffer>(static_cast<uint32_t>(sFrame.nWidth),
                                                   static_cast<uint32_t>(sFrame.nHeight),
                                                   HAL_PIXEL_FORMAT_YCBCR_420_888, 1, USAGE, "lumor-dewarp");
    FillBuffer(*m_pInput, sFrame, m_eSpace, m_eRange);
    if (!m_oDewarper.CreateImageF(m_pInput.get(), &m_oOutput))
        ThrowUndrawn();
}

void CBufferSession::DrawGiven()
{
    CSessionOf<CCustomGPUDewarperVela>::DrawGiven();
    m_oDewarper.DestroyImage();
}

SPicture CBufferSession::ReadBack()
{
    m_vPixels = ReadBuffer(m_oOutput, m_eSpace, m_eRange);
    SPicture sPicture;
    sPicture.pPixels = m_vPixels.data();
    sPicture.nWidth = static_cast<int>(m_oOutput.getWidth());
    sPicture.nHeight = static_cast<int>(m_oOutput.getHeight());
    sPicture.nStride = sPicture.nWidth * 4;
    return sPicture;
}

} // namespace

CDewarpSession* lumor_tool_make_buffer_session(const SToolOptions& sOptions, SSize sSize)
{
    return std::make_unique<CBufferSession>(sOptions, sSize).release();
}
