/// \file
/// A mesh as the processor draws it: every vertex once, and where the mesh ends.
#pragma once

#include <cstdint>
#include <vector>

class CCustomGPUGeometry;

/// Vertices that agree in position and texture coordinate are one. A border is an edge that belongs to one
/// triangle only: the mesh ends there, or goes on with other texture coordinates.
/// Owns: its arrays; they grow, never shrink. Thread: any, serialised by the host. Fails: Build throws for
/// lack of memory; what there is then is no mesh until another one is built.
class CMeshIndex
{
public:
    /// Takes the geometry's mesh: a list of triangles, or a fan round the first vertex.
    void Build(const CCustomGPUGeometry& rGeometry, bool bFan);

    std::vector<float> vX; ///< positions
    std::vector<float> vY;
    std::vector<float> vZ;
    std::vector<float> vU; ///< texture coordinates
    std::vector<float> vV;
    std::vector<std::uint32_t> vTriangles; ///< three vertices each, in drawing order
    std::vector<std::uint32_t> vBorders;   ///< two vertices each

private:
    bool HasSameTopology(const CCustomGPUGeometry& rGeometry, int nVertices) const;
    void TakeValues(const CCustomGPUGeometry& rGeometry);
    void MergeVertices(const CCustomGPUGeometry& rGeometry, int nVertices);
    void ListTriangles(bool bFan);
    void FindBorders();

    std::vector<std::uint32_t> m_vMerged; ///< for each vertex of the list, the one it became
    std::vector<std::uint32_t> m_vFirst;  ///< for each merged vertex, the first of the list
    std::vector<std::uint32_t> m_vTable;  ///< scratch: hash table
    std::vector<std::uint64_t> m_vEdges;  ///< scratch
    bool m_bFan = false;
    bool m_bWhole = false; ///< the last one was built to its end
};
