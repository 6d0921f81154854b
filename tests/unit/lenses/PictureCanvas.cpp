#include "PictureCanvas.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

constexpr int PATTERN_SIDE = 512;

/// Place in a table of rows of nSide entries.
std::size_t Place(int nX, int nY, int nSide)
{
    return static_cast<std::size_t>(nY) * static_cast<std::size_t>(nSide) + static_cast<std::size_t>(nX);
}

using SPattern = std::vector<float>;

float& Entry(SPattern& rPattern, int nX, int nY)
{
    return rPattern[Place(nX & (PATTERN_SIDE - 1), nY & (PATTERN_SIDE - 1), PATTERN_SIDE)];
}

/// Adds a layer of smooth noise with nCells knots a side.
void AddOctave(SPattern& rPattern, CDice& rDice, int nCells, float fHeight)
{
    std::vector<float> vKnots(Place(0, nCells, nCells));
    for (float& rKnot : vKnots)
        rKnot = fHeight * static_cast<float>(rDice.Next());
    const auto Knot = [&](int nX, int nY) { return vKnots[Place(nX % nCells, nY % nCells, nCells)]; };
    const int nStep = PATTERN_SIDE / nCells;
    for (int nY = 0; nY < PATTERN_SIDE; ++nY) {
        for (int nX = 0; nX < PATTERN_SIDE; ++nX) {
            const int nLeft = nX / nStep;
            const int nTop = nY / nStep;
            const float fRight = static_cast<float>(nX % nStep) / static_cast<float>(nStep);
            const float fDown = static_cast<float>(nY % nStep) / static_cast<float>(nStep);
            const float fEaseX = fRight * fRight * (3.0f - 2.0f * fRight);
            const float fEaseY = fDown * fDown * (3.0f - 2.0f * fDown);
            const float fUpper = std::lerp(Knot(nLeft, nTop), Knot(nLeft + 1, nTop), fEaseX);
            const float fLower = std::lerp(Knot(nLeft, nTop + 1), Knot(nLeft + 1, nTop + 1), fEaseX);
            Entry(rPattern, nX, nY) += std::lerp(fUpper, fLower, fEaseY);
        }
    }
}

SPattern MakeSlow()
{
    CDice oDice(11);
    SPattern vPattern(PATTERN_SIDE * PATTERN_SIDE);
    AddOctave(vPattern, oDice, 8, 0.6f);
    AddOctave(vPattern, oDice, 16, 0.4f);
    return vPattern;
}

SPattern MakeDetail()
{
    CDice oDice(7);
    SPattern vNoise(PATTERN_SIDE * PATTERN_SIDE);
    SPattern vWalls(PATTERN_SIDE * PATTERN_SIDE);
    for (int nCells = 8; nCells <= 256; nCells *= 2)
        AddOctave(vNoise, oDice, nCells, 1.6f / std::sqrt(static_cast<float>(nCells)));
    AddOctave(vWalls, oDice, 16, 1.0f);
    SPattern vPattern(PATTERN_SIDE * PATTERN_SIDE);
    for (int nY = 0; nY < PATTERN_SIDE; ++nY) {
        for (int nX = 0; nX < PATTERN_SIDE; ++nX) {
            const float fWall = Entry(vWalls, nX, nY);
            const float fKind = fWall > 0.62f ? 0.85f : fWall > 0.45f ? 0.4f : 0.14f;
            const bool bStripe = fWall > 0.45f && ((nX + nY / 2) & 31) < 3;
            Entry(vPattern, nX, nY) = (bStripe ? 0.3f : 1.0f) * fKind * (0.35f + Entry(vNoise, nX, nY));
        }
    }
    return vPattern;
}

