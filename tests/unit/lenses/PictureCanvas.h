/// \file
/// Grey pictures that are computed: scenes full of detail, and what cameras do to them. The same numbers
/// always make the same picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Numbers without a pattern.
class CDice
{
public:
    explicit CDice(unsigned nSeed) : m_nState(0x9E3779B97F4A7C15ull * (nSeed + 1ull)) {}

    double Next(); ///< 0 to 1
    double Between(double fLeast, double fMost) { return fLeast + (fMost - fLeast) * Next(); }
    int Whole(int nLeast, int nMost); ///< both are among them
    bool Chance(double fShare) { return Next() < fShare; }
    float Noise(); ///< standard deviation 1

private:
    std::uint64_t m_nState;
};

/// A grey plane. Levels 0 to 255, pixel centres at halves.
struct SCanvas
{
    int nWidth = 0;
    int nHeight = 0;
    std::vector<float> vLevels;

    SCanvas(int nCols, int nRows, float fLevel);
    float& At(int nCol, int nRow) { return vLevels[Index(nCol, nRow)]; }
    std::size_t Index(int nCol, int nRow) const
    {
        return static_cast<std::size_t>(nRow) * static_cast<std::size_t>(nWidth) +
               static_cast<std::size_t>(nCol);
    }
};

/// Walls, foliage and stripes: an endless pattern.
class CScenery
{
public:
    CScenery(CDice& rDice, double fUnit);
    /// 0 to 1, about a quarter on average.
    double At(double fX, double fY) const;
    /// 0 to 1, changes slowly from place to place.
    double Light(double fX, double fY) const;

private:
    double m_fScale, m_fCos, m_fSin, m_fMoveX, m_fMoveY;
};

/// Burnt-in characters, their upper left corner and height given.
void DrawText(SCanvas& rCanvas, CDice& rDice, double fLeft, double fTop, double fHeight, int nCharacters,
              float fLevel);

/// Light inside of the lens: adds a soft spot.
void DrawFlare(SCanvas& rCanvas, double fX, double fY, double fRadius, double fLevels);

void AddNoise(SCanvas& rCanvas, CDice& rDice, double fDeviation);

/// Blocks of 8 x 8 in frequencies, rounded: as coarse as nStep says, finer frequencies coarser.
void Compress(SCanvas& rCanvas, int nStep);

/// Rounded and limited.
std::vector<unsigned char> Bytes(const SCanvas& rCanvas);
