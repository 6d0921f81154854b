/// \file
/// A set of small integers that answers "which member comes next".
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Members are 0 to nSize - 1. Insert and Remove take constant time; NextFrom looks at one word for every 64
/// members at most once in 64 of those.
/// Owns: its words. Thread: any, serialised by the host. Fails: never, as long as members are in range.
class CIndexSet
{
public:
    explicit CIndexSet(std::size_t nSize) : m_vWords(nSize / 64 + 1, 0), m_vSummary(nSize / 4096 + 1, 0) {}

    void Insert(std::size_t nMember);
    void Remove(std::size_t nMember);
    /// The smallest member not below nFirst; if there is none, the smallest of all. False when empty.
    bool NextFrom(std::size_t nFirst, std::size_t& nMember) const;

private:
    bool NextNotBelow(std::size_t nFirst, std::size_t& nMember) const;

    std::vector<std::uint64_t> m_vWords;   ///< one bit a member
    std::vector<std::uint64_t> m_vSummary; ///< one bit a word that is not zero
};
