// Several cameras at once, a dewarper and a thread each: what all of them draw in a second, beside one alone,
// and whether they draw the same picture as it.
//     lumor-bench-cameras [ROUNDS]

#include "bench/Frames.h"
#include "dewarp/LumorDewarp.h"

#include <algorithm>
#include <barrier>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

namespace
{

const int CAMERAS[] = {1, 2, 4, 8};
const int MOST_CAMERAS = 8;
const int FRAMES_ALTOGETHER = 48;
const int WIDTH = 1920;
const int HEIGHT = 1080;

/// One camera. Everything but construction happens on its own thread.
class CCamera
{
public:
    CCamera() : m_oFrame(IMAGE_FORMAT_NV12, 1920, 1920) {}

    void Start()
    {
        m_oDewarper.InitGL(WIDTH, HEIGHT);
        if (!m_oDewarper.StartGL())
            std::exit(77);
        m_oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
        m_oDewarper.SetLensType(LENS_DSL419);
        m_oDewarper.SetViewType(VIEW_VCAM);
        m_oDewarper.AbsolutePTZ(90.0f, 45.0f, 120.0f);
        Draw(2);
    }

    void Stop() { m_oDewarper.StopGL(); }

    /// Draws frames and reads each back.
    void Draw(int nFrames)
    {
        for (int i = 0; i < nFrames; ++i) {
            int nStride = 0;
            int nSize = 0;
            int nWidth = 0;
            int nHeight = 0;
            const bool bDrawn =
                m_oDewarper.SetTexture(m_oFrame.Image(), false, nullptr, 0) && m_oDewarper.DrawGLScene(true);
            const unsigned char* pStart = m_oDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride);
            if (!bDrawn || pStart == nullptr)
                std::exit(1);
            m_pRows = pStart + nSize; // an even number of rows
            m_nBytes = static_cast<std::size_t>(nSize);
        }
    }

    std::string Picture() const { return std::string(reinterpret_cast<const char*>(m_pRows), m_nBytes); }

private:
    CBenchFrame m_oFrame;
    CCustomGPUDewarperOffscreen m_oDewarper;
    const unsigned char* m_pRows = nullptr;
    std::size_t m_nBytes = 0;
};

struct SRun
{
    double fFramesPerSecond = 0.0;
    std::vector<std::string> vPictures;
};

SRun RunCameras(int nCameras)
{
    std::vector<std::unique_ptr<CCamera>> vCameras;
    vCameras.reserve(static_cast<std::size_t>(nCameras));
    for (int i = 0; i < nCameras; ++i)
        vCameras.push_back(std::make_unique<CCamera>());
    SRun sRun;
    sRun.vPictures.resize(vCameras.size());
    std::barrier oBarrier(nCameras + 1);
    std::vector<std::jthread> vThreads;
    for (std::size_t i = 0; i < vCameras.size(); ++i) {
        vThreads.emplace_back([&, i] {
            CCamera& rCamera = *vCameras[i];
            rCamera.Start();
            oBarrier.arrive_and_wait();
            rCamera.Draw(FRAMES_ALTOGETHER / nCameras);
            oBarrier.arrive_and_wait();
            sRun.vPictures[i] = rCamera.Picture();
            rCamera.Stop();
        });
    }
    oBarrier.arrive_and_wait();
    sRun.fFramesPerSecond = FRAMES_ALTOGETHER / MillisecondsOf([&] { oBarrier.arrive_and_wait(); }) * 1000.0;
    return sRun;
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    setenv("EGL_PLATFORM", "surfaceless", 0);
    const int nRounds = nArguments > 1 ? std::max(1, std::atoi(ppArguments[1])) : 7;
    std::vector<double> avSpeeds[MOST_CAMERAS + 1];
    std::vector<double> avRatios[MOST_CAMERAS + 1];
    bool bSame = true;
    const std::string strWanted = RunCameras(1).vPictures[0];
    for (int i = 0; i < nRounds; ++i) {
        for (const int nCameras : CAMERAS) {
            const SRun sRun = RunCameras(nCameras);
            avSpeeds[nCameras].push_back(sRun.fFramesPerSecond);
            avRatios[nCameras].push_back(sRun.fFramesPerSecond / avSpeeds[1].back());
            bSame = bSame && std::all_of(sRun.vPictures.begin(), sRun.vPictures.end(),
                                         [&](const std::string& rPicture) { return rPicture == strWanted; });
        }
    }
    std::printf("1920x1920 NV12 to %dx%d, read back; %d rounds, medians\n", WIDTH, HEIGHT, nRounds);
    for (const int nCameras : CAMERAS)
        std::printf("%d cameras: %6.1f frames a second altogether, %.3f of one alone\n", nCameras,
                    Median(avSpeeds[nCameras]), Median(avRatios[nCameras]));
    std::printf("pictures: %s\n", bSame ? "all identical" : "DIFFERENT");
    return bSame ? 0 : 1;
}
