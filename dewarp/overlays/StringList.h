/// \file
/// The text strings in force.
#pragma once

#include "dewarp/overlays/SGPUString.h"
#include "platform/Export.h"

#include <vector>

class CReport;

/// Glyphs above this height draw nothing: no driver has viewports for them.
inline constexpr int MOST_TEXT_HEIGHT = 8192;

/// Thread: any, serialised by the host. Fails: Set may throw for lack of memory, and leaves the list as it is
/// then.
struct LUMOR_INTERNAL_API SStringList
{
    std::vector<SGPUString> vStrings;
    bool bStringsChanged = false;

    /// Takes a list element by element: a string that was there keeps the rectangle it was drawn in. What can
    /// never be drawn is named in the log.
    void Set(const std::vector<SGPUString>& vNew, CReport& rReport);
    /// What was drawn is gone: all is to be drawn again.
    void Redraw() { bStringsChanged = bStringsChanged || !vStrings.empty(); }
};
