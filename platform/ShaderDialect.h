/// \file
/// How shader text is adapted to the driver: the host's say in it.
#pragma once

#include "platform/Export.h"

/// Switches the adaption of precision (bPreferHighp) off or on again; it is on at first. Drivers known to
/// gain from it: Mesa's llvmpipe, which emulates half precision. The picture may differ by one step of 255.
/// Thread: any. Counts from the next QueryDriverTraits on, that is for contexts started later.
/// Fails: never.
LUMOR_API void SetShaderPrecisionAdaption(bool bEnable);
