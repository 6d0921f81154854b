/// \file
/// One triangle asked where it lies and what it shows.
#pragma once

#include "dewarp/mapping/ScreenTriangle.h"
#include "dewarp/records/SPointD.h"

/// Moves a corner to the nearest of 4096 places in a pixel: triangles that meet do so exactly, whatever was
/// rounded on the way, and nothing lies between them.
SScreenVertex OnLattice(const SScreenVertex& rVertex);

/// Whether a triangle has a point of the target. Of two triangles that share an edge one has its points.
bool Covers(const SScreenTriangle& rTriangle, double x, double y);

/// Most places at which one triangle is found to show a position.
inline constexpr int MOST_PLACES = 4;
/// Places of the target at which a triangle's plane shows a position of the frame; returns their number.
/// There is one, unless the triangle shows no more than a line of the frame: then some along its edges.
int PlacesOf(const SScreenTriangle& rTriangle, const SPointD& rPosition, SPointD (&aPlaces)[MOST_PLACES]);
