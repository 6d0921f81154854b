#include "PlainPhotographs.h"

#include "PictureCanvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace
{

constexpr std::array<const char*, PHOTO_KINDS> NAMES = {
    "day",        "night", "skyline", "dark corners", "black corners", "torch", "bars", "rounded corners",
    "many discs", "shade", "title",   "plate",        "moon",          "wheel", "drum",
};

/// Everything a picture needs while it is drawn.
struct SSheet
{
    SCanvas sCanvas;
    CDice oDice;
    CScenery oScenery;
    double fShort;
    double fMiddleX;
    double fMiddleY;

    SSheet(int nWidth, int nHeight, unsigned nSeed)
        : sCanvas(nWidth, nHeight, 0.0f), oDice(nSeed), oScenery(oDice, 0.4 * std::min(nWidth, nHeight)),
          fShort(std::min(nWidth, nHeight)), fMiddleX(0.5 * nWidth), fMiddleY(0.5 * nHeight)
    {}

    double Scene(double fX, double fY) const { return 0.05 + oScenery.At(fX, fY); }

    /// Sets each level from its place.
    template <typename TLevel>
    void Fill(TLevel&& rLevel)
    {
        for (int y = 0; y < sCanvas.nHeight; ++y) {
            for (int x = 0; x < sCanvas.nWidth; ++x)
                sCanvas.At(x, y) = static_cast<float>(rLevel(x + 0.5, y + 0.5));
        }
    }
};

void DrawNight(SSheet& rSheet, bool bSkyline)
{
    const double fFloor = rSheet.oDice.Between(1.0, 14.0);
    const double fDark = rSheet.oDice.Between(0.45, 0.6);
    const double fTown = rSheet.oDice.Between(0.35, 0.7) * rSheet.sCanvas.nHeight;
    rSheet.Fill([&](double fX, double fY) {
        const double fLamp = std::clamp((rSheet.oScenery.Light(fX, fY) - fDark) / 0.12, 0.0, 1.0);
        const double fRoof = fTown + 60.0 * (rSheet.oScenery.Light(fX, 7.0) - 0.5);
        const double fLit = bSkyline ? (fY > fRoof ? 0.3 + 0.7 * fLamp : 0.0) : 0.01 + fLamp;
        return fFloor + 220.0 * fLit * rSheet.Scene(fX, fY);
    });
}

/// Light that falls off from the middle: by a power of the cosine, or at once to nothing.
void DrawFading(SSheet& rSheet, EPhotograph ePhotograph)
{
    const double fFloor = rSheet.oDice.Between(0.0, 10.0);
    const double fHalf = std::hypot(rSheet.fMiddleX, rSheet.fMiddleY);
    const double fX0 = rSheet.fMiddleX * rSheet.oDice.Between(0.9, 1.1);
    const double fY0 = rSheet.fMiddleY * rSheet.oDice.Between(0.9, 1.1);
    const double fBeam = rSheet.oDice.Between(0.4, 0.7) * rSheet.fShort;
    const double fSteep = rSheet.oDice.Between(0.7, 1.3);
    rSheet.Fill([&](double fX, double fY) {
        const double fAway = std::hypot(fX - fX0, fY - fY0);
        double fLight = 0.0;
        if (ePhotograph == PHOTO_DARK_CORNERS)
            fLight = std::pow(std::cos(std::atan(fSteep * fAway / fHalf)), 4.0);
        else if (ePhotograph == PHOTO_BLACK_CORNERS)
            fLight = std::pow(std::max(0.0, 1.0 - std::pow(0.95 * fAway / fHalf, 2.0)), 1.0 + 2.0 * fSteep);
        else
            fLight = std::exp(-2.0 * std::pow(fAway / fBeam, 2.0));
        return fFloor + 230.0 * fLight * rSheet.Scene(fX, fY);
    });
}

void DrawMasked(SSheet& rSheet, bool bRounded)
{
    const double fFloor = rSheet.oDice.Between(0.0, 16.0);
    const double fBarX = rSheet.oDice.Between(0.04, 0.25) * rSheet.sCanvas.nWidth;
    const double fBarY =
        rSheet.oDice.Chance(0.4) ? 0.0 : rSheet.oDice.Between(0.04, 0.2) * rSheet.sCanvas.nHeight;
    const double fCorner = bRounded ? rSheet.oDice.Between(0.05, 0.2) * rSheet.fShort : 1.0;
    rSheet.Fill([&](double fX, double fY) {
        const double fOffX =
            std::max(0.0, std::fabs(fX - rSheet.fMiddleX) - (rSheet.fMiddleX - fBarX - fCorner));
        const double fOffY =
            std::max(0.0, std::fabs(fY - rSheet.fMiddleY) - (rSheet.fMiddleY - fBarY - fCorner));
        const double fInside = std::clamp(fCorner - std::hypot(fOffX, fOffY) + 0.5, 0.0, 1.0);
        return fFloor + 230.0 * fInside * rSheet.Scene(fX, fY);
    });
}

void DrawDiscs(SSheet& rSheet)
{
    rSheet.Fill([&](double, double) { return 6.0; });
    const int nDiscs = rSheet.oDice.Whole(5, 30);
    for (int n = 0; n < nDiscs; ++n) {
        const double fX = rSheet.oDice.Between(0.0, rSheet.sCanvas.nWidth);
        const double fY = rSheet.oDice.Between(0.0, rSheet.sCanvas.nHeight);
        const double fRadius = rSheet.oDice.Between(0.02, 0.12) * rSheet.fShort;
        const float fLevel = static_cast<float>(rSheet.oDice.Between(20.0, 120.0));
        for (int y = std::max(0, static_cast<int>(fY - fRadius));
             y < std::min<double>(rSheet.sCanvas.nHeight, fY + fRadius); ++y) {
            for (int x = std::max(0, static_cast<int>(fX - fRadius));
                 x < std::min<double>(rSheet.sCanvas.nWidth, fX + fRadius); ++x) {
                if (std::hypot(x + 0.5 - fX, y + 0.5 - fY) < fRadius)
                    rSheet.sCanvas.At(x, y) += fLevel;
            }
        }
    }
}

/// A window's light on the floor of a dark room.
void DrawShade(SSheet& rSheet)
{
    const double fSlant = rSheet.oDice.Between(-0.6, 0.6);
    const double fLeft = rSheet.oDice.Between(0.05, 0.3) * rSheet.sCanvas.nWidth;
    const double fRight = rSheet.oDice.Between(0.6, 0.95) * rSheet.sCanvas.nWidth;
    const double fTop = rSheet.oDice.Between(0.0, 0.3) * rSheet.sCanvas.nHeight;
    const double fDark = rSheet.oDice.Between(0.01, 0.06);
    rSheet.Fill([&](double fX, double fY) {
        const double fAcross = fX + fSlant * fY;
        const bool bLit = fAcross > fLeft && fAcross < fRight && fY > fTop;
        return 4.0 + 220.0 * (bLit ? 0.9 : fDark) * rSheet.Scene(fX, fY);
    });
}

/// Reflected light of round things, 0 to 1, from parts of their radius and the direction around.
double DiscLight(EPhotograph ePhotograph, const SSheet& rSheet, double fX, double fY, double fPart,
                 double fAngle)
{
    const double fDetail = rSheet.oScenery.At(fX, fY);
    switch (ePhotograph) {
    case PHOTO_PLATE:
        return fPart < 0.62 ? 0.2 + 0.8 * fDetail
                            : 0.75 + 0.05 * fDetail - (std::fabs(fPart - 0.9) < 0.02 ? 0.3 : 0.0);
    case PHOTO_MOON:
        return (0.55 + 0.35 * rSheet.oScenery.Light(0.3 * fX, 0.3 * fY) + 0.08 * fDetail) *
               std::pow(std::max(0.0, 1.0 - fPart * fPart), 0.1);
    case PHOTO_WHEEL: {
        const bool bSpoke = std::cos(8.0 * fAngle) > 0.3;
        return fPart > 0.86 ? 0.6 + 0.1 * fDetail : bSpoke ? 0.7 : 0.05 + 0.1 * fDetail;
    }
    default:
        return 0.5 + 0.1 * fDetail - 0.3 * fPart;
    }
}

void DrawRound(SSheet& rSheet, EPhotograph ePhotograph)
{
    const double fGround = rSheet.oDice.Between(2.0, 25.0);
    const double fGrain = ePhotograph == PHOTO_MOON ? 0.0 : rSheet.oDice.Between(0.0, 20.0);
    const double fRadius = rSheet.oDice.Between(0.2, 0.48) * rSheet.fShort;
    const double fSpareX = rSheet.fMiddleX - fRadius - 3.0;
    const double fSpareY = rSheet.fMiddleY - fRadius - 3.0;
    const double fX0 = rSheet.fMiddleX + rSheet.oDice.Between(-0.5, 0.5) * fSpareX;
    const double fY0 = rSheet.fMiddleY + rSheet.oDice.Between(-0.5, 0.5) * fSpareY;
    const double fTilt = ePhotograph == PHOTO_MOON ? 1.0 : rSheet.oDice.Between(0.85, 1.0);
    const double fShadow = rSheet.oDice.Between(0.0, 0.6);
    rSheet.Fill([&](double fX, double fY) {
        const double fOffX = fX - fX0;
        const double fOffY = (fY - fY0) / fTilt;
        const double fAway = std::hypot(fOffX, fOffY);
        const double fInside = std::clamp(0.5 + 0.7 * (fRadius - fAway), 0.0, 1.0);
        const double fGroundLevel = fGround + fGrain * rSheet.oScenery.At(fX, fY);
        if (fInside <= 0.0)
            return fGroundLevel;
        const double fLight =
            DiscLight(ePhotograph, rSheet, fX, fY, fAway / fRadius, std::atan2(fOffY, fOffX));
        const double fLevel = 220.0 * fLight * (1.0 - fShadow * (0.5 + 0.5 * fOffX / fRadius));
        return std::lerp(fGroundLevel, std::max(fGroundLevel, fLevel), fInside);
    });
}

void DrawTitle(SSheet& rSheet)
{
    rSheet.Fill([&](double, double) { return 16.0; });
    const int nLines = rSheet.oDice.Whole(2, 8);
    const double fHeight = rSheet.fShort / 16.0;
    for (int n = 0; n < nLines; ++n)
        DrawText(rSheet.sCanvas, rSheet.oDice, rSheet.oDice.Between(0.05, 0.4) * rSheet.sCanvas.nWidth,
                 (2.0 + 1.6 * n) * fHeight, fHeight, rSheet.oDice.Whole(3, 9), 220.0f);
}

void DrawKind(SSheet& rSheet, EPhotograph ePhotograph)
{
    switch (ePhotograph) {
    case PHOTO_DAY:
        return rSheet.Fill([&](double fX, double fY) { return 10.0 + 230.0 * rSheet.Scene(fX, fY); });
    case PHOTO_NIGHT:
    case PHOTO_SKYLINE:
        return DrawNight(rSheet, ePhotograph == PHOTO_SKYLINE);
    case PHOTO_DARK_CORNERS:
    case PHOTO_BLACK_CORNERS:
    case PHOTO_TORCH:
        return DrawFading(rSheet, ePhotograph);
    case PHOTO_BARS:
    case PHOTO_ROUNDED:
        return DrawMasked(rSheet, ePhotograph == PHOTO_ROUNDED);
    case PHOTO_BOKEH:
        return DrawDiscs(rSheet);
    case PHOTO_SHADE:
        return DrawShade(rSheet);
    case PHOTO_TITLE:
        return DrawTitle(rSheet);
    default:
        return DrawRound(rSheet, ePhotograph);
    }
}

} // namespace

