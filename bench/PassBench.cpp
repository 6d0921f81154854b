// What each pass adds to a frame: overlays, masks and text beside the bare view. Two dewarpers show the same
// frame, one with the layer and one without, alternately within one measurement; the figure to watch is the
// difference of their medians.

#include "bench/Frames.h"
#include "bench/Layers.h"
#include "dewarp/LumorDewarp.h"

#include <GLES3/gl31.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

namespace
{

const int WIDTH = 1920;
const int HEIGHT = 1080;
const int FRAME = 1920;

using TPixels = std::vector<unsigned char>;

/// Pixels of an overlay: a translucent gradient.
TPixels OverlayPixels(int nWidth, int nHeight)
{
    TPixels vPixels(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) * 4);
    for (std::size_t i = 0; i < vPixels.size(); ++i)
        vPixels[i] = static_cast<unsigned char>(i / 64);
    return vPixels;
}

/// One dewarper with a virtual camera, and its layers.
class CScene
{
public:
    CScene() : m_oFrame(IMAGE_FORMAT_NV12, FRAME, FRAME)
    {
        m_oDewarper.InitGL(WIDTH, HEIGHT);
        if (!m_oDewarper.StartGL())
            std::exit(77);
        m_oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
        m_oDewarper.SetLensType(LENS_AUTO);
        m_oDewarper.SetViewType(VIEW_VCAM);
        m_oDewarper.SetMountType(MOUNT_CEILING);
        Draw();
        m_oDewarper.AbsolutePTZ(90.0f, 45.0f, 120.0f);
        Draw();
    }

    CCustomGPUDewarperOffscreen& Dewarper() { return m_oDewarper; }

    /// One frame from planes to finished picture, in milliseconds.
    double Draw()
    {
        // The other dewarper's context is let go of before the clock runs.
        m_oDewarper.SetCurrentRenderingContext(&m_oDewarper.pRenderingContext);
        glFinish();
        return MillisecondsOf([&] {
            m_oDewarper.SetTexture(m_oFrame.Image(), false, nullptr, 0);
            m_oDewarper.DrawGLScene(true);
            glFinish();
        });
    }

private:
    CBenchFrame m_oFrame;
    CCustomGPUDewarperOffscreen m_oDewarper;
};

/// A layer: what is set once, and what is set before every frame.
struct SLayer
{
    const char* pName;
    void (*fOnce)(CCustomGPUDewarper&);
    void (*fEachFrame)(CCustomGPUDewarper&, int nFrame);
};

void Nothing(CCustomGPUDewarper& /*oDewarper*/) {}
void NothingEachFrame(CCustomGPUDewarper& /*oDewarper*/, int /*nFrame*/) {}

void InputOnce(CCustomGPUDewarper& oDewarper)
{
    oDewarper.SetInputOverlay(OverlayPixels(FRAME, FRAME).data(), FRAME, FRAME, 0);
}

void OutputOnce(CCustomGPUDewarper& oDewarper)
{
    oDewarper.SetOutputOverlay(OverlayPixels(WIDTH, HEIGHT).data(), WIDTH, HEIGHT, 0);
}

void OutputWhole(CCustomGPUDewarper& oDewarper, int nFrame)
{
    static TPixels vPixels = OverlayPixels(WIDTH, HEIGHT);
    vPixels[0] = static_cast<unsigned char>(nFrame);
    oDewarper.SetOutputOverlay(vPixels.data(), WIDTH, HEIGHT, 0);
}

void OutputRect(CCustomGPUDewarper& oDewarper, int nFrame)
{
    static TPixels vPixels = OverlayPixels(WIDTH, HEIGHT);
    oDewarper.SetOutputOverlay(vPixels.data(), WIDTH, HEIGHT, 0, {{nFrame % 1000, 40, 256, 64}});
}

void MasksOnce(CCustomGPUDewarper& oDewarper)
{
    oDewarper.SetMaskPolygons(BenchMasks(0));
}

void MasksEachFrame(CCustomGPUDewarper& oDewarper, int nFrame)
{
    oDewarper.SetMaskPolygons(BenchMasks(nFrame % 50));
}

void StringsOnce(CCustomGPUDewarper& oDewarper)
{
    oDewarper.SetStrings(BenchStrings(0));
}

void StringsEachFrame(CCustomGPUDewarper& oDewarper, int nFrame)
{
    oDewarper.SetStrings(BenchStrings(nFrame));
}

void AllOnce(CCustomGPUDewarper& oDewarper)
{
    OutputOnce(oDewarper);
    MasksOnce(oDewarper);
    StringsOnce(oDewarper);
}

void OutputAndStringsOnce(CCustomGPUDewarper& oDewarper)
{
    OutputOnce(oDewarper);
    StringsOnce(oDewarper);
}

const SLayer LAYERS[] = {
    {"nothing", Nothing, NothingEachFrame},
    {"input-overlay/still", InputOnce, NothingEachFrame},
    {"masks/still", MasksOnce, NothingEachFrame},
    {"masks/changing", MasksOnce, MasksEachFrame},
    {"text/still", StringsOnce, NothingEachFrame},
    {"text/clock", StringsOnce, StringsEachFrame},
    {"output-overlay/still", OutputOnce, NothingEachFrame},
    {"output-overlay/rectangle", OutputOnce, OutputRect},
    {"output-overlay/whole", OutputOnce, OutputWhole},
    {"text-and-output-overlay/still", OutputAndStringsOnce, NothingEachFrame},
    {"text-and-output-overlay/clock", OutputAndStringsOnce, StringsEachFrame},
    {"all/still", AllOnce, NothingEachFrame},
    {"all/clock", AllOnce, StringsEachFrame},
};

void LayerBesideBareView(benchmark::State& rState, const SLayer& rLayer)
{
    CScene oLayered;
    CScene oBare;
    rLayer.fOnce(oLayered.Dewarper());
    for (int i = 0; i < 3; ++i) {
        oLayered.Draw();
        oBare.Draw();
    }
    std::vector<double> vLayered;
    std::vector<double> vBare;
    int nFrame = 0;
    for (auto oIteration : rState) {
        (void)oIteration;
        // Setting is a host's own time; what it leaves to the frame is measured.
        rLayer.fEachFrame(oLayered.Dewarper(), ++nFrame);
        vLayered.push_back(oLayered.Draw());
        rState.SetIterationTime(vLayered.back() / 1000.0);
        vBare.push_back(oBare.Draw());
    }
    rState.counters["frame_ms"] = Median(vLayered);
    rState.counters["bare_ms"] = Median(vBare);
    rState.counters["cost_ms"] = Median(vLayered) - Median(vBare);
    rState.counters["ratio"] = Median(vLayered) / Median(vBare);
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    setenv("EGL_PLATFORM", "surfaceless", 0);
    for (const SLayer& rLayer : LAYERS)
        benchmark::RegisterBenchmark(
            rLayer.pName, [&rLayer](benchmark::State& rState) { LayerBesideBareView(rState, rLayer); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&nArguments, ppArguments);
    if (benchmark::ReportUnrecognizedArguments(nArguments, ppArguments))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
