#include "CirclePictures.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

struct SSceneRow
{
    const char* pName;
    double fLimit;
};

// 0.2 % of the radius where the rim is sharp and whole; 0.5 % where part of it cannot be seen or it fades.
constexpr std::array<SSceneRow, CIRCLE_SCENES> SCENES = {{
    {"sharp", 0.002},
    {"small", 0.002},
    {"off centre", 0.002},
    {"noise and a bright floor", 0.002},
    {"compressed", 0.002},
    {"text", 0.002},
    {"flare", 0.005},
    {"dim rim", 0.005},
    {"night", 0.005},
    {"cut at two sides", 0.005},
    {"cut at four sides", 0.005},
    {"centre near an edge or outside", 0.005},
    {"ellipse", 0.005},
    {"ellipse, cut", 0.005},
    {"all at once", 0.005},
}};

/// Light of the scene, 0 to 1.
double LightAt(const SCirclePicture& rPicture, const CScenery& rScenery, double fX, double fY)
{
    const double fLight = rScenery.At(fX, fY);
    if (rPicture.fNight <= 0.0)
        return std::min(1.0, 0.06 + 1.1 * fLight);
    // Slow light lies around a half, almost all of it between a quarter and three.
    const double fDark = 0.25 + 0.5 * rPicture.fNight;
    const double fLamp = std::clamp((rScenery.Light(fX, fY) - fDark) / 0.1, 0.0, 1.0);
    return (0.06 + fLight) * std::lerp(rPicture.fNightLight, 0.8, fLamp);
}

void DrawScene(const SCirclePicture& rPicture, CDice& rDice, SCanvas& rCanvas)
{
    const double fRadius = std::sqrt(rPicture.fRadiusX * rPicture.fRadiusY);
    const CScenery oScenery(rDice, fRadius);
    for (int y = 0; y < rPicture.nHeight; ++y) {
        for (int x = 0; x < rPicture.nWidth; ++x) {
            const double fX = (x + 0.5 - rPicture.fCenterX) / rPicture.fRadiusX;
            const double fY = (y + 0.5 - rPicture.fCenterY) / rPicture.fRadiusY;
            const double fLength = std::sqrt(fX * fX + fY * fY);
            const double fSlopeX = fX / rPicture.fRadiusX;
            const double fSlopeY = fY / rPicture.fRadiusY;
            const double fSlope = std::sqrt(fSlopeX * fSlopeX + fSlopeY * fSlopeY);
            const double fInside = fSlope > 0.0 ? (1.0 - fLength) * fLength / fSlope : fRadius;
            const double fCover = std::clamp(0.5 + fInside / rPicture.fBlur, 0.0, 1.0);
            if (fCover <= 0.0)
                continue;
            const double fDim = rPicture.fDimPart > 0.0
                                    ? std::pow(std::clamp(fInside / (rPicture.fDimPart * fRadius), 0.0, 1.0),
                                               rPicture.fDimPower)
                                    : 1.0;
            rCanvas.At(x, y) +=
                static_cast<float>(rPicture.fGain * fCover * std::lerp(rPicture.fDimEnd, 1.0, fDim) *
                                   LightAt(rPicture, oScenery, x + 0.5, y + 0.5));
        }
    }
}

void DrawTexts(const SCirclePicture& rPicture, CDice& rDice, SCanvas& rCanvas)
{
    const double fHeight = std::max(10.0, rPicture.nHeight / 30.0);
    for (int n = 0; n < rPicture.nTexts; ++n) {
        const int nLetters = rDice.Whole(4, 14);
        const double fWidth = nLetters * fHeight * 0.8;
        const bool bRight = rDice.Chance(0.5);
        const bool bLower = rDice.Chance(0.5);
        DrawText(rCanvas, rDice, bRight ? rPicture.nWidth - fWidth - 8.0 : 8.0,
                 bLower ? rPicture.nHeight - fHeight - 8.0 : 8.0, fHeight, nLetters, 235.0f);
    }
    for (int n = 0; n < rPicture.nRimTexts; ++n) {
        const double fAngle = rDice.Between(0.0, 6.28);
        DrawText(rCanvas, rDice, rPicture.fCenterX + rPicture.fRadiusX * std::cos(fAngle) - 2.0 * fHeight,
                 rPicture.fCenterY + rPicture.fRadiusY * std::sin(fAngle) - 0.5 * fHeight, fHeight,
                 rDice.Whole(4, 8), 235.0f);
    }
}

