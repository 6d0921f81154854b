/// \file
/// The one list of views.
#pragma once

#include "dewarp/views/View.h"
#include "platform/Export.h"

#include <span>

/// What a view type stands for.
struct SViewEntry
{
    EViewType eType;
    const char* pName;      ///< as command lines and files write it
    const CView* pView;     ///< on a ceiling or floor
    const CView* pWallView; ///< on a wall
};

/// Every view that can be asked for, in the order in which people list them.
/// Thread: any. Owns: constants of the library.
LUMOR_INTERNAL_API std::span<const SViewEntry> ListViews();

/// The view of a type on a mount; types that are not listed show the fisheye.
/// Thread: any. Fails: never.
LUMOR_INTERNAL_API const CView& FindView(EViewType eType, EMountType eMount);
