/// \file
/// Cuts a polygon into triangles.
#pragma once

#include "dewarp/records/SGRect.h"

#include <vector>

/// Ear clipping: n - 2 triangles for n points, none for fewer than 3. Every triangle's corners are corners of
/// the polygon.
///
/// A simple polygon, of either winding, is covered exactly. Whatever the polygon, every place that it winds
/// around at least once is covered: each cut splits the outline into a triangle and the rest, so the windings
/// of the triangles add up to that of the polygon. Where an outline crosses itself, the triangles may overlap
/// and may cover more.
///
/// Units: pixels, any int. Thread: any. Fails: never. The work is bounded: when so many steps of searching
/// did not suffice, the rest is cut without looking for ears, which covers at least as much. Shapes that were
/// tried, tangled ones among them, need less than half of the steps granted by default; 65,535 points then
/// take some tenths of a second, 5,000 a hundredth.
std::vector<SGTriangle> TriangulatePolygon(std::vector<SGPoint> vPoints, long long nMaxVisits);
std::vector<SGTriangle> TriangulatePolygon(std::vector<SGPoint> vPoints);
