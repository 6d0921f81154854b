// Cutting mask polygons into triangles, by number of points. It happens once for every new list of masks and
// has to fit into a frame for some thousand points.
#include "dewarp/CustomGPUGeometry.h"
#include "tests/unit/geometry/PolygonCases.h"

#include <benchmark/benchmark.h>

static void RunMask(benchmark::State& oState, const TPoints& vPoints)
{
    CCustomGPUGeometry oGeometry;
    SGPolygon sPolygon;
    sPolygon.vPoints = vPoints;
    while (oState.KeepRunning()) {
        oGeometry.GenerateFisheyeMaskVertices(sPolygon, 1920, 1920);
        benchmark::DoNotOptimize(oGeometry.m_pVertices);
        benchmark::ClobberMemory();
    }
}

static void MaskStarShaped(benchmark::State& oState)
{
    TRandom oRandom(1);
    RunMask(oState, StarShaped(oRandom, static_cast<int>(oState.range(0)), 32000));
}

static void MaskRibbon(benchmark::State& oState)
{
    TRandom oRandom(1);
    RunMask(oState, Ribbon(oRandom, static_cast<int>(oState.range(0)), 900));
}

static void MaskTangled(benchmark::State& oState)
{
    TRandom oRandom(1);
    RunMask(oState, Scribble(oRandom, static_cast<int>(oState.range(0)), 1920));
}

BENCHMARK(MaskStarShaped)->Arg(8)->Arg(100)->Arg(5000)->Arg(65534)->Unit(benchmark::kMillisecond);
BENCHMARK(MaskRibbon)->Arg(8)->Arg(100)->Arg(5000)->Arg(65534)->Unit(benchmark::kMillisecond);
BENCHMARK(MaskTangled)->Arg(8)->Arg(100)->Arg(5000)->Arg(65534)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
