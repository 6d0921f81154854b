// A steady frame beside the GL calls that it makes, written out by hand: what the dewarper itself costs. Both
// run alternately within one measurement, on the same objects.

#include "bench/Frames.h"
#include "dewarp/LumorDewarp.h"

#include <GLES3/gl31.h>
#include <benchmark/benchmark.h>

#include <cstdlib>

namespace
{

struct SSize
{
    const char* pName;
    int nInput;
    int nWidth;
    int nHeight;
};

// The small one leaves the driver little to do.
const SSize SIZES[] = {{"1080p", 1920, 1920, 1080}, {"720p", 1920, 1280, 720}, {"tiny", 64, 64, 64}};

/// One input plane in its texture.
struct SPlane
{
    unsigned int nUnit;
    unsigned int nTexture;
    unsigned int nFormat;
    int nWidth;
    int nHeight;
    const unsigned char* pPixels;
};

/// The dewarper and the calls of its steady frame.
class CReplay
{
public:
    CReplay(const SSize& rSize, int nFormat) : m_sSize(rSize), m_oFrame(nFormat, rSize.nInput, rSize.nInput)
    {
        m_oDewarper.InitGL(rSize.nWidth, rSize.nHeight);
        if (!m_oDewarper.StartGL())
            std::exit(77);
        m_oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
        m_oDewarper.SetLensType(LENS_DSL419);
        m_oDewarper.SetViewType(VIEW_VCAM);
        m_oDewarper.AbsolutePTZ(90.0f, 45.0f, 120.0f);
        for (int i = 0; i < 3; ++i)
            Frame();
        glFinish();
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &m_nFrameBuffer);
        ListPlanes(nFormat);
    }

    void Frame()
    {
        m_oDewarper.SetTexture(m_oFrame.Image(), false, nullptr, 0);
        m_oDewarper.DrawGLScene(true);
    }

    void Replay() const
    {
        for (int i = 0; i < m_nPlanes; ++i)
            Upload(m_aPlanes[i]);
        glActiveTexture(GL_TEXTURE0);
        glBindFramebuffer(GL_FRAMEBUFFER, static_cast<unsigned int>(m_nFrameBuffer));
        glClear(GL_COLOR_BUFFER_BIT);
        glViewport(0, 0, m_sSize.nWidth, m_sSize.nHeight);
        glUseProgram(m_oDewarper.sMainShader.nProgram);
        for (int i = 0; i < m_nPlanes; ++i) {
            glActiveTexture(m_aPlanes[i].nUnit);
            glBindTexture(GL_TEXTURE_2D, m_aPlanes[i].nTexture);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        }
        glActiveTexture(GL_TEXTURE0);
        glDrawArrays(GL_TRIANGLES, 0, m_oDewarper.pVCAM->m_nVertexCount);
        glViewport(0, 0, m_sSize.nWidth, m_sSize.nHeight);
        glFlush();
        for (int i = 0; i < m_nPlanes; ++i) {
            glActiveTexture(m_aPlanes[i].nUnit);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
        glActiveTexture(GL_TEXTURE0);
    }

private:
    void ListPlanes(int nFormat)
    {
        const int n = m_sSize.nInput;
        const SImageProperties& rImage = *m_oFrame.Image();
        if (nFormat == IMAGE_FORMAT_RGBA32) {
            m_aPlanes[0] = {GL_TEXTURE0, m_oDewarper.nTextureRGB, GL_RGBA, n, n, rImage.pPlane0};
            m_nPlanes = 1;
            return;
        }
        m_aPlanes[0] = {GL_TEXTURE0, m_oDewarper.nTextureY, GL_LUMINANCE, n, n, rImage.pPlane0};
        m_aPlanes[1] = {GL_TEXTURE1, m_oDewarper.nTextureUV, GL_LUMINANCE_ALPHA, n / 2,
                        n / 2,       rImage.pPlane1};
        m_nPlanes = 2;
    }

    static void Upload(const SPlane& rPlane)
    {
        glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
        glActiveTexture(GL_TEXTURE0);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, rPlane.nWidth);
        glBindTexture(GL_TEXTURE_2D, rPlane.nTexture);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, rPlane.nWidth, rPlane.nHeight, rPlane.nFormat,
                        GL_UNSIGNED_BYTE, rPlane.pPixels);
    }

    SSize m_sSize;
    CBenchFrame m_oFrame;
    CCustomGPUDewarperOffscreen m_oDewarper;
    SPlane m_aPlanes[2] = {};
    int m_nPlanes = 0;
    int m_nFrameBuffer = 0;
};

void FrameBesideReplay(benchmark::State& rState, const SSize& rSize, int nFormat)
{
    CReplay oReplay(rSize, nFormat);
    SBenchTimes sFrame;
    SBenchTimes sReplay;
    for (auto oIteration : rState) {
        (void)oIteration;
        sFrame.Add([&] {
            oReplay.Frame();
            glFinish();
        });
        rState.SetIterationTime(sFrame.vWall.back() / 1000.0);
        sReplay.Add([&] {
            oReplay.Replay();
            glFinish();
        });
    }
    rState.counters["frame_ms"] = Median(sFrame.vWall);
    rState.counters["replay_ms"] = Median(sReplay.vWall);
    rState.counters["ratio"] = Median(sFrame.vWall) / Median(sReplay.vWall);
    rState.counters["cpu_ratio"] = Median(sFrame.vProcessor) / Median(sReplay.vProcessor);
}

} // namespace

#define REPLAY(nFormat, strName, nSize)                                                                      \
    BENCHMARK_CAPTURE(FrameBesideReplay, strName, SIZES[nSize], nFormat)                                     \
        ->UseManualTime()                                                                                    \
        ->Unit(benchmark::kMillisecond)
REPLAY(IMAGE_FORMAT_NV12, nv12_1080p, 0);
REPLAY(IMAGE_FORMAT_RGBA32, rgba_1080p, 0);
REPLAY(IMAGE_FORMAT_NV12, nv12_720p, 1);
REPLAY(IMAGE_FORMAT_RGBA32, rgba_720p, 1);
REPLAY(IMAGE_FORMAT_NV12, nv12_tiny, 2);
REPLAY(IMAGE_FORMAT_RGBA32, rgba_tiny, 2);

int main(int nArguments, char** ppArguments)
{
    setenv("EGL_PLATFORM", "surfaceless", 0);
    benchmark::Initialize(&nArguments, ppArguments);
    if (benchmark::ReportUnrecognizedArguments(nArguments, ppArguments))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
