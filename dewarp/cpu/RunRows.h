/// \file
/// Rows of runs: where a layer has values, and where these lie.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Pixels side by side. The values of a plain run are one for all.
struct SLayerRun
{
    int x = 0;
    int nPixels = 0;
    std::uint32_t nFirst = 0; ///< index of the first value
    bool bPlain = false;
};

/// Owns: its arrays; they grow, never shrink.
struct SRunRows
{
    struct SRow
    {
        int y;
        std::size_t nFirstRun;
    };
    std::vector<SRow> vRows; ///< rows that have runs, ascending
    std::vector<SLayerRun> vRuns;

    void Clear()
    {
        vRows.clear();
        vRuns.clear();
    }
    /// The run that ends before that pixel, if it is the last one.
    SLayerRun* LastBefore(int y, int x)
    {
        if (vRows.empty() || vRows.back().y != y || vRuns.back().x + vRuns.back().nPixels != x)
            return nullptr;
        return &vRuns.back();
    }
    /// Adds a run whose values come next.
    void Add(int y, int x, int nPixels, std::size_t nFirst, bool bPlain)
    {
        if (vRows.empty() || vRows.back().y != y)
            vRows.push_back({y, vRuns.size()});
        vRuns.push_back({x, nPixels, static_cast<std::uint32_t>(nFirst), bPlain});
    }
    /// Adds the rows of another one, whose values are appended behind nValues others.
    void Append(const SRunRows& rOther, std::size_t nValues)
    {
        const std::size_t nRuns = vRuns.size();
        for (const SRow& rRow : rOther.vRows)
            vRows.push_back({rRow.y, rRow.nFirstRun + nRuns});
        vRuns.insert(vRuns.end(), rOther.vRuns.begin(), rOther.vRuns.end());
        for (std::size_t i = nRuns; i < vRuns.size(); ++i)
            vRuns[i].nFirst += static_cast<std::uint32_t>(nValues);
    }
    /// Calls rUse(y, run) for the runs of some rows.
    template <class F>
    void Walk(int nFirstRow, int nEndRow, F&& rUse) const
    {
        auto it = std::lower_bound(vRows.begin(), vRows.end(), nFirstRow,
                                   [](const SRow& rRow, int y) { return rRow.y < y; });
        for (; it != vRows.end() && it->y < nEndRow; ++it) {
            const std::size_t nEnd = it + 1 != vRows.end() ? (it + 1)->nFirstRun : vRuns.size();
            for (std::size_t i = it->nFirstRun; i < nEnd; ++i)
                rUse(it->y, vRuns[i]);
        }
    }
    bool Has(int nFirstRow, int nEndRow) const
    {
        const auto it = std::lower_bound(vRows.begin(), vRows.end(), nFirstRow,
                                         [](const SRow& rRow, int y) { return rRow.y < y; });
        return it != vRows.end() && it->y < nEndRow;
    }
    std::size_t CountBytes() const
    {
        return vRows.capacity() * sizeof(SRow) + vRuns.capacity() * sizeof(SLayerRun);
    }
};
