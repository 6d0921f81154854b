// Frame time by view and format, split into upload, draw and read-back, beside a bare quad with the same
// fragment shader and uploads. Both run alternately within one measurement; the ratio of their medians is the
// figure to watch.

#include "bench/BareQuad.h"
#include "bench/Frames.h"
#include "dewarp/LumorDewarp.h"
#include "platform/DriverTraits.h"

#include <GLES3/gl31.h>
#include <benchmark/benchmark.h>

#include <memory>

namespace
{

struct SView
{
    const char* pName;
    EViewType eView;
    float fTilt;
    EMountType eMount = MOUNT_CEILING;
};

const SView VIEWS[] = {
    {"vcam", VIEW_VCAM, 45.0f},
    {"quad", VIEW_VCAM_QUAD, 45.0f},
    {"fisheye", VIEW_FISHEYE, 0.0f},
    {"circular", VIEW_FISHEYE_CIRCULAR, 0.0f},
    {"panorama", VIEW_PANORAMA_FULL, 0.0f},
    {"panorama-half", VIEW_PANORAMA_HALF, 0.0f},
    {"panorama-quarter", VIEW_PANORAMA_QUARTER, 0.0f},
    {"dual", VIEW_PANORAMA_DUAL, 0.0f},
    {"triple", VIEW_PANORAMA_TRIPLE, 0.0f},
    {"wall-panorama", VIEW_PANORAMA_FULL, 0.0f, MOUNT_WALL},
};

struct SFormat
{
    const char* pName;
    int nFormat;
};

const SFormat FORMATS[] = {
    {"nv12", IMAGE_FORMAT_NV12}, {"yuv420p", IMAGE_FORMAT_YUV420P}, {"rgba", IMAGE_FORMAT_RGBA32}};

// Layouts that some drivers convert; the quad uploads them as they are.
const SFormat CONVERTED_FORMATS[] = {{"rgb24", IMAGE_FORMAT_RGB24}, {"bgra", IMAGE_FORMAT_BGRA32}};

struct SSize
{
    const char* pName;
    int nWidth;
    int nHeight;
};

const SSize SIZES[] = {{"720p", 1280, 720}, {"1080p", 1920, 1080}, {"2160p", 3840, 2160}};

/// A dewarper that shows one view, and its frame.
struct SScene
{
    SScene(const SView& rView, int nFormat, const SSize& rSize) : oFrame(nFormat, 1920, 1920)
    {
        oDewarper.InitGL(rSize.nWidth, rSize.nHeight);
        if (!oDewarper.StartGL())
            std::exit(77);
        oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
        oDewarper.SetLensType(LENS_AUTO);
        oDewarper.SetViewType(rView.eView);
        oDewarper.SetMountType(rView.eMount);
        Frame();
        oDewarper.AbsolutePTZ(rView.eMount == MOUNT_WALL ? 0.0f : 90.0f, rView.fTilt, 120.0f);
        Frame();
        glFinish();
    }

    void Frame()
    {
        oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0);
        oDewarper.DrawGLScene(true);
    }

    CBenchFrame oFrame;
    CCustomGPUDewarperOffscreen oDewarper;
};

/// \param bMoving pans a little in every frame.
void FrameBesideQuad(benchmark::State& rState, const SView& rView, const SFormat& rFormat, const SSize& rSize,
                     bool bMoving)
{
    SScene oScene(rView, rFormat.nFormat, rSize);
    CBareQuad oQuad(*oScene.oFrame.Image(),
                    PreferredShaderText(oScene.oDewarper.sMainShader.strFragmentShader, QueryDriverTraits()),
                    rSize.nWidth, rSize.nHeight);
    SBenchTimes sFrame;
    SBenchTimes sQuad;
    std::vector<double> vUpload;
    std::vector<double> vReadBack;
    float fPan = 90.0f;
    for (auto oIteration : rState) {
        (void)oIteration;
        if (bMoving)
            oScene.oDewarper.AbsolutePTZ(fPan += 0.25f, rView.fTilt, 120.0f);
        // The quad changed bindings: the view binds its own again.
        oScene.oDewarper.pBoundViewObject = nullptr;
        glFinish();
        sFrame.Add([&] {
            oScene.Frame();
            glFinish();
        });
        rState.SetIterationTime(sFrame.vWall.back() / 1000.0);
        vReadBack.push_back(MillisecondsOf([&] {
            int nSize = 0;
            int nWidth = 0;
            int nHeight = 0;
            int nStride = 0;
            benchmark::DoNotOptimize(oScene.oDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride));
        }));
        vUpload.push_back(MillisecondsOf([&] {
            oQuad.Upload();
            glFinish();
        }));
        sQuad.Add([&] {
            oQuad.Upload();
            oQuad.Draw();
            glFinish();
        });
    }
    const double fFrame = Median(sFrame.vWall);
    const double fUpload = Median(vUpload);
    rState.counters["frame_ms"] = fFrame;
    rState.counters["plain_upload_ms"] = fUpload;
    rState.counters["beyond_upload_ms"] = fFrame - fUpload;
    rState.counters["readback_ms"] = Median(vReadBack);
    rState.counters["quad_ms"] = Median(sQuad.vWall);
    rState.counters["ratio"] = fFrame / Median(sQuad.vWall);
    rState.counters["cpu_ratio"] = Median(sFrame.vProcessor) / Median(sQuad.vProcessor);
}

void Register(const SView& rView, const SFormat& rFormat, const SSize& rSize, bool bMoving)
{
    const std::string strName =
        std::string(bMoving ? "moving/" : "still/") + rView.pName + "/" + rFormat.pName + "/" + rSize.pName;
    benchmark::RegisterBenchmark(strName.c_str(),
                                 [&rView, &rFormat, &rSize, bMoving](benchmark::State& rState) {
                                     FrameBesideQuad(rState, rView, rFormat, rSize, bMoving);
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    setenv("EGL_PLATFORM", "surfaceless", 0);
    for (const SView& rView : VIEWS) {
        for (const SFormat& rFormat : FORMATS)
            Register(rView, rFormat, SIZES[1], false);
    }
    for (const SFormat& rFormat : FORMATS) {
        Register(VIEWS[0], rFormat, SIZES[0], false);
        Register(VIEWS[0], rFormat, SIZES[2], false);
        Register(VIEWS[0], rFormat, SIZES[1], true);
    }
    for (const SFormat& rFormat : CONVERTED_FORMATS)
        Register(VIEWS[0], rFormat, SIZES[1], false);
    benchmark::Initialize(&nArguments, ppArguments);
    if (benchmark::ReportUnrecognizedArguments(nArguments, ppArguments))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
