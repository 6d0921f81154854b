#include "dewarp/mapping/MeshIndex.h"

#include "dewarp/geometry/CustomGPUGeometry.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace
{

const std::uint32_t FREE_SLOT = 0xFFFFFFFFU;

/// The five floats of a vertex as bits; 0 has one form only.
struct SVertexBits
{
    SVertexBits(const CCustomGPUGeometry& rGeometry, std::size_t n)
    {
        const float* const pPosition = rGeometry.m_pVertices + 3 * n;
        const float* const pTexCoord = rGeometry.m_pTexCoords + 2 * n;
        const float af[5] = {pPosition[0] + 0.0f, pPosition[1] + 0.0f, pPosition[2] + 0.0f,
                             pTexCoord[0] + 0.0f, pTexCoord[1] + 0.0f};
        std::memcpy(an, af, sizeof an);
    }
    bool operator==(const SVertexBits& sOther) const { return std::memcmp(an, sOther.an, sizeof an) == 0; }
    std::uint32_t Hash() const
    {
        std::uint64_t n = 0x9E3779B97F4A7C15U;
        for (const std::uint32_t nPart : an)
            n = (n ^ nPart) * 0xD6E8FEB86659FD93U + (n >> 29);
        return static_cast<std::uint32_t>(n >> 32);
    }

    std::uint32_t an[5];
};

} // namespace

void CMeshIndex::Build(const CCustomGPUGeometry& rGeometry, bool bFan)
{
    const int nVertices = rGeometry.m_nVertexCount;
    // Panes are built anew with every move; which of their vertices meet stays.
    if (bFan == m_bFan && HasSameTopology(rGeometry, nVertices)) {
        TakeValues(rGeometry);
        return;
    }
    m_bWhole = false;
    vTriangles.clear();
    vBorders.clear();
    m_bFan = bFan;
    MergeVertices(rGeometry, nVertices);
    TakeValues(rGeometry);
    ListTriangles(bFan);
    FindBorders();
    m_bWhole = true;
}

/// Vertices that differ now were one before? Then the mesh is another. Vertices that were two before and
/// agree now may stay two.
bool CMeshIndex::HasSameTopology(const CCustomGPUGeometry& rGeometry, int nVertices) const
{
    if (!m_bWhole || m_vMerged.size() != static_cast<std::size_t>(nVertices))
        return false;
    for (std::size_t n = 0; n < m_vMerged.size(); ++n) {
        const std::size_t nFirst = m_vFirst[m_vMerged[n]];
        if (nFirst != n && !(SVertexBits(rGeometry, n) == SVertexBits(rGeometry, nFirst)))
            return false;
    }
    return true;
}

void CMeshIndex::MergeVertices(const CCustomGPUGeometry& rGeometry, int nVertices)
{
    const std::size_t nCount = static_cast<std::size_t>(std::max(nVertices, 0));
    std::size_t nSlots = 64;
    while (nSlots < 2 * nCount)
        nSlots *= 2;
    m_vTable.assign(nSlots, FREE_SLOT);
    m_vMerged.resize(nCount);
    m_vFirst.clear();
    for (std::size_t n = 0; n < nCount; ++n) {
        const SVertexBits sBits(rGeometry, n);
        std::size_t nSlot = sBits.Hash() & (nSlots - 1);
        while (m_vTable[nSlot] != FREE_SLOT && !(SVertexBits(rGeometry, m_vFirst[m_vTable[nSlot]]) == sBits))
            nSlot = (nSlot + 1) & (nSlots - 1);
        if (m_vTable[nSlot] == FREE_SLOT) {
            m_vTable[nSlot] = static_cast<std::uint32_t>(m_vFirst.size());
            m_vFirst.push_back(static_cast<std::uint32_t>(n));
        }
        m_vMerged[n] = m_vTable[nSlot];
    }
}

void CMeshIndex::TakeValues(const CCustomGPUGeometry& rGeometry)
{
    const std::size_t nCount = m_vFirst.size();
    for (std::vector<float>* pArray : {&vX, &vY, &vZ, &vU, &vV})
        pArray->resize(nCount);
    for (std::size_t n = 0; n < nCount; ++n) {
        const float* const pPosition = rGeometry.m_pVertices + 3 * static_cast<std::size_t>(m_vFirst[n]);
        const float* const pTexCoord = rGeometry.m_pTexCoords + 2 * static_cast<std::size_t>(m_vFirst[n]);
        vX[n] = pPosition[0];
        vY[n] = pPosition[1];
        vZ[n] = pPosition[2];
        vU[n] = pTexCoord[0];
        vV[n] = pTexCoord[1];
    }
}

void CMeshIndex::ListTriangles(bool bFan)
{
    const std::size_t nCount = m_vMerged.size();
    const auto Add = [&](std::size_t nA, std::size_t nB, std::size_t nC) {
        const std::uint32_t a = m_vMerged[nA];
        const std::uint32_t b = m_vMerged[nB];
        const std::uint32_t c = m_vMerged[nC];
        if (a != b && b != c && c != a)
            vTriangles.insert(vTriangles.end(), {a, b, c});
    };
    if (bFan) {
        for (std::size_t n = 1; n + 1 < nCount; ++n)
            Add(0, n, n + 1);
        return;
    }
    for (std::size_t n = 0; n + 2 < nCount; n += 3)
        Add(n, n + 1, n + 2);
}

void CMeshIndex::FindBorders()
{
    m_vEdges.clear();
    for (std::size_t n = 0; n < vTriangles.size(); n += 3) {
        for (std::size_t k = 0; k < 3; ++k) {
            const std::uint64_t a = vTriangles[n + k];
            const std::uint64_t b = vTriangles[n + (k + 1) % 3];
            m_vEdges.push_back(std::min(a, b) << 32 | std::max(a, b));
        }
    }
    std::sort(m_vEdges.begin(), m_vEdges.end());
    for (std::size_t n = 0; n < m_vEdges.size();) {
        std::size_t nEnd = n + 1;
        while (nEnd < m_vEdges.size() && m_vEdges[nEnd] == m_vEdges[n])
            ++nEnd;
        if (nEnd - n != 2) {
            vBorders.push_back(static_cast<std::uint32_t>(m_vEdges[n] >> 32));
            vBorders.push_back(static_cast<std::uint32_t>(m_vEdges[n] & 0xFFFFFFFFU));
        }
        n = nEnd;
    }
}