/// Between four entries.
double Look(const SPattern& rPattern, double fX, double fY)
{
    const double fLeft = std::floor(fX);
    const double fTop = std::floor(fY);
    const int nX = static_cast<int>(fLeft) & (PATTERN_SIDE - 1);
    const int nY = static_cast<int>(fTop) & (PATTERN_SIDE - 1);
    const int nRight = (nX + 1) & (PATTERN_SIDE - 1);
    const int nDown = (nY + 1) & (PATTERN_SIDE - 1);
    const auto At = [&](int nCol, int nRow) {
        return static_cast<double>(rPattern[Place(nCol, nRow, PATTERN_SIDE)]);
    };
    const double fUpper = std::lerp(At(nX, nY), At(nRight, nY), fX - fLeft);
    const double fLower = std::lerp(At(nX, nDown), At(nRight, nDown), fX - fLeft);
    return std::lerp(fUpper, fLower, fY - fTop);
}

using SBlock = std::array<std::array<float, 8>, 8>;

/// To frequencies along rows, rows and columns exchanged; bBack: from them.
SBlock Transform(const SBlock& rBlock, bool bBack)
{
    static const SBlock WAVES = [] {
        SBlock fWaves = {};
        for (std::size_t k = 0; k < 8; ++k) {
            for (std::size_t n = 0; n < 8; ++n) {
                const double fAngle =
                    3.14159265358979 / 8.0 * (static_cast<double>(n) + 0.5) * static_cast<double>(k);
                fWaves[k][n] = static_cast<float>((k == 0 ? std::sqrt(0.125) : 0.5) * std::cos(fAngle));
            }
        }
        return fWaves;
    }();
    SBlock fResult = {};
    for (std::size_t i = 0; i < 8; ++i) {
        for (std::size_t j = 0; j < 8; ++j) {
            float fSum = 0.0f;
            for (std::size_t k = 0; k < 8; ++k)
                fSum += rBlock[i][k] * (bBack ? WAVES[k][j] : WAVES[j][k]);
            fResult[j][i] = fSum;
        }
    }
    return fResult;
}

} // namespace

double CDice::Next()
{
    m_nState = m_nState * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<double>(m_nState >> 40) / 16777216.0;
}

int CDice::Whole(int nLeast, int nMost)
{
    return nLeast + static_cast<int>(Next() * (nMost - nLeast + 1));
}

float CDice::Noise()
{
    // The sum of even numbers is almost normal.
    m_nState = m_nState * 6364136223846793005ull + 1442695040888963407ull;
    const std::uint64_t nBits = m_nState ^ (m_nState >> 29);
    const float fSum = static_cast<float>((nBits & 0xFFFF) + ((nBits >> 16) & 0xFFFF) +
                                          ((nBits >> 32) & 0xFFFF) + (nBits >> 48));
    return (fSum / 65536.0f - 2.0f) * 1.7320508f;
}

SCanvas::SCanvas(int nCols, int nRows, float fLevel)
    : nWidth(nCols), nHeight(nRows),
      vLevels(static_cast<std::size_t>(nCols) * static_cast<std::size_t>(nRows), fLevel)
{}

CScenery::CScenery(CDice& rDice, double fUnit)
    : m_fScale(150.0 / fUnit), m_fCos(0.0), m_fSin(0.0), m_fMoveX(rDice.Between(0.0, PATTERN_SIDE)),
      m_fMoveY(rDice.Between(0.0, PATTERN_SIDE))
{
    const double fAngle = rDice.Between(0.0, 6.28);
    m_fCos = std::cos(fAngle) * m_fScale;
    m_fSin = std::sin(fAngle) * m_fScale;
}

double CScenery::At(double fX, double fY) const
{
    static const SPattern DETAIL = MakeDetail();
    return std::clamp(
        Look(DETAIL, m_fMoveX + m_fCos * fX - m_fSin * fY, m_fMoveY + m_fSin * fX + m_fCos * fY), 0.0, 1.0);
}

double CScenery::Light(double fX, double fY) const
{
    static const SPattern SLOW = MakeSlow();
    return Look(SLOW, m_fMoveY + m_fCos * fX - m_fSin * fY, m_fMoveX + m_fSin * fX + m_fCos * fY);
}

