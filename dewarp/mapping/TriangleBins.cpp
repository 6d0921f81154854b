#include "dewarp/mapping/TriangleBins.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Most bins that a box lies in on average. Beyond, there are few small boxes, and coarser bins do as well.
const std::size_t MOST_BINS_A_BOX = 12;
/// So many entries are always allowed.
const std::size_t FEW_ENTRIES = 16384;

bool IsFinite(const SBox& r)
{
    return std::isfinite(r.fLeft) && std::isfinite(r.fTop) && std::isfinite(r.fRight) &&
           std::isfinite(r.fBottom);
}

/// Bins along an axis, for so many over an area.
std::size_t BinsAlong(double fLength, double fAcross, std::size_t nBins)
{
    const double f = std::sqrt(static_cast<double>(nBins) * fLength / fAcross);
    const double fMost = static_cast<double>(nBins);
    return static_cast<std::size_t>(f > 1.0 ? (f < fMost ? std::ceil(f) : fMost) : 1.0);
}

} // namespace

template <class F>
void CTriangleBins::ForBins(const SBox& rBox, F&& rUse) const
{
    if (!IsFinite(rBox))
        return;
    const std::size_t nRight = m_sX.Bin(rBox.fRight);
    const std::size_t nBottom = m_sY.Bin(rBox.fBottom);
    for (std::size_t y = m_sY.Bin(rBox.fTop); y <= nBottom; ++y) {
        for (std::size_t x = m_sX.Bin(rBox.fLeft); x <= nRight; ++x)
            rUse(y * m_sX.nBins + x);
    }
}

std::size_t CTriangleBins::CountEntries(const std::vector<SBox>& rBoxes) const
{
    std::size_t nEntries = 0;
    for (const SBox& r : rBoxes) {
        if (IsFinite(r))
            nEntries +=
                (m_sX.Bin(r.fRight) - m_sX.Bin(r.fLeft) + 1) * (m_sY.Bin(r.fBottom) - m_sY.Bin(r.fTop) + 1);
    }
    return nEntries;
}

void CTriangleBins::Build(const SBox& rArea, const std::vector<SBox>& rBoxes)
{
    m_vFirst.clear();
    m_vBoxes.clear();
    const double fWidth = rArea.fRight - rArea.fLeft;
    const double fHeight = rArea.fBottom - rArea.fTop;
    const bool bArea = std::isfinite(fWidth) && std::isfinite(fHeight) && fWidth > 0.0 && fHeight > 0.0;
    for (std::size_t nBins = bArea ? rBoxes.size() + 1 : 1;; nBins /= 4) {
        nBins = nBins < 1 ? 1 : nBins;
        m_sX = {rArea.fLeft, 0.0, 1};
        m_sY = {rArea.fTop, 0.0, 1};
        if (nBins > 1) {
            m_sX.nBins = BinsAlong(fWidth, fHeight, nBins);
            m_sY.nBins = BinsAlong(fHeight, fWidth, nBins);
            m_sX.fPerUnit = static_cast<double>(m_sX.nBins) / fWidth;
            m_sY.fPerUnit = static_cast<double>(m_sY.nBins) / fHeight;
        }
        if (nBins == 1 || CountEntries(rBoxes) <= std::max(MOST_BINS_A_BOX * rBoxes.size(), FEW_ENTRIES))
            break;
    }
    Fill(rBoxes);
}

void CTriangleBins::Fill(const std::vector<SBox>& rBoxes)
{
    m_vFirst.assign(m_sX.nBins * m_sY.nBins + 1, 0);
    for (const SBox& r : rBoxes)
        ForBins(r, [&](std::size_t nBin) { ++m_vFirst[nBin + 1]; });
    for (std::size_t n = 1; n < m_vFirst.size(); ++n)
        m_vFirst[n] += m_vFirst[n - 1];
    m_vBoxes.resize(m_vFirst.back());
    for (std::size_t n = 0; n < rBoxes.size(); ++n)
        ForBins(rBoxes[n],
                [&](std::size_t nBin) { m_vBoxes[m_vFirst[nBin]++] = static_cast<std::uint32_t>(n); });
    // Every bin's first has become the next one's.
    for (std::size_t n = m_vFirst.size() - 1; n > 0; --n)
        m_vFirst[n] = m_vFirst[n - 1];
    m_vFirst[0] = 0;
}

std::span<const std::uint32_t> CTriangleBins::At(double x, double y) const
{
    if (m_vFirst.empty())
        return {};
    const std::size_t nBin = m_sY.Bin(y) * m_sX.nBins + m_sX.Bin(x);
    return {m_vBoxes.data() + m_vFirst[nBin], m_vFirst[nBin + 1] - m_vFirst[nBin]};
}

std::size_t CTriangleBins::CountBytes() const
{
    return (m_vFirst.capacity() + m_vBoxes.capacity()) * sizeof(std::uint32_t);
}
