// Mesh generators beside the plain transcription of their formulas. The figure to watch is the ratio of a
// pair; both run in the same process, one after the other.
#include "dewarp/CustomGPUGeometry.h"
#include "tests/unit/geometry/PlainMeshes.h"

#include <benchmark/benchmark.h>

static constexpr int nLens = LENS_DSL419;
static constexpr int nSide = 1920;

/// A view that moves a little with every build, as a drag does.
static float NextAngle(float& fAngle)
{
    fAngle += 0.37f;
    if (fAngle > 50.0f)
        fAngle = -50.0f;
    return fAngle;
}

template <class FBuild>
static void RunGenerator(benchmark::State& oState, FBuild fBuild)
{
    CCustomGPUGeometry oGeometry;
    float fAngle = 0.0f;
    for (auto _ : oState) {
        fBuild(oGeometry, NextAngle(fAngle));
        benchmark::DoNotOptimize(oGeometry.m_pTexCoords);
        benchmark::ClobberMemory();
    }
}

template <class FBuild>
static void RunPlain(benchmark::State& oState, FBuild fBuild)
{
    SPlainMesh sMesh;
    float fAngle = 0.0f;
    for (auto _ : oState) {
        fBuild(sMesh, NextAngle(fAngle));
        benchmark::DoNotOptimize(sMesh.vTexCoords.data());
        benchmark::ClobberMemory();
    }
}

static void Circular(benchmark::State& oState)
{
    RunGenerator(
        oState, [](CCustomGPUGeometry& o, float) { o.GenerateCircularFisheyeVertices(nLens, nSide, nSide); });
}
static void CircularPlain(benchmark::State& oState)
{
    RunPlain(oState, [](SPlainMesh& s, float) { PlainCircularFisheye(nLens, nSide, nSide, s); });
}

static void Panorama(benchmark::State& oState)
{
    RunGenerator(oState,
                 [](CCustomGPUGeometry& o, float) { o.GeneratePanoramaVertices(nLens, nSide, nSide); });
}
static void PanoramaPlain(benchmark::State& oState)
{
    RunPlain(oState, [](SPlainMesh& s, float) { PlainPanorama(nLens, nSide, nSide, s); });
}

static void Dual(benchmark::State& oState)
{
    RunGenerator(oState, [](CCustomGPUGeometry& o, float fAngle) {
        o.GenerateDualPanoramaVertices(nLens, 2.0f * fAngle, fAngle, nSide, nSide);
    });
}
static void DualPlain(benchmark::State& oState)
{
    RunPlain(oState, [](SPlainMesh& s, float fAngle) {
        PlainDualPanorama(nLens, 2.0f * fAngle, fAngle, nSide, nSide, s);
    });
}

static void Triple(benchmark::State& oState)
{
    RunGenerator(oState, [](CCustomGPUGeometry& o, float fAngle) {
        o.GenerateTriplePanoramaVertices(nLens, 2.0f * fAngle, fAngle, nSide, nSide);
    });
}
static void TriplePlain(benchmark::State& oState)
{
    RunPlain(oState, [](SPlainMesh& s, float fAngle) {
        PlainTriplePanorama(nLens, 2.0f * fAngle, fAngle, nSide, nSide, s);
    });
}

static void Wall(benchmark::State& oState)
{
    RunGenerator(oState, [](CCustomGPUGeometry& o, float fAngle) {
        o.GeneratePanoramaWallVertices(nLens, 10.0f, fAngle, false, nSide, nSide);
    });
}
static void WallPlain(benchmark::State& oState)
{
    RunPlain(oState, [](SPlainMesh& s, float fAngle) {
        PlainPanoramaWall(nLens, 10.0f, fAngle, false, nSide, nSide, s);
    });
}

static void VCAM(benchmark::State& oState)
{
    RunGenerator(oState, [](CCustomGPUGeometry& o, float) { o.GenerateVCAMVertices(nLens, nSide, nSide); });
}
static void VCAMPlain(benchmark::State& oState)
{
    RunPlain(oState, [](SPlainMesh& s, float) { PlainVCAM(nLens, nSide, nSide, s); });
}

BENCHMARK(Circular);
BENCHMARK(CircularPlain);
BENCHMARK(Panorama);
BENCHMARK(PanoramaPlain);
BENCHMARK(Dual);
BENCHMARK(DualPlain);
BENCHMARK(Triple);
BENCHMARK(TriplePlain);
BENCHMARK(Wall);
BENCHMARK(WallPlain);
BENCHMARK(VCAM);
BENCHMARK(VCAMPlain);
BENCHMARK_MAIN();