void DrawText(SCanvas& rCanvas, CDice& rDice, double fLeft, double fTop, double fHeight, int nCharacters,
              float fLevel)
{
    // Letters of three by five strokes, some of which are there.
    const double fStroke = fHeight / 5.0;
    for (int nCell = 0; nCell < nCharacters * 15; ++nCell) {
        const int nRow = nCell / (nCharacters * 3);
        const int nCol = nCell % (nCharacters * 3);
        if (!rDice.Chance(0.6))
            continue;
        const int nGaps = nCol / 3;
        const double fX = fLeft + (nCol + nGaps) * fStroke;
        const double fY = fTop + nRow * fStroke;
        for (int y = std::max(0, static_cast<int>(fY)); y < std::min<double>(rCanvas.nHeight, fY + fStroke);
             ++y) {
            for (int x = std::max(0, static_cast<int>(fX));
                 x < std::min<double>(rCanvas.nWidth, fX + fStroke); ++x)
                rCanvas.At(x, y) = fLevel;
        }
    }
}

void DrawFlare(SCanvas& rCanvas, double fX, double fY, double fRadius, double fLevels)
{
    const int nLeft = std::max(0, static_cast<int>(fX - fRadius));
    const int nRight = std::min(rCanvas.nWidth, static_cast<int>(fX + fRadius) + 1);
    for (int y = std::max(0, static_cast<int>(fY - fRadius));
         y < std::min(rCanvas.nHeight, static_cast<int>(fY + fRadius) + 1); ++y) {
        for (int x = nLeft; x < nRight; ++x) {
            const double fOff = std::hypot(x + 0.5 - fX, y + 0.5 - fY) / fRadius;
            const double fShare = std::max(0.0, 1.0 - fOff * fOff);
            rCanvas.At(x, y) += static_cast<float>(fLevels * fShare * fShare);
        }
    }
}

void AddNoise(SCanvas& rCanvas, CDice& rDice, double fDeviation)
{
    for (float& rLevel : rCanvas.vLevels)
        rLevel += static_cast<float>(fDeviation) * rDice.Noise();
}

void Compress(SCanvas& rCanvas, int nStep)
{
    for (float& rLevel : rCanvas.vLevels)
        rLevel = std::clamp(rLevel, 0.0f, 255.0f);
    SBlock fBlock = {};
    for (int nTop = 0; nTop < rCanvas.nHeight; nTop += 8) {
        for (int nLeft = 0; nLeft < rCanvas.nWidth; nLeft += 8) {
            const auto Pixel = [&](std::size_t x, std::size_t y) -> float& {
                return rCanvas.At(std::min(nLeft + static_cast<int>(x), rCanvas.nWidth - 1),
                                  std::min(nTop + static_cast<int>(y), rCanvas.nHeight - 1));
            };
            for (std::size_t i = 0; i < 64; ++i)
                fBlock[i / 8][i % 8] = Pixel(i % 8, i / 8);
            fBlock = Transform(Transform(fBlock, false), false);
            for (std::size_t i = 0; i < 64; ++i) {
                const std::size_t nWaves = i / 8 + i % 8;
                const float fCoarse = static_cast<float>(nStep) * (1.0f + 0.5f * static_cast<float>(nWaves));
                float& rPart = fBlock[i / 8][i % 8];
                rPart = std::nearbyint(rPart / fCoarse) * fCoarse;
            }
            fBlock = Transform(Transform(fBlock, true), true);
            for (std::size_t i = 0; i < 64; ++i)
                Pixel(i % 8, i / 8) = fBlock[i / 8][i % 8];
        }
    }
}

std::vector<unsigned char> Bytes(const SCanvas& rCanvas)
{
    std::vector<unsigned char> vBytes(rCanvas.vLevels.size());
    std::transform(rCanvas.vLevels.begin(), rCanvas.vLevels.end(), vBytes.begin(), [](float fLevel) {
        return static_cast<unsigned char>(std::clamp(fLevel + 0.5f, 0.0f, 255.0f));
    });
    return vBytes;
}
