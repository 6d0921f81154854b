#include "Session.h"

#include "BufferSession.h"
#include "SessionOf.h"
#include "ToolLog.h"

#include "dewarp/cpu/CustomCPUDewarper.h"

#include <cstddef>

SSize GetDefaultSize(EViewType eView, EMountType eMount, SSize sInput, const SViewShape& rShape)
{
    SSize sSize;
    CDewarper::GetDefaultSize(eView, eMount, rShape, sInput.nWidth, sInput.nHeight, sSize.nWidth,
                              sSize.nHeight);
    return sSize;
}

namespace
{

/// CPU planes in, pixels out, by either engine.
class CPlaneSession : public CSessionOf<CDewarper>
{
public:
    CPlaneSession(const SToolOptions& sOptions, std::unique_ptr<CDewarper> pDewarper)
        : CSessionOf<CDewarper>(sOptions), m_pDewarper(std::move(pDewarper))
    {
        m_pDewarper->SetDriverLog(sOptions.bVerbose, sOptions.bVerbose);
        m_pDewarper->SetThreadCount(sOptions.oThreads.value_or(0));
        if (sOptions.bExactGeometry)
            static_cast<CCustomCPUDewarper&>(*m_pDewarper).SetExactGeometry(true);
    }

    SPicture ReadBack() override;
    EDewarpEngine GetEngine() override { return m_pDewarper->GetEngine(); }
    std::string GetEngineText() override { return m_pDewarper->GetEngineText(); }

protected:
    void GiveFrame(SFrame& sFrame) override;
    CDewarper& GetDewarper() override { return *m_pDewarper; }
    bool GetSize(int& nWidth, int& nHeight) override { return m_pDewarper->GetTargetSize(nWidth, nHeight); }

private:
    std::unique_ptr<CDewarper> m_pDewarper;
};

void CPlaneSession::GiveFrame(SFrame& sFrame)
{
    SImageProperties sImage = sFrame.Describe();
    if (!m_pDewarper->SetTexture(&sImage, m_sOptions.oGains.has_value(), nullptr, 0))
        ThrowFailure("the frame was refused" + GetReason() + "; check --raw or try another picture");
}

SPicture CPlaneSession::ReadBack()
{
    int nSize = 0;
    SPicture sPicture;
    const unsigned char* pBuffer =
        m_pDewarper->GetImage(&nSize, &sPicture.nWidth, &sPicture.nHeight, &sPicture.nStride);
    if (pBuffer == nullptr)
        ThrowFailure("the picture could not be read back" + GetReason() + "; --verbose shows the whole log");
    // The buffer's first half, an even number of rows, is ours; the pixels follow it.
    const auto nEvenRows =
        static_cast<std::size_t>(sPicture.nHeight) + static_cast<std::size_t>(sPicture.nHeight % 2);
    sPicture.pPixels = pBuffer + nEvenRows * static_cast<std::size_t>(sPicture.nStride);
    return sPicture;
}

} // namespace

void ThrowNoDriver(const std::string& strReason, const char* pElse)
{
    ThrowFailure("OpenGL ES 3.1 cannot be started" + (strReason.empty() ? "" : " (" + strReason + ")") +
                 "; install a driver (on Debian: libegl1, libgles2 and libgl1-mesa-dri), " + pElse +
                 " or try a smaller --size");
}

std::unique_ptr<CDewarpSession> StartSession(const SToolOptions& sOptions, SSize sInput, const CToolLog& rLog)
{
    const SSize sDefault = sOptions.vPanes.empty()
                               ? GetDefaultSize(sOptions.eView, sOptions.eMount, sInput, sOptions.sShape)
                               : SizeOfPanes(sOptions.vPanes);
    const SSize sSize = sOptions.oSize.value_or(sDefault);
    if (sOptions.bBuffers)
        return StartBufferSession(sOptions, sSize);
    std::unique_ptr<CDewarper> pDewarper = CreateDewarper(sOptions.eEngine, sSize.nWidth, sSize.nHeight);
    if (pDewarper != nullptr)
        return std::make_unique<CPlaneSession>(sOptions, std::move(pDewarper));
    const std::string strReason = rLog.GetLastError();
    if (sOptions.eEngine == ENGINE_GL)
        ThrowNoDriver(strReason, "draw with --engine cpu");
    ThrowFailure("the dewarper cannot be started" + (strReason.empty() ? "" : " (" + strReason + ")") +
                 "; try a smaller --size");
}