/// Moves the circle, so that it lies inside of the frame with some pixels to spare.
void PlaceInside(SCirclePicture& rPicture, CDice& rDice)
{
    const double fSpareX = std::max(0.0, 0.5 * rPicture.nWidth - rPicture.fRadiusX - 8.0);
    const double fSpareY = std::max(0.0, 0.5 * rPicture.nHeight - rPicture.fRadiusY - 8.0);
    rPicture.fCenterX = 0.5 * rPicture.nWidth + rDice.Between(-fSpareX, fSpareX);
    rPicture.fCenterY = 0.5 * rPicture.nHeight + rDice.Between(-fSpareY, fSpareY);
}

void SetRadius(SCirclePicture& rPicture, double fRadius)
{
    rPicture.fRadiusX = rPicture.fRadiusY = fRadius;
}

/// Cuts the circle by the frame's edges.
void PlaceCut(SCirclePicture& rPicture, ECircleScene eScene, CDice& rDice)
{
    const double fWidth = rPicture.nWidth;
    const double fHeight = rPicture.nHeight;
    if (eScene == CIRCLE_CUT_TWO) {
        SetRadius(rPicture, rDice.Between(0.52, std::min(0.75, 0.5 * fWidth / fHeight - 0.03)) * fHeight);
        rPicture.fCenterX += rDice.Between(-0.02, 0.02) * fWidth;
        rPicture.fCenterY += rDice.Between(-0.02, 0.02) * fHeight;
    } else if (eScene == CIRCLE_CUT_FOUR) {
        const double fHalf = 0.5 * std::hypot(fWidth, fHeight);
        SetRadius(rPicture, rDice.Between(0.515 * fWidth, std::max(0.52 * fWidth, 0.9 * fHalf)));
        rPicture.fCenterX += rDice.Between(-0.02, 0.02) * fWidth;
        rPicture.fCenterY += rDice.Between(-0.02, 0.02) * fHeight;
    } else {
        SetRadius(rPicture, rDice.Between(0.4, 0.55) * fHeight);
        rPicture.fCenterX = rDice.Chance(0.5) ? rDice.Between(-0.2, 0.5) * rPicture.fRadiusX
                                              : fWidth + rDice.Between(-0.5, 0.2) * rPicture.fRadiusX;
    }
}

void MakeDark(SCirclePicture& rPicture, ECircleScene eScene, CDice& rDice)
{
    if (eScene == CIRCLE_DIM) {
        // Over fewer pixels, it could as well be a blurred rim.
        rPicture.fDimPart = std::max(rDice.Between(0.05, 0.2), 12.0 / rPicture.fRadiusX);
        rPicture.fDimEnd = rDice.Chance(0.5) ? 0.0 : rDice.Between(0.02, 0.2);
    } else if (eScene == CIRCLE_NIGHT) {
        rPicture.fNight = rDice.Between(0.3, 0.6);
        rPicture.fNightLight = rDice.Between(0.005, 0.04);
        rPicture.fNoise = rDice.Between(1.0, 4.0);
    }
}

} // namespace

const char* NameOf(ECircleScene eScene)
{
    return SCENES[static_cast<std::size_t>(eScene)].pName;
}

double LimitOf(ECircleScene eScene)
{
    return SCENES[static_cast<std::size_t>(eScene)].fLimit;
}

std::vector<unsigned char> DrawCirclePicture(const SCirclePicture& rPicture)
{
    CDice oDice(rPicture.nSeed);
    SCanvas sCanvas(rPicture.nWidth, rPicture.nHeight, static_cast<float>(rPicture.fFloor));
    DrawScene(rPicture, oDice, sCanvas);
    for (int n = 0; n < rPicture.nFlares; ++n) {
        const double fAngle = oDice.Between(0.0, 6.28);
        const double fAway = oDice.Between(0.95, 1.2);
        DrawFlare(sCanvas, rPicture.fCenterX + fAway * rPicture.fRadiusX * std::cos(fAngle),
                  rPicture.fCenterY + fAway * rPicture.fRadiusY * std::sin(fAngle),
                  oDice.Between(0.1, 0.4) * rPicture.fRadiusX, oDice.Between(40.0, 200.0));
    }
    AddNoise(sCanvas, oDice, rPicture.fNoise);
    DrawTexts(rPicture, oDice, sCanvas);
    if (rPicture.nCoarse > 0)
        Compress(sCanvas, rPicture.nCoarse);
    return Bytes(sCanvas);
}

