/// \file
/// From a frame and the picture's settings to what cells are drawn with.
#pragma once

#include "dewarp/control/SPictureSettings.h"
#include "dewarp/cpu/CellKernel.h"
#include "dewarp/records/ColourMatrix.h"
#include "dewarp/records/SFramePlanes.h"
#include "dewarp/records/SQPInfo.h"

/// Colours that take more than the integer arithmetic of the cells: gains, quantisers shown as colour, levels
/// that stretch the range to more than twice. Computed pixel by pixel in single precision, channels 0 to 1.
/// Owns: nothing; quantisers must outlive it. Thread: any. Fails: never.
struct SFineColours
{
    bool bUsed = false;
    bool bGain = false;
    float fLumaGain = 1.0f;
    float fChromaGain = 1.0f;
    bool bLimited = false;
    float fLumaMin = 0.0f;
    float fLumaSpan = 1.0f;
    float fChromaSpan = 1.0f;
    const SColourMatrix* pMatrix = nullptr;
    const SQPInfo* pQP = nullptr; ///< null: not shown
};

/// Everything that a frame's cells are drawn with.
struct SFrameColours
{
    SCellJob sJob;
    SFineColours sFine;
    int nYUVSpace = YUV_SPACE_BT601; ///< in force
    int nYUVRange = YUV_RANGE_FULL;
};

/// Planes, channels and factors of a frame. The frame must be without fault (FindFrameFault).
SFrameColours PrepareColours(const SFramePlanes& rFrame, const SPictureSettings& rSettings, bool bLinear,
                             const SQPInfo* pQP);

/// One pixel with all that SFineColours asks for: R, G, B, A from the lowest byte up.
std::uint32_t FinePixel(const SFrameColours& rColours, const SGridPoint& rPoint);
/// The same, left in the frame's own YUV: Y, U, V from the lowest byte up.
std::uint32_t FineYUV(const SFrameColours& rColours, const SGridPoint& rPoint);
/// Both from samples that were taken already; packed frames from the bytes of a pixel.
std::uint32_t FinePixel(const SFrameColours& rColours, const SGridPoint& rPoint, const SYUVSample& rSample);
std::uint32_t FineYUV(const SFrameColours& rColours, const SGridPoint& rPoint, const SYUVSample& rSample);
std::uint32_t FinePacked(const SFrameColours& rColours, std::uint32_t nRGBA);
