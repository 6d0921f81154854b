/// \file
/// Which triangles may lie at a point.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// A rectangle round something.
struct SBox
{
    double fLeft = 0.0;
    double fTop = 0.0;
    double fRight = 0.0;
    double fBottom = 0.0;

    bool Has(double x, double y, double fMargin) const
    {
        return x >= fLeft - fMargin && x <= fRight + fMargin && y >= fTop - fMargin && y <= fBottom + fMargin;
    }
};

/// Bins of one size over an area, each with the numbers of the boxes that touch it. What lies beside the area
/// is in the bins at its rim.
/// Owns: its arrays; they grow, never shrink. Thread: any, serialised by the host. Fails: Build throws for
/// lack of memory; what there is then is of no use until another one is built.
class CTriangleBins
{
public:
    /// About as many bins as boxes. A box that is not finite is in none.
    void Build(const SBox& rArea, const std::vector<SBox>& rBoxes);
    /// Numbers of all boxes that may have a finite point, in their order; none before Build.
    std::span<const std::uint32_t> At(double x, double y) const;
    std::size_t CountBytes() const;

private:
    /// Along one axis.
    struct SAxis
    {
        std::size_t Bin(double f) const
        {
            const double fBin = (f - fFirst) * fPerUnit;
            const double fLast = static_cast<double>(nBins - 1);
            return static_cast<std::size_t>(fBin > 0.0 ? (fBin < fLast ? fBin : fLast) : 0.0);
        }

        double fFirst = 0.0;
        double fPerUnit = 0.0;
        std::size_t nBins = 1;
    };
    template <class F>
    void ForBins(const SBox& rBox, F&& rUse) const;
    std::size_t CountEntries(const std::vector<SBox>& rBoxes) const;
    void Fill(const std::vector<SBox>& rBoxes);

    SAxis m_sX;
    SAxis m_sY;
    std::vector<std::uint32_t> m_vFirst; ///< of each bin in m_vBoxes, and the end of the last
    std::vector<std::uint32_t> m_vBoxes;
};
