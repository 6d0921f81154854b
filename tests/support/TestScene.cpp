#include "tests/support/TestScene.h"

#include "tests/support/LensCurve.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

static constexpr double RADIANS = std::numbers::pi / 180.0;

double Dot(const FVector& aA, const FVector& aB)
{
    return aA[0] * aB[0] + aA[1] * aB[1] + aA[2] * aB[2];
}

FVector Normalised(const FVector& aVector)
{
    const double fLength = std::sqrt(Dot(aVector, aVector));
    return {aVector[0] / fLength, aVector[1] / fLength, aVector[2] / fLength};
}

/// Five columns, seven rows, top row first; the leftmost column is bit 4.
static const unsigned char* Glyph(char cLetter)
{
    static const unsigned char N[] = {17, 25, 21, 19, 17, 17, 17};
    static const unsigned char E[] = {31, 16, 16, 30, 16, 16, 31};
    static const unsigned char S[] = {15, 16, 16, 14, 1, 1, 30};
    static const unsigned char W[] = {17, 17, 17, 21, 21, 27, 17};
    static const unsigned char F[] = {31, 16, 16, 30, 16, 16, 16};
    static const unsigned char R[] = {30, 17, 17, 30, 20, 18, 17};
    switch (cLetter) {
    case 'N':
        return N;
    case 'E':
        return E;
    case 'S':
        return S;
    case 'W':
        return W;
    case 'F':
        return F;
    default:
        return R;
    }
}

/// True on a letter of height fHeight whose middle is at 0; x to its right, y up.
static bool OnLetter(char cLetter, double x, double y, double fHeight)
{
    const double fCell = fHeight / 7.0;
    const int nCol = static_cast<int>(std::floor(x / fCell + 2.5));
    const int nRow = static_cast<int>(std::floor(3.5 - y / fCell));
    if (nCol < 0 || nCol > 4 || nRow < 0 || nRow > 6)
        return false;
    return (Glyph(cLetter)[nRow] >> (4 - nCol) & 1) != 0;
}

static bool OnGrid(double x, double y)
{
    return std::abs(x - std::round(x)) < 0.03 || std::abs(y - std::round(y)) < 0.03;
}

static FColour Shaded(const FColour& aColour, double fShade)
{
    return {aColour[0] * fShade, aColour[1] * fShade, aColour[2] * fShade};
}

static const FColour WHITE = {1.0, 1.0, 1.0};

static FColour FloorColour(bool bCeiling, double x, double y)
{
    // The floor is read looking down with north on top, the ceiling looking up with north on top.
    if (OnLetter(bCeiling ? 'R' : 'F', bCeiling ? -x : x, y, 2.4))
        return WHITE;
    const FColour aBase = bCeiling ? FColour{0.72, 0.72, 0.78} : FColour{0.45, 0.35, 0.25};
    return OnGrid(x, y) ? Shaded(aBase, 0.4) : aBase;
}

FColour RoomColour(const FVector& aDirection)
{
    static constexpr double WALL = 4.0;   // metres from the camera
    static constexpr double HEIGHT = 2.5; // up and down
    const double fSide = std::max(std::abs(aDirection[0]), std::abs(aDirection[1]));
    if (std::abs(aDirection[2]) * WALL > fSide * HEIGHT) {
        const double fScale = HEIGHT / std::abs(aDirection[2]);
        return FloorColour(aDirection[2] > 0.0, aDirection[0] * fScale, aDirection[1] * fScale);
    }
    const double fScale = WALL / fSide;
    const double x = aDirection[0] * fScale;
    const double y = aDirection[1] * fScale;
    const double z = aDirection[2] * fScale;
    char cLetter = 'N';
    double fRight = x;
    FColour aBase = {0.85, 0.25, 0.2};
    if (std::abs(aDirection[0]) > std::abs(aDirection[1])) {
        cLetter = aDirection[0] > 0.0 ? 'E' : 'W';
        fRight = aDirection[0] > 0.0 ? -y : y;
        aBase = aDirection[0] > 0.0 ? FColour{0.2, 0.7, 0.3} : FColour{0.85, 0.75, 0.15};
    } else if (aDirection[1] < 0.0) {
        cLetter = 'S';
        fRight = -x;
        aBase = {0.2, 0.35, 0.85};
    }
    if (OnLetter(cLetter, fRight, z - 1.1, 1.6) || OnLetter(cLetter, fRight, z + 1.1, 1.6))
        return WHITE;
    return Shaded(aBase, (0.8 + 0.2 * z / HEIGHT) * (OnGrid(fRight, z) ? 0.4 : 1.0));
}

