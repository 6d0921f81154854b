/// \file
/// Measured projection of the supported lenses: field angle from the optical axis in degrees (domain) against
/// image height on the sensor (range). Both rise strictly from 0; only ratios of heights are ever used, so
/// their length unit does not matter.
#pragma once

namespace LENS_DISTORTION
{
extern const float fDomainForDSL215[86];
extern const float fRangeForDSL215[86];
extern const float fDomainForDSL418[101];
extern const float fRangeForDSL418[101];
extern const float fDomainForDSL419[91];
extern const float fRangeForDSL419[91];
extern const float fDomainForDSL239[101];
extern const float fRangeForDSL239[101];
} // namespace LENS_DISTORTION