SCirclePicture MakeCirclePicture(ECircleScene eScene, unsigned nSeed, double fScale)
{
    CDice oDice(nSeed * 64 + static_cast<unsigned>(eScene));
    SCirclePicture sPicture;
    sPicture.nSeed = nSeed * 64 + static_cast<unsigned>(eScene);
    const std::array<std::array<int, 2>, 4> nSizes = {{{640, 480}, {720, 405}, {520, 520}, {560, 448}}};
    const std::array<int, 2>& rSize = nSizes[static_cast<std::size_t>(oDice.Whole(0, 3))];
    sPicture.nWidth = static_cast<int>(rSize[0] * fScale);
    sPicture.nHeight = static_cast<int>(rSize[1] * fScale);
    sPicture.fCenterX = 0.5 * sPicture.nWidth + oDice.Between(-3.0, 3.0);
    sPicture.fCenterY = 0.5 * sPicture.nHeight + oDice.Between(-3.0, 3.0);
    sPicture.fFloor = oDice.Between(0.0, 20.0);
    sPicture.fNoise = oDice.Between(0.3, 2.0);
    sPicture.fBlur = oDice.Between(1.0, 2.5);
    sPicture.fGain = oDice.Between(140.0, 250.0);
    SetRadius(sPicture, (oDice.Between(0.44, 0.485) - 3.0 / sPicture.nHeight) * sPicture.nHeight);
    if (eScene == CIRCLE_SMALL || eScene == CIRCLE_OFF_CENTRE) {
        SetRadius(sPicture, oDice.Between(0.3, eScene == CIRCLE_SMALL ? 0.38 : 0.44) * sPicture.nHeight);
        PlaceInside(sPicture, oDice);
    }
    if (eScene >= CIRCLE_CUT_TWO && eScene <= CIRCLE_CUT_ONE_SIDE)
        PlaceCut(sPicture, eScene, oDice);
    MakeDark(sPicture, eScene, oDice);
    if (eScene == CIRCLE_NOISY) {
        sPicture.fFloor = oDice.Between(10.0, 45.0);
        sPicture.fNoise = oDice.Between(3.0, 8.0);
    }
    if (eScene == CIRCLE_ELLIPSE || eScene == CIRCLE_ELLIPSE_CUT) {
        const double fRatio = oDice.Between(1.05, 1.4);
        (oDice.Chance(0.5) ? sPicture.fRadiusX : sPicture.fRadiusY) /= fRatio;
    }
    if (eScene == CIRCLE_ELLIPSE_CUT) {
        // The wider one of both, in parts of the frame, is still whole or almost.
        const double fPartX = sPicture.fRadiusX / sPicture.nWidth;
        const double fPartY = sPicture.fRadiusY / sPicture.nHeight;
        const double fLeast = 0.5 / std::max(fPartX, fPartY);
        const double fMost = std::min(0.54 / std::min(fPartX, fPartY), 1.3 * fLeast);
        const double fGrow = oDice.Between(std::min(1.03 * fLeast, fMost), fMost);
        sPicture.fRadiusX *= fGrow;
        sPicture.fRadiusY *= fGrow;
    }
    const bool bAll = eScene == CIRCLE_ALL_AT_ONCE;
    sPicture.nCoarse = eScene == CIRCLE_COMPRESSED || bAll ? oDice.Whole(4, 14) : 0;
    sPicture.nTexts = eScene == CIRCLE_TEXT || bAll ? oDice.Whole(1, 4) : 0;
    sPicture.nRimTexts = eScene == CIRCLE_TEXT ? oDice.Whole(0, 3) : 0;
    sPicture.nFlares = eScene == CIRCLE_FLARE || bAll ? oDice.Whole(1, 2) : 0;
    if (bAll) {
        sPicture.fDimPart = oDice.Between(0.03, 0.1);
        sPicture.fDimEnd = oDice.Between(0.2, 0.5);
        PlaceInside(sPicture, oDice);
    }
    return sPicture;
}
