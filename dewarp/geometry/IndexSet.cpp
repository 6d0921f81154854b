#include "dewarp/geometry/IndexSet.h"

#include <bit>

static std::uint64_t Bit(std::size_t nIndex)
{
    return std::uint64_t{1} << (nIndex % 64);
}

// First bit that is set at nFirst or above, in a row of words.
static bool NextBit(const std::vector<std::uint64_t>& vWords, std::size_t nFirst, std::size_t& nFound)
{
    std::size_t nWord = nFirst / 64;
    if (nWord >= vWords.size())
        return false;
    std::uint64_t nBits = vWords[nWord] & ~(Bit(nFirst) - 1);
    while (nBits == 0) {
        if (++nWord == vWords.size())
            return false;
        nBits = vWords[nWord];
    }
    nFound = nWord * 64 + static_cast<std::size_t>(std::countr_zero(nBits));
    return true;
}

void CIndexSet::Insert(std::size_t nMember)
{
    m_vWords[nMember / 64] |= Bit(nMember);
    m_vSummary[nMember / 4096] |= Bit(nMember / 64);
}

void CIndexSet::Remove(std::size_t nMember)
{
    m_vWords[nMember / 64] &= ~Bit(nMember);
    if (m_vWords[nMember / 64] == 0)
        m_vSummary[nMember / 4096] &= ~Bit(nMember / 64);
}

bool CIndexSet::NextNotBelow(std::size_t nFirst, std::size_t& nMember) const
{
    const std::size_t nWord = nFirst / 64;
    if (nWord >= m_vWords.size())
        return false;
    const std::uint64_t nBits = m_vWords[nWord] & ~(Bit(nFirst) - 1);
    if (nBits != 0) {
        nMember = nWord * 64 + static_cast<std::size_t>(std::countr_zero(nBits));
        return true;
    }
    std::size_t nNextWord = 0;
    if (!NextBit(m_vSummary, nWord + 1, nNextWord))
        return false;
    nMember = nNextWord * 64 + static_cast<std::size_t>(std::countr_zero(m_vWords[nNextWord]));
    return true;
}

bool CIndexSet::NextFrom(std::size_t nFirst, std::size_t& nMember) const
{
    return NextNotBelow(nFirst, nMember) || NextNotBelow(0, nMember);
}
