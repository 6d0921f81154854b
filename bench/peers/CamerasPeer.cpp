// Many cameras in one process, and one camera that draws as many frames.

#include "bench/peers/EnginePeer.h"

#include <barrier>
#include <thread>

namespace
{

class CCamerasPeer final : public CPeer
{
public:
    CCamerasPeer(const SPeerCase& rCase, CPeerFrame& rFrame, int nCameras, bool bThreads)
        : m_bThreads(bThreads), m_oBarrier(nCameras + 1)
    {
        SPeerCase sCase = rCase;
        sCase.bOwnPlanes = true;
        if (bThreads)
            sCase.nThreads = 1;
        for (int i = 0; i < nCameras; ++i)
            m_vCameras.push_back(MakeEnginePeer(sCase, rFrame, ENGINE_CPU));
        CCamerasPeer::SetPan(PEER_FIRST_PAN);
        for (int i = 0; bThreads && i < nCameras; ++i)
            m_vThreads.emplace_back([this, i] { DrawWhenAsked(*m_vCameras[static_cast<std::size_t>(i)]); });
        CCamerasPeer::Frame();
    }

    ~CCamerasPeer() override
    {
        m_bEnd = true;
        if (m_bThreads)
            m_oBarrier.arrive_and_wait();
    }

    std::string Name() const override
    {
        return std::to_string(m_vCameras.size()) +
               (m_bThreads ? " cameras, a thread each" : " cameras in turn");
    }

    void SetPan(float fPan) override
    {
        for (const PPeer& pCamera : m_vCameras)
            pCamera->SetPan(fPan += 20.0f);
    }

    void Frame() override
    {
        if (m_bThreads) {
            m_oBarrier.arrive_and_wait(); // go
            m_oBarrier.arrive_and_wait(); // done
            return;
        }
        for (const PPeer& pCamera : m_vCameras)
            pCamera->Frame();
    }

    SLuma Luma() override { return {}; }

private:
    void DrawWhenAsked(CPeer& rCamera)
    {
        while (true) {
            m_oBarrier.arrive_and_wait();
            if (m_bEnd)
                return;
            rCamera.Frame();
            m_oBarrier.arrive_and_wait();
        }
    }

    bool m_bThreads;
    bool m_bEnd = false; ///< written before the threads are let go
    std::vector<PPeer> m_vCameras;
    std::barrier<> m_oBarrier;
    std::vector<std::jthread> m_vThreads;
};

class CRepeatedPeer final : public CPeer
{
public:
    CRepeatedPeer(const SPeerCase& rCase, CPeerFrame& rFrame, int nFrames)
        : m_nFrames(nFrames), m_bCold(rCase.nBuffers > 1),
          m_pCamera(MakeEnginePeer(rCase, rFrame, ENGINE_CPU))
    {}

    std::string Name() const override
    {
        return "one, " + std::to_string(m_nFrames) + (m_bCold ? " frames, buffers in turn" : " frames");
    }
    void SetPan(float fPan) override { m_pCamera->SetPan(fPan); }
    void Frame() override { m_pCamera->Frames(m_nFrames, false); }
    SLuma Luma() override { return {}; }

private:
    int m_nFrames;
    bool m_bCold;
    PPeer m_pCamera;
};

} // namespace

PPeer MakeCamerasPeer(const SPeerCase& rCase, CPeerFrame& rFrame, int nCameras, bool bThreads)
{
    return std::make_unique<CCamerasPeer>(rCase, rFrame, nCameras, bThreads);
}

PPeer MakeRepeatedPeer(const SPeerCase& rCase, CPeerFrame& rFrame, int nFrames)
{
    return std::make_unique<CRepeatedPeer>(rCase, rFrame, nFrames);
}
