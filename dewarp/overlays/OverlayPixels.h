/// \file
/// The pixels of an overlay image as they are taken from the host: which sizes count, and what is copied.
/// RGBA, 4 bytes a pixel, rows packed, top row first.
#pragma once

#include "dewarp/records/SGRect.h"
#include "platform/Export.h"

#include <cstddef>
#include <vector>

class CReport;

/// False, with a log line, for sizes outside 1 to 16384, as for frames and targets. Thread: any.
LUMOR_INTERNAL_API bool IsOverlaySizeUsable(int nWidth, int nHeight, CReport& rReport);

/// Where a pixel begins in an image of that width, in bytes; OverlayOffset(0, height, width) is the image's
/// size. Thread: any.
LUMOR_INTERNAL_API std::size_t OverlayOffset(int x, int y, int nWidth);

/// The parts of the rectangles that lie inside an image of that size; empty ones are left out. Thread: any.
/// Fails: may throw for lack of memory.
LUMOR_INTERNAL_API std::vector<SGRect> ClipToImage(const std::vector<SGRect>& vRects, int nWidth,
                                                   int nHeight);

/// Copies what the rectangles name, which lie inside both images. Thread: any, serialised by the host.
void CopyOverlayRects(unsigned char* pTo, const unsigned char* pFrom, int nWidth,
                      const std::vector<SGRect>& vRects);

/// Takes an image into the copy that is kept: all of it where pRects is null, otherwise what its rectangles
/// name, which lie inside. What they do not name stays, and is transparent where the copy is new.
/// Thread: any, serialised by the host. Fails: never; allocates nothing.
LUMOR_INTERNAL_API void TakeOverlayPixels(unsigned char* pTo, bool bNew, const unsigned char* pFrom,
                                          int nWidth, int nHeight, const std::vector<SGRect>* pRects);
