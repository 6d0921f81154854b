/// \file
/// Pictures into graphic buffers and out of them.
#pragma once

#include "Frame.h"

#include <ui/GraphicBuffer.h>

#include <vector>

/// Copies a frame into an NV12 buffer of its size. YUV planes are taken as they are; colours are converted to
/// the given space and range. Fails: throws CToolError when the buffer cannot be locked.
void FillBuffer(android::GraphicBuffer& rBuffer, const SFrame& sFrame, EYUVSpace eSpace, EYUVRange eRange);

/// What an NV12 buffer shows, as rows of B, G, R, A bytes without padding. Fails as above.
std::vector<unsigned char> ReadBuffer(android::GraphicBuffer& rBuffer, EYUVSpace eSpace, EYUVRange eRange);
