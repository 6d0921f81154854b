#include "FitScene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{

const double RADIANS = std::numbers::pi / 180.0;

/// Adds errors of picking.
class CPicker
{
public:
    explicit CPicker(const SFitScene& rScene) : m_oRandom(rScene.nSeed), m_fNoise(rScene.fNoise) {}
    SFitPlace Pick(const SFitPlace& rPlace)
    {
        if (!(m_fNoise > 0.0))
            return rPlace;
        std::normal_distribution<double> oError(0.0, m_fNoise);
        const double dx = oError(m_oRandom);
        const double dy = oError(m_oRandom);
        return {rPlace.x + dx, rPlace.y + dy};
    }

private:
    std::mt19937 m_oRandom;
    double m_fNoise;
};

} // namespace

SFitPlace PlaceOf(const SFitScene& rScene, double fAngle, double fAzimuth)
{
    const double fEdge = LensEdgeAngle(rScene.sLens);
    const double h = rScene.fRadius * LensHeightAt(rScene.sLens, fAngle) / LensHeightAt(rScene.sLens, fEdge);
    return {rScene.fCenterX + h * std::cos(fAzimuth * RADIANS),
            rScene.fCenterY + h * std::sin(fAzimuth * RADIANS)};
}

SFitData SpokePoints(const SFitScene& rScene, int nSpokes, int nSteps, double fPart)
{
    SFitData sData;
    CPicker oPicker(rScene);
    const double fEdge = LensEdgeAngle(rScene.sLens);
    for (int i = 0; i < nSpokes; ++i) {
        for (int j = 1; j <= nSteps; ++j) {
            SFitPoint sPoint;
            sPoint.fAngle = fPart * fEdge * j / nSteps;
            sPoint.bPlace = true;
            sPoint.sPlace = oPicker.Pick(PlaceOf(rScene, sPoint.fAngle, 360.0 * i / nSpokes + 7.0));
            sData.vPoints.push_back(sPoint);
        }
    }
    return sData;
}

SFitData RoomLines(const SFitScene& rScene, int nLines, int nPlaces, double fPart)
{
    SFitData sData;
    CPicker oPicker(rScene);
    const double fEdge = fPart * LensEdgeAngle(rScene.sLens);
    for (int i = 0; i < nLines; ++i) {
        // The line's nearest ray to the axis, and half a turn about it at most on both sides.
        const double fNearest = std::min(15.0 + 45.0 * i / nLines, 0.7 * fEdge);
        const double fAround = 360.0 * i * 0.382 + 11.0;
        SFitLine sLine = {"line " + std::to_string(i), {}};
        // On a great circle: cos(angle) = cos(nearest) cos(along).
        const double fMost =
            std::acos(std::clamp(std::cos(fEdge * RADIANS) / std::cos(fNearest * RADIANS), -0.9, 1.0)) /
            RADIANS;
        for (int j = 0; j < nPlaces; ++j) {
            const double a = fMost * (2.0 * j / (nPlaces - 1) - 1.0) * RADIANS;
            const double n = fNearest * RADIANS;
            const double fAngle = std::acos(std::cos(n) * std::cos(a)) / RADIANS;
            const double fAzimuth = std::atan2(std::sin(a), std::sin(n) * std::cos(a)) / RADIANS;
            sLine.vPlaces.push_back(oPicker.Pick(PlaceOf(rScene, fAngle, fAround + fAzimuth)));
        }
        sData.vLines.push_back(sLine);
    }
    return sData;
}

SFitSetup SetupOf(const SFitScene& rScene)
{
    SFitSetup sSetup;
    sSetup.nWidth = 1920;
    sSetup.nHeight = 1080;
    const float fRadius = static_cast<float>(rScene.fRadius);
    sSetup.oCircle = SLensCircle{960.0f, 540.0f, fRadius, fRadius};
    return sSetup;
}