FScene LinesScene(std::vector<SStraightLine> vLines)
{
    for (SStraightLine& sLine : vLines)
        sLine.aNormal = Normalised(sLine.aNormal);
    return [vLines = std::move(vLines)](const FVector& aDirection) {
        for (const SStraightLine& sLine : vLines)
            if (std::abs(Dot(sLine.aNormal, aDirection)) < sLine.fHalfWidth)
                return sLine.aColour;
        return FColour{0.0, 0.0, 0.0};
    };
}

struct SCameraAxes
{
    FVector aRight;
    FVector aUp;
    FVector aForward;
};

static SCameraAxes AxesOf(EMountType eMount, double fInclination)
{
    if (eMount == MOUNT_FLOOR)
        return {{-1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    if (eMount == MOUNT_WALL) {
        const double c = std::cos(fInclination * RADIANS);
        const double s = std::sin(fInclination * RADIANS);
        return {{1.0, 0.0, 0.0}, {0.0, -s, c}, {0.0, c, s}};
    }
    return {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, -1.0}};
}

FVector CameraToWorld(EMountType eMount, const FVector& aRay, double fInclination)
{
    const SCameraAxes s = AxesOf(eMount, fInclination);
    FVector aResult = {};
    for (std::size_t i = 0; i < 3; ++i)
        aResult[i] = aRay[0] * s.aRight[i] + aRay[1] * s.aUp[i] + aRay[2] * s.aForward[i];
    return aResult;
}

FVector WorldToCamera(EMountType eMount, const FVector& aDirection, double fInclination)
{
    const SCameraAxes s = AxesOf(eMount, fInclination);
    return {Dot(aDirection, s.aRight), Dot(aDirection, s.aUp), Dot(aDirection, s.aForward)};
}

STestImage RenderFisheye(const FScene& fScene, int nLensType, int nWidth, int nHeight, EMountType eMount,
                         double fInclination, int nSamples)
{
    const CLensCurve oLens(nLensType);
    const double fRadius = CLensCurve::Radius(nLensType, nWidth, nHeight);
    STestImage sImage(nWidth, nHeight);
    const auto Sample = [&](double x, double y) {
        const double fDistance = std::hypot(x, y);
        const double fAngle = oLens.Angle(fDistance / fRadius);
        if (fAngle > 92.0)
            return FColour{0.0, 0.0, 0.0};
        const double fSin = std::sin(fAngle * RADIANS) / std::max(fDistance, 1e-12);
        return fScene(CameraToWorld(eMount, {fSin * x, fSin * y, std::cos(fAngle * RADIANS)}, fInclination));
    };
    for (int nRow = 0; nRow < nHeight; ++nRow)
        for (int nCol = 0; nCol < nWidth; ++nCol) {
            FColour aSum = {0.0, 0.0, 0.0};
            for (int i = 0; i < nSamples * nSamples; ++i) {
                const double fX = nCol + (i % nSamples + 0.5) / nSamples - 0.5 * nWidth;
                const int nSubRow = i / nSamples;
                const double fY = 0.5 * nHeight - nRow - (nSubRow + 0.5) / nSamples;
                const FColour aColour = Sample(fX, fY);
                for (std::size_t k = 0; k < 3; ++k)
                    aSum[k] += aColour[k] * 255.0 / (nSamples * nSamples);
            }
            sImage.Set(nCol, nRow, static_cast<int>(std::lround(aSum[0])),
                       static_cast<int>(std::lround(aSum[1])), static_cast<int>(std::lround(aSum[2])));
        }
    return sImage;
}

STestImage TexelFrame(int nWidth, int nHeight)
{
    STestImage sImage(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            sImage.Set(x, y, x & 255, y & 255, x >> 8 | (y >> 8) << 4);
    return sImage;
}
