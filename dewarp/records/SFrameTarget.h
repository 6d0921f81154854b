/// \file
/// Where a drawn picture is written.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "platform/Export.h"

/// Where a frame is drawn in the host's memory. Packed formats use the first plane; IMAGE_FORMAT_NV12 the
/// first two (luma, then U and V in turns); IMAGE_FORMAT_YUV420P all three (Y, U, V). Chroma planes have half
/// the columns and rows, rounded up. Units: bytes from one row to the next. Owns: nothing.
struct LUMOR_API SFrameTarget
{
    unsigned char* apPlanes[3] = {nullptr, nullptr, nullptr};
    int anStrides[3] = {0, 0, 0};
    EImageFormat eFormat = IMAGE_FORMAT_BGRA32;
};
