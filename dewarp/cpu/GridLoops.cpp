#include "dewarp/cpu/GridLoops.h"

#include "dewarp/cpu/CellTargets.h"
#include "dewarp/cpu/PixelOptics.h"

namespace
{

#include "dewarp/cpu/GridLoops.inc"

void FillTriangle(const SScreenTriangle& t, const SPointWindow& w)
{
    ForRows(t, w, [&](double dx, double dy, int nPoints, SGridPoint* pPoints) {
        const double fU = t.sU.f + t.sU.fY * dy;
        const double fV = t.sV.f + t.sV.fY * dy;
        const double fW = t.sW.f + t.sW.fY * dy;
        for (int n = 0; n < nPoints; ++n) {
            const double x = dx + static_cast<double>(n * w.nStep);
            const double f = t.bFlat ? 1.0 : 1.0 / (fW + t.sW.fX * x);
            pPoints[n] = PositionAt((fU + t.sU.fX * x) * f, (fV + t.sV.fX * x) * f);
        }
    });
}

} // namespace

void ShowPoint(const SScreenTriangle& t, const CPixelOptics* pOptics, double dx, double dy, double& u,
               double& v)
{
    if (pOptics == nullptr || !pOptics->Show(t.afX[0] + dx, t.afY[0] + dy, u, v))
        t.Show(dx, dy, u, v);
}

void FillOddTriangle(const SScreenTriangle& t, const SCuts& rCuts, const CPixelOptics* pOptics,
                     const SPointWindow& w)
{
    ForRows(t, w, [&](double dx, double dy, int nPoints, SGridPoint* pPoints) {
        for (int n = 0; n < nPoints; ++n) {
            const double x = dx + static_cast<double>(n * w.nStep);
            double u = 0.0;
            double v = 0.0;
            ShowPoint(t, pOptics, x, dy, u, v);
            if (rCuts.Keep(t, x, dy, v))
                pPoints[n] = PositionAt(u, v);
        }
    });
}

const SGridLoops& PlainGridLoops()
{
    static const SGridLoops sLoops = {FillTriangle, FindBends, FindPlain};
    return sLoops;
}

const SGridLoops& BestGridLoops()
{
    // As the cells' kernels: what was asked for holds for grids too, and is tested with them.
    static const SGridLoops& rBest = []() -> const SGridLoops& {
        const SCellKernels* const p = &BestKernels();
        const bool bOlder = p == &PlainKernels() || p == BaselineKernels();
        return bOlder || AVX2GridLoops() == nullptr ? PlainGridLoops() : *AVX2GridLoops();
    }();
    return rBest;
}
