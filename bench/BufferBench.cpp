// A frame from graphic buffer to graphic buffer, on this platform's stand-ins, beside the same frame from
// planes: NV12 with the shader text as it is written, and RGBA. All run in turn within one measurement.

#include "bench/Frames.h"
#include "dewarp/LumorDewarp.h"
#include "dewarp/android/CustomGPUDewarperVela.h"
#include "platform/ShaderDialect.h"

#include <GLES3/gl31.h>
#include <benchmark/benchmark.h>
#include <ui/GraphicBuffer.h>

#include <cstdlib>

namespace
{

const int SIDE = 1920;
const int WIDTH = 1920;
const int HEIGHT = 1080;

/// The camera's view in both classes.
template <class TDewarper>
void ChooseView(TDewarper& rDewarper)
{
    rDewarper.InitGL(WIDTH, HEIGHT);
    if (!rDewarper.StartGL())
        std::exit(77);
    rDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
    rDewarper.SetLensType(LENS_DSL419);
    rDewarper.SetViewType(VIEW_VCAM);
    rDewarper.AbsolutePTZ(90.0f, 45.0f, 120.0f);
}

/// Planes in, target finished.
class CPlaneFrames
{
public:
    /// \param bAdapt false: the shader text that drivers get where nothing is known to be faster
    CPlaneFrames(int nFormat, bool bAdapt) : m_oFrame(nFormat, SIDE, SIDE)
    {
        SetShaderPrecisionAdaption(bAdapt);
        ChooseView(m_oDewarper);
        Frame();
        SetShaderPrecisionAdaption(true);
    }

    void Frame()
    {
        m_oDewarper.SetTexture(m_oFrame.Image(), false, nullptr, 0);
        m_oDewarper.DrawGLScene(true);
        glFinish();
    }

private:
    CBenchFrame m_oFrame;
    CCustomGPUDewarperOffscreen m_oDewarper;
};

/// Buffers in and out.
class CBufferFrames
{
public:
    CBufferFrames()
        : m_oInput(SIDE, SIDE, HAL_PIXEL_FORMAT_YCBCR_420_888, 1,
                   android::GraphicBuffer::USAGE_SW_WRITE_OFTEN | android::GraphicBuffer::USAGE_HW_TEXTURE),
          m_oOutput(WIDTH, HEIGHT, HAL_PIXEL_FORMAT_YCBCR_420_888, 1,
                    android::GraphicBuffer::USAGE_SW_READ_OFTEN | android::GraphicBuffer::USAGE_HW_RENDER)
    {
        ChooseView(m_oDewarper);
        BeginFill();
        Frame();
    }

    /// The camera has the buffer and writes into it.
    void BeginFill()
    {
        void* pStart = nullptr;
        m_oInput.lock(android::GraphicBuffer::USAGE_SW_WRITE_OFTEN, &pStart);
    }

    /// From the written buffer to the fence.
    void Frame()
    {
        m_oInput.unlock();
        if (!m_oDewarper.CreateImageF(&m_oInput, &m_oOutput) || !m_oDewarper.DrawGLScene(true))
            std::exit(1);
        m_oDewarper.DestroyImage();
    }

    /// The drawn picture as NV12.
    void Pack()
    {
        void* pStart = nullptr;
        m_oOutput.lock(android::GraphicBuffer::USAGE_SW_READ_OFTEN, &pStart);
        m_oOutput.unlock();
    }

private:
    android::GraphicBuffer m_oInput;
    android::GraphicBuffer m_oOutput;
    CCustomGPUDewarperVela m_oDewarper;
};

void BuffersBesidePlanes(benchmark::State& rState)
{
    CPlaneFrames oPlanes(IMAGE_FORMAT_NV12, false);
    CPlaneFrames oRGBA(IMAGE_FORMAT_RGBA32, true);
    CBufferFrames oBuffers;
    SBenchTimes sPlanes;
    SBenchTimes sRGBA;
    SBenchTimes sToFence;
    SBenchTimes sPacked;
    while (rState.KeepRunning()) {
        sPlanes.Add([&] { oPlanes.Frame(); });
        sRGBA.Add([&] { oRGBA.Frame(); });
        oBuffers.BeginFill();
        sToFence.Add([&] { oBuffers.Frame(); });
        rState.SetIterationTime(sToFence.vWall.back() / 1000.0);
        oBuffers.BeginFill();
        sPacked.Add([&] {
            oBuffers.Frame();
            oBuffers.Pack();
        });
    }
    rState.counters["planes_ms"] = Median(sPlanes.vWall);
    rState.counters["rgba_ms"] = Median(sRGBA.vWall);
    rState.counters["fence_ms"] = Median(sToFence.vWall);
    rState.counters["packed_ms"] = Median(sPacked.vWall);
    rState.counters["fence_ratio"] = Median(sToFence.vWall) / Median(sPlanes.vWall);
    rState.counters["fence_rgba_ratio"] = Median(sToFence.vWall) / Median(sRGBA.vWall);
    rState.counters["packed_ratio"] = Median(sPacked.vWall) / Median(sPlanes.vWall);
    rState.counters["fence_cpu_ratio"] = Median(sToFence.vProcessor) / Median(sPlanes.vProcessor);
    rState.counters["packed_cpu_ratio"] = Median(sPacked.vProcessor) / Median(sPlanes.vProcessor);
}
BENCHMARK(BuffersBesidePlanes)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

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
