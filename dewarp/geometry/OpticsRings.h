/// \file
/// Where the rings of a virtual camera's mesh lie.
#pragma once

#include <vector>

class CRadialCurve;

/// Angles off the axis from 0 to fLast, radians, one of them the lens's edge: near enough to each other that
/// straight lines between them follow the lens. Thread: any. Fails: throws for lack of memory.
std::vector<double> PlaceRings(const CRadialCurve& rCurve, double fLast);
