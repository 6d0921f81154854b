/// \file
/// Tells whether a frame that a host hands over can be drawn, and whether it can be drawn into a target.
#pragma once

#include "dewarp/records/SFramePlanes.h"
#include "dewarp/records/SFrameTarget.h"
#include "dewarp/records/SImageProperties.h"
#include "dewarp/records/SQPInfo.h"
#include "platform/Export.h"

#include <string>

/// What is wrong with a frame of CPU planes, in words; empty when nothing is. Thread: any.
LUMOR_INTERNAL_API std::string FindFrameFault(const SImageProperties* pImage, const SQPInfo* pQP);

/// The same of a frame whose planes have strides of their own.
LUMOR_INTERNAL_API std::string FindFrameFault(const SFramePlanes& rFrame);

/// A frame by its first plane's stride, and with the strides that follow from it. Thread: any. Fails: never.
LUMOR_INTERNAL_API SImageProperties ImageOf(const SFramePlanes& rFrame);
LUMOR_INTERNAL_API SFramePlanes PlanesOf(const SImageProperties& rImage);

/// What is wrong with a target for pictures of a size, in words; empty when nothing is. Thread: any.
LUMOR_INTERNAL_API std::string FindTargetFault(const SFrameTarget& rTarget, int nWidth, int nHeight);
