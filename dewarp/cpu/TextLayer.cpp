#include "dewarp/cpu/TextLayer.h"

#include "dewarp/overlays/OverlapGroups.h"

#include <algorithm>
#include <utility>

namespace
{

/// The part of a rectangle inside a target; empty when there is none.
SGRect Inside(long long x, long long y, long long nRight, long long nBottom, int nWidth, int nHeight)
{
    x = std::clamp<long long>(x, 0, nWidth);
    y = std::clamp<long long>(y, 0, nHeight);
    nRight = std::clamp<long long>(nRight, x, nWidth);
    nBottom = std::clamp<long long>(nBottom, y, nHeight);
    return {static_cast<int>(x), static_cast<int>(y), static_cast<int>(nRight - x),
            static_cast<int>(nBottom - y)};
}

bool IsSame(const std::vector<SGPUString>& vFirst, const std::vector<SGPUString>& vSecond)
{
    return std::equal(vFirst.begin(), vFirst.end(), vSecond.begin(), vSecond.end(),
                      [](const SGPUString& a, const SGPUString& b) { return !(a != b); });
}

} // namespace

void CTextLayer::Clear()
{
    m_vGroups.clear();
    m_vOpaque.clear();
    m_nDrawn = 0;
}

void CTextLayer::Build(const std::vector<SGPUString>& vStrings, int nTargetWidth, int nTargetHeight,
                       const SLayerFormat& rFormat)
{
    if (m_nWidth != nTargetWidth || m_nHeight != nTargetHeight || !(m_sFormat == rFormat))
        Clear();
    m_nWidth = nTargetWidth;
    m_nHeight = nTargetHeight;
    m_sFormat = rFormat;
    m_nDrawn = 0;
    try {
        std::vector<SGroup> vGroups = FindGroups(vStrings, nTargetWidth, nTargetHeight);
        ListOpaque(vGroups);
        for (SGroup& rGroup : vGroups) {
            if (!TakeOld(rGroup))
                DrawGroup(rGroup);
        }
        m_vGroups.swap(vGroups);
    } catch (...) {
        Clear();
        throw;
    }
}

/// Strings that are seen, those that share pixels together.
std::vector<CTextLayer::SGroup> CTextLayer::FindGroups(const std::vector<SGPUString>& vStrings, int nWidth,
                                                       int nHeight)
{
    std::vector<SGPUString> vPlaced;
    for (const SGPUString& rString : vStrings) {
        const SPlacedString sPlaced = PlaceString(rString, nWidth, nHeight, false);
        if (!sPlaced.bVisible)
            continue;
        SGPUString& rPlaced = vPlaced.emplace_back(rString);
        rPlaced.nDrawnX = sPlaced.sDrawn.x;
        rPlaced.nDrawnY = sPlaced.sDrawn.y;
        rPlaced.nDrawnW = sPlaced.sDrawn.width;
        rPlaced.nDrawnH = sPlaced.sDrawn.height;
    }
    RecomputeOverlapGroups(vPlaced);
    std::vector<SGroup> vGroups;
    std::vector<std::pair<int, std::size_t>> vNumbers; // a group's number, and where it is
    for (SGPUString& rString : vPlaced) {
        const int n = rString.nOverlapGroup;
        const auto it =
            std::find_if(vNumbers.begin(), vNumbers.end(), [n](const auto& r) { return r.first == n; });
        if (n != 0 && it != vNumbers.end()) {
            vGroups[it->second].vStrings.push_back(std::move(rString));
            continue;
        }
        if (n != 0)
            vNumbers.emplace_back(n, vGroups.size());
        vGroups.emplace_back().vStrings.push_back(std::move(rString));
    }
    return vGroups;
}

void CTextLayer::ListOpaque(const std::vector<SGroup>& vGroups)
{
    m_vOpaque.clear();
    for (const SGroup& rGroup : vGroups) {
        for (const SGPUString& r : rGroup.vStrings) {
            const long long w = r.nDrawnW;
            const long long h = r.nDrawnH;
            const SGRect sRect =
                Inside(r.nDrawnX - w, r.nDrawnY - h, r.nDrawnX + w, r.nDrawnY + h, m_nWidth, m_nHeight);
            if (sRect.width > 0 && sRect.height > 0)
                m_vOpaque.push_back(sRect);
        }
    }
}

/// Takes the layer of a group that was there before.
bool CTextLayer::TakeOld(SGroup& rGroup)
{
    for (SGroup& rOld : m_vGroups) {
        if (!IsSame(rOld.vStrings, rGroup.vStrings))
            continue;
        rGroup.oLayer = std::move(rOld.oLayer);
        rOld.vStrings.clear();
        return true;
    }
    return false;
}

void CTextLayer::DrawGroup(SGroup& rGroup)
{
    ++m_nDrawn;
    long long nLeft = m_nWidth;
    long long nTop = m_nHeight;
    long long nRight = 0;
    long long nBottom = 0;
    for (const SGPUString& r : rGroup.vStrings) {
        nLeft = std::min<long long>(nLeft, r.nDrawnX);
        nTop = std::min<long long>(nTop, r.nDrawnY);
        nRight = std::max(nRight, static_cast<long long>(r.nDrawnX) + r.nDrawnW);
        nBottom = std::max(nBottom, static_cast<long long>(r.nDrawnY) + r.nDrawnH);
    }
    const SGRect sRect = Inside(nLeft, nTop, nRight, nBottom, m_nWidth, m_nHeight);
    m_oCanvas.Begin(sRect);
    for (const SGPUString& r : rGroup.vStrings)
        m_oCanvas.Draw(r, PlaceString(r, m_nWidth, m_nHeight, false));
    rGroup.oLayer.Begin(m_sFormat);
    for (int y = sRect.y; y < sRect.y + sRect.height; ++y)
        rGroup.oLayer.AddRow(y, sRect.x, m_oCanvas.Row(y), sRect.width);
    rGroup.oLayer.Finish();
}

void CTextLayer::BlendPixels(unsigned char* pTarget, std::ptrdiff_t nStride, int nFirstRow, int nEndRow) const
{
    for (const SGroup& rGroup : m_vGroups)
        rGroup.oLayer.BlendPixels(pTarget, nStride, nFirstRow, nEndRow, false);
}

void CTextLayer::BlendYUV(const SFrameTarget& rTarget, int nFirstRow, int nEndRow) const
{
    for (const SGroup& rGroup : m_vGroups)
        rGroup.oLayer.BlendYUV(rTarget, nFirstRow, nEndRow);
}

bool CTextLayer::IsEmpty() const
{
    for (const SGroup& rGroup : m_vGroups) {
        if (!rGroup.oLayer.IsEmpty())
            return false;
    }
    return m_vOpaque.empty();
}

std::size_t CTextLayer::CountBytes() const
{
    std::size_t nBytes = m_oCanvas.CountBytes() + m_vOpaque.capacity() * sizeof(SGRect);
    for (const SGroup& rGroup : m_vGroups)
        nBytes += rGroup.oLayer.CountBytes();
    return nBytes;
}
