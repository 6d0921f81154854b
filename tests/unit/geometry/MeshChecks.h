/// \file
/// Checks that the mesh tests share.
#pragma once

#include "PlainMeshes.h"

#include "dewarp/geometry/CustomGPUGeometry.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

/// The lenses with a table, then one without.
constexpr std::array<int, 5> ALL_LENSES = {LENS_DSL215, LENS_DSL239, LENS_DSL418, LENS_DSL419, LENS_UNKNOWN};

struct SMeshVertex
{
    float x, y, z, u, v;
};

inline SMeshVertex VertexAt(const CCustomGPUGeometry& oGeometry, int nVertex)
{
    const float* p = oGeometry.m_pVertices + 3 * static_cast<std::ptrdiff_t>(nVertex);
    const float* t = oGeometry.m_pTexCoords + 2 * static_cast<std::ptrdiff_t>(nVertex);
    return {p[0], p[1], p[2], t[0], t[1]};
}

/// Number of the first vertex component that is NaN or infinite, -1 when all are finite.
inline int FirstNotFinite(const CCustomGPUGeometry& oGeometry)
{
    for (int n = 0; n < oGeometry.m_nVertexCount; ++n) {
        const SMeshVertex s = VertexAt(oGeometry, n);
        if (!std::isfinite(s.x) || !std::isfinite(s.y) || !std::isfinite(s.z) || !std::isfinite(s.u) ||
            !std::isfinite(s.v))
            return n;
    }
    return -1;
}

/// Equality that tells -0 from 0.
inline bool SameBits(float fLeft, float fRight)
{
    return std::bit_cast<std::uint32_t>(fLeft) == std::bit_cast<std::uint32_t>(fRight);
}

/// Whether a generated mesh is the plain one, bit for bit.
inline testing::AssertionResult SameBits(const CCustomGPUGeometry& oGeometry, const SPlainMesh& sMesh)
{
    if (oGeometry.m_nVertexCount != static_cast<int>(sMesh.nCount))
        return testing::AssertionFailure() << oGeometry.m_nVertexCount << " vertices, not " << sMesh.nCount;
    if (oGeometry.m_fGeometryAspect != sMesh.fAspect)
        return testing::AssertionFailure() << "aspect " << oGeometry.m_fGeometryAspect;
    const std::size_t nCount = sMesh.nCount;
    for (std::size_t i = 0; i < 3 * nCount; ++i) {
        if (!SameBits(oGeometry.m_pVertices[i], sMesh.vVertices[i]))
            return testing::AssertionFailure() << "position of vertex " << i / 3 << ": "
                                               << oGeometry.m_pVertices[i] << ", not " << sMesh.vVertices[i];
    }
    for (std::size_t i = 0; i < 2 * nCount; ++i) {
        if (!SameBits(oGeometry.m_pTexCoords[i], sMesh.vTexCoords[i]))
            return testing::AssertionFailure()
                   << "texture coordinate of vertex " << i / 2 << ": " << oGeometry.m_pTexCoords[i]
                   << ", not " << sMesh.vTexCoords[i];
    }
    return testing::AssertionSuccess();
}
