/// \file
/// What the targets hand to a dewarper: frames in memory of exactly their size, and how a frame is drawn.
#pragma once

#include "FuzzBytes.h"

#include "dewarp/Dewarper.h"
#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"

#include <memory>

/// Bytes a pixel of the first plane; 1 for formats that there are not.
int FramePixelBytes(int nFormat);

/// The bytes that the planes of a frame take up, as its description tells: whole rows but for the last one,
/// which ends with its last pixel. 0: the frame has no such plane.
std::size_t PlaneBytes(const SImageProperties& rImage, int nPlane);

/// One frame. Its planes end where the frame ends, so that the address sanitizer sees what is read behind.
class CFuzzFrame
{
public:
    /// Gives every plane that the format has its memory; more than nMostBytes in all: no planes at all.
    void Allocate(std::size_t nMostBytes);

    SImageProperties sImage;

private:
    std::unique_ptr<unsigned char[]> m_apPlanes[3];
};

/// A frame that any dewarper draws: 2 to 41 pixels each way, every format, space and range.
void MakeGoodFrame(CFuzzBytes& rBytes, CFuzzFrame& rFrame);

/// Macroblock values, some of them of no possible size, for arrays of the size they tell.
std::unique_ptr<SQPInfo> MakeQPInfo(CFuzzBytes& rBytes);

/// Draws and looks for GL errors. Wanted: the frame must be drawn. Reads the picture back and looks at its
/// size when it was drawn, and returns true.
bool DrawAndCheck(CCustomGPUDewarperOffscreen& rDewarper, bool bExchange, bool bWanted);
bool DrawAndCheck(CDewarper& rDewarper, bool bExchange, bool bWanted);
