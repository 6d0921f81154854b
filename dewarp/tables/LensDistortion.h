/// \file
/// Measured projection of the supported lenses: field angle from the optical axis in degrees (domain) against
/// image height on the sensor (range). Both rise strictly from 0; only ratios of heights are ever used, so
/// their length unit does not matter.
#pragma once

#include "platform/Export.h"

namespace LENS_DISTORTION
{
extern LUMOR_API const float fDomainForDSL215[86];
extern LUMOR_API const float fRangeForDSL215[86];
extern LUMOR_API const float fDomainForDSL418[101];
extern LUMOR_API const float fRangeForDSL418[101];
extern LUMOR_API const float fDomainForDSL419[91];
extern LUMOR_API const float fRangeForDSL419[91];
extern LUMOR_API const float fDomainForDSL239[101];
extern LUMOR_API const float fRangeForDSL239[101];
} // namespace LENS_DISTORTION
