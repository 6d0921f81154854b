/// \file
/// Planes that are used in turn, so that none lies in a cache when it is wanted again.
#pragma once

#include <cstddef>
#include <vector>

/// Sets of planes, one of them current. Units: bytes. Owns: its copies.
/// Thread: any, one at a time. Fails: never.
class CPlaneRing
{
public:
    /// bCopies: every set has planes of its own. Otherwise one set alone takes the planes that it is given.
    explicit CPlaneRing(int nSets, bool bCopies)
        : m_vSets(static_cast<std::size_t>(nSets)), m_bCopies(bCopies || nSets > 1)
    {}

    /// One more plane in every set.
    void Add(unsigned char* pPlane, std::size_t nBytes);
    /// One more plane of the ring's own in every set, touched once.
    void AddEmpty(std::size_t nBytes);

    /// Goes on to the next set.
    void Next() { m_nCurrent = (m_nCurrent + 1) % m_vSets.size(); }
    unsigned char* Plane(int nPlane) const { return m_vSets[m_nCurrent][static_cast<std::size_t>(nPlane)]; }
    int CountSets() const { return static_cast<int>(m_vSets.size()); }

private:
    unsigned char* NewPlane(std::size_t nBytes);

    std::vector<std::vector<unsigned char*>> m_vSets;
    std::vector<std::vector<unsigned char>> m_vMemory;
    bool m_bCopies;
    std::size_t m_nCurrent = 0;
};