const char* NameOf(EPhotograph ePhotograph)
{
    return NAMES[static_cast<std::size_t>(ePhotograph)];
}

SPhotograph DrawPhotograph(EPhotograph ePhotograph, unsigned nSeed, double fScale)
{
    const unsigned nPicture = nSeed * 64 + static_cast<unsigned>(ePhotograph) + 1000003;
    CDice oDice(nPicture + 1);
    const std::array<std::array<int, 2>, 3> nSizes = {{{640, 480}, {720, 405}, {520, 520}}};
    const std::array<int, 2>& rSize = nSizes[static_cast<std::size_t>(oDice.Whole(0, 2))];
    SPhotograph sPhotograph;
    sPhotograph.nWidth = static_cast<int>(rSize[0] * fScale);
    sPhotograph.nHeight = static_cast<int>(rSize[1] * fScale);
    SSheet sSheet(sPhotograph.nWidth, sPhotograph.nHeight, nPicture);
    DrawKind(sSheet, ePhotograph);
    AddNoise(sSheet.sCanvas, sSheet.oDice, oDice.Between(0.3, 3.0));
    if (oDice.Chance(0.4))
        Compress(sSheet.sCanvas, oDice.Whole(3, 12));
    sPhotograph.vLuma = Bytes(sSheet.sCanvas);
    return sPhotograph;
}
