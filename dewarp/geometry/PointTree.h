/// \file
/// Answers which point of a set lies in a triangle, while points are taken out one by one.
#pragma once

#include "dewarp/records/SGRect.h"

#include <cstddef>
#include <vector>

/// Twice the signed area of the triangle a, b, c; exact for every int. Positive when a, b, c turn from the x
/// axis towards the y axis. Targets have 64-bit registers, so a product of two 33-bit differences is cheap.
__extension__ typedef __int128 TArea;
TArea DoubleArea(const SGPoint& sA, const SGPoint& sB, const SGPoint& sC);

/// A balanced two-dimensional tree over the corners of a polygon.
/// Units: pixels, any int. Owns: its nodes; it refers to the points, which must outlive it.
/// Thread: any, serialised by the host. Fails: never.
class CPointTree
{
public:
    explicit CPointTree(const std::vector<SGPoint>& vPoints);

    /// Takes a point out. Every point at most once.
    void Remove(std::size_t nPoint);
    /// Looks for a remaining point inside the triangle or on its edge that is at none of its corners, those
    /// near sB first. The triangle must not have a negative area. False when there is none.
    bool FindInside(const SGPoint& sA, const SGPoint& sB, const SGPoint& sC, std::size_t& nPoint);
    /// How many nodes were looked at so far: the work done, the same on every machine.
    long long GetVisits() const { return m_nVisits; }

private:
    struct SNode
    {
        SGPoint sMin; ///< bounding box of the points the node began with
        SGPoint sMax;
        std::size_t nFirst = 0; ///< range in m_vOrder
        std::size_t nCount = 0;
        std::size_t nLive = 0; ///< points not yet taken out
    };
    struct SQuery;

    void Build(std::size_t nNode, std::size_t nFirst, std::size_t nCount, int nDepth);
    bool FindInLeaf(const SNode& sNode, const SQuery& sQuery, std::size_t& nPoint) const;

    const std::vector<SGPoint>& m_vPoints;
    int m_nDepth = 0;                  ///< levels below the root; all leaves are on the last one
    std::vector<SNode> m_vNodes;       ///< children of node i: 2i + 1, 2i + 2
    std::vector<std::size_t> m_vOrder; ///< point numbers, leaf after leaf
    std::vector<std::size_t> m_vLeaf;  ///< leaf of each point
    std::vector<bool> m_vLive;
    long long m_nVisits = 0;
};
