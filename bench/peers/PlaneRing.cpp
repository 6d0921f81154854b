#include "bench/peers/PlaneRing.h"

#include <cstring>
#include <memory>

// What the peers' own allocators give.
static const std::size_t ALIGNMENT = 64;

unsigned char* CPlaneRing::NewPlane(std::size_t nBytes)
{
    std::vector<unsigned char>& rMemory = m_vMemory.emplace_back(nBytes + ALIGNMENT);
    void* pAligned = rMemory.data();
    std::size_t nRoom = rMemory.size();
    return static_cast<unsigned char*>(std::align(ALIGNMENT, nBytes, pAligned, nRoom));
}

void CPlaneRing::Add(unsigned char* pPlane, std::size_t nBytes)
{
    if (!m_bCopies) {
        m_vSets[0].push_back(pPlane);
        return;
    }
    for (std::vector<unsigned char*>& rSet : m_vSets) {
        rSet.push_back(NewPlane(nBytes));
        std::memcpy(rSet.back(), pPlane, nBytes);
    }
}

void CPlaneRing::AddEmpty(std::size_t nBytes)
{
    for (std::vector<unsigned char*>& rSet : m_vSets)
        rSet.push_back(NewPlane(nBytes));
}
