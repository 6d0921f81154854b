#include "tests/cpu/TextbookLens.h"

#include <numbers>

static const double RADIANS = std::numbers::pi / 180.0;

namespace
{

template <int nHalfField>
double Equidistant(double t)
{
    return t / (nHalfField * RADIANS);
}

double Equisolid100(double t)
{
    return std::sin(t / 2.0) / std::sin(50.0 * RADIANS);
}

double Stereographic110(double t)
{
    return std::tan(t / 2.0) / std::tan(55.0 * RADIANS);
}

double Orthographic90(double t)
{
    return std::sin(t);
}

double Rectilinear50(double t)
{
    return std::tan(t) / std::tan(50.0 * RADIANS);
}

/// A lens that squeezes its rim, as wide ones do.
double Squeezed105(double t)
{
    return (t - 0.05 * t * t * t) / (105.0 * RADIANS - 0.05 * std::pow(105.0 * RADIANS, 3.0));
}

SLens TableOf(double (*pHeight)(double), double fHalfField)
{
    std::vector<double> vAngles;
    std::vector<double> vHeights;
    for (int i = 0; i <= 42; ++i) {
        vAngles.push_back(fHalfField * i / 42.0);
        vHeights.push_back(2.7 * pHeight(vAngles.back() * RADIANS));
    }
    return SLens::FromTable(vAngles, vHeights);
}

/// First towards second by an angle.
void Turn(FVector& rFirst, FVector& rSecond, double fDegrees)
{
    const double c = std::cos(fDegrees * RADIANS);
    const double s = std::sin(fDegrees * RADIANS);
    for (std::size_t i = 0; i < 3; ++i) {
        const double a = rFirst[i];
        rFirst[i] = c * a + s * rSecond[i];
        rSecond[i] = c * rSecond[i] - s * a;
    }
}

struct SAxes
{
    FVector aRight = {1.0, 0.0, 0.0};
    FVector aUp = {0.0, 1.0, 0.0};
    FVector aAhead = {0.0, 0.0, 1.0};

    explicit SAxes(const STextbookCamera& r)
    {
        Turn(aAhead, aRight, r.fYaw);
        Turn(aAhead, aUp, r.fPitch);
        Turn(aUp, aRight, r.fRoll);
    }
};

} // namespace

void PrintTo(const STextbookLens& rLens, std::ostream* pStream)
{
    *pStream << rLens.pName;
}

const std::vector<STextbookLens>& TextbookLenses()
{
    static const std::vector<STextbookLens> LENSES = {
        {"equidistant 180", 90.0, SLens::FromModel(LENS_EQUIDISTANT, 180.0), Equidistant<90>},
        {"equidistant 220", 110.0, SLens::FromModel(LENS_EQUIDISTANT, 220.0), Equidistant<110>},
        {"equisolid 200", 100.0, SLens::FromModel(LENS_EQUISOLID, 200.0), Equisolid100},
        {"stereographic 220", 110.0, SLens::FromModel(LENS_STEREOGRAPHIC, 220.0), Stereographic110},
        {"orthographic 180", 90.0, SLens::FromModel(LENS_ORTHOGRAPHIC, 180.0), Orthographic90, 2.7},
        {"rectilinear 100", 50.0, SLens::FromModel(LENS_RECTILINEAR, 100.0), Rectilinear50},
        {"table 210", 105.0, TableOf(Squeezed105, 105.0), Squeezed105},
    };
    return LENSES;
}

FVector ToBody(const STextbookCamera& rCamera, const FVector& aMount)
{
    const SAxes s(rCamera);
    return {Dot(aMount, s.aRight), Dot(aMount, s.aUp), Dot(aMount, s.aAhead)};
}

bool Land(const STextbookLens& rLens, const STextbookCamera& rCamera, const FVector& aMount, double& x,
          double& y, double& fAngle)
{
    const FVector a = ToBody(rCamera, aMount);
    const double fAcross = std::hypot(a[0], a[1]);
    fAngle = std::atan2(fAcross, a[2]) / RADIANS;
    const double h = fAcross > 0.0 ? rLens.pHeight(fAngle * RADIANS) / fAcross : 0.0;
    x = rCamera.fCenterX + rCamera.fRadiusX * h * a[0];
    y = rCamera.fCenterY - rCamera.fRadiusY * h * a[1];
    return fAngle <= rLens.fHalfField;
}

/// Angles of heights 0 to 1, radians; between them a straight line will do.
static std::vector<double> AnglesOf(const STextbookLens& rLens)
{
    const int nSteps = 4000;
    std::vector<double> vAngles;
    for (int n = 0; n <= nSteps + 1; ++n) {
        double fLow = 0.0;
        double fHigh = rLens.fHalfField * RADIANS;
        for (int i = 0; i < 40; ++i) {
            const double f = 0.5 * (fLow + fHigh);
            (rLens.pHeight(f) > static_cast<double>(n) / nSteps ? fHigh : fLow) = f;
        }
        vAngles.push_back(0.5 * (fLow + fHigh));
    }
    return vAngles;
}

STestImage RenderThrough(const STextbookLens& rLens, const STextbookCamera& rCamera, EMountType eMount,
                         const FScene& fScene, int nSamples)
{
    const SAxes s(rCamera);
    const std::vector<double> vAngles = AnglesOf(rLens);
    STestImage sImage(rCamera.nWidth, rCamera.nHeight);
    const auto Sample = [&](double fX, double fY) {
        const double x = (fX - rCamera.fCenterX) / rCamera.fRadiusX;
        const double y = (rCamera.fCenterY - fY) / rCamera.fRadiusY;
        const double fHeight = std::hypot(x, y);
        if (fHeight > 1.0)
            return FColour{0.0, 0.0, 0.0};
        const double fStep = fHeight * static_cast<double>(vAngles.size() - 2);
        const std::size_t n = static_cast<std::size_t>(fStep);
        const double fAngle = vAngles[n] + (vAngles[n + 1] - vAngles[n]) * (fStep - static_cast<double>(n));
        const double f = fHeight > 0.0 ? std::sin(fAngle) / fHeight : 0.0;
        FVector aMount;
        for (std::size_t i = 0; i < 3; ++i)
            aMount[i] = f * x * s.aRight[i] + f * y * s.aUp[i] + std::cos(fAngle) * s.aAhead[i];
        return fScene(CameraToWorld(eMount, aMount));
    };
    for (int nRow = 0; nRow < rCamera.nHeight; ++nRow)
        for (int nCol = 0; nCol < rCamera.nWidth; ++nCol) {
            FColour aSum = {0.0, 0.0, 0.0};
            for (int i = 0; i < nSamples * nSamples; ++i) {
                const FColour aColour =
                    Sample(nCol + (i % nSamples + 0.5) / nSamples, nRow + (i / nSamples + 0.5) / nSamples);
                for (std::size_t k = 0; k < 3; ++k)
                    aSum[k] += aColour[k] * 255.0 / (nSamples * nSamples);
            }
            sImage.Set(nCol, nRow, static_cast<int>(std::lround(aSum[0])),
                       static_cast<int>(std::lround(aSum[1])), static_cast<int>(std::lround(aSum[2])));
        }
    return sImage;
}
