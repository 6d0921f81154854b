/// \file
/// Rows of cells that are finished beside the target.
#pragma once

#include "dewarp/cpu/FrameDraw.h"

#include <atomic>
#include <cstdint>
#include <vector>

class CRunLayer;

/// Most threads that draw one frame.
inline constexpr int MOST_DRAWING_THREADS = 64;

/// Room for one row of cells a thread. Owns: its memory; it grows, never shrinks. Thread: MakeRoom any,
/// serialised by the host; Take and GiveBack on as many threads at once as there is room for. Fails: MakeRoom
/// throws for lack of memory.
class CScratchRows
{
public:
    void MakeRoom(int nTargetWidth, int nThreads);
    /// Rows that nobody else has, as a target of that format.
    SFrameTarget Take(EImageFormat eFormat, int& nRoom);
    void GiveBack(int nRoom) { m_nTaken.fetch_and(~(std::uint64_t{1} << nRoom), std::memory_order_release); }

private:
    std::vector<unsigned char> m_vBytes;
    std::size_t m_nRoomBytes = 0;
    int m_nWidth = 0;
    std::atomic<std::uint64_t> m_nTaken{0};
};

/// Draws a row of cells with a layer over it, ends it at the rim and puts it into the target when it is
/// finished: whoever looks at the target meanwhile never sees what a mask is to hide. Thread: as CFrameDraw.
void DrawCoveredRow(const SFrameJob& rJob, const SPartGrid& rGrid, int nRow, const CRunLayer& rLayer,
                    const CRunLayer& rRim, CScratchRows& rScratch);
