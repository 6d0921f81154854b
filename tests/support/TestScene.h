/// \file
/// Scenes around a camera, known exactly in every direction, and the fisheye frames a lens makes of them.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "tests/support/TestFrame.h"

#include <array>
#include <functional>
#include <vector>

/// A direction or a point. In the world: x east, y north, z up. In the camera: x right in its picture, y up
/// in its picture, z along its optical axis.
using FVector = std::array<double, 3>;

double Dot(const FVector& aA, const FVector& aB);
FVector Normalised(const FVector& aVector);

/// What is seen in a direction of the world.
using FScene = std::function<FColour(const FVector& aDirection)>;

/// A box-shaped room with the camera in its middle. North wall red, east green, south blue, west yellow,
/// floor brown, ceiling light; walls get brighter towards the ceiling. Dark grid lines every metre. White
/// capital letters N, E, S, W on the walls (above and below the horizon), F on the floor, R on the ceiling;
/// their feet point down, those of F and R south.
FColour RoomColour(const FVector& aDirection);

/// A straight line of space, seen from the camera: all directions at right angles to a normal.
struct SStraightLine
{
    FVector aNormal;
    FColour aColour;
    double fHalfWidth = 0.008; ///< radians
};
/// Lines on black.
FScene LinesScene(std::vector<SStraightLine> vLines);

/// The camera's axes in the world: a ceiling camera looks down with north on top of its picture, a floor
/// camera looks up with north on top, a wall camera looks north. The inclination lifts a wall camera's view.
FVector CameraToWorld(EMountType eMount, const FVector& aRay, double fInclination = 0.0);
FVector WorldToCamera(EMountType eMount, const FVector& aDirection, double fInclination = 0.0);

/// The frame that a camera with this lens makes of a scene; nSamples x nSamples a pixel. Black beyond 92
/// degrees.
STestImage RenderFisheye(const FScene& fScene, int nLensType, int nWidth, int nHeight, EMountType eMount,
                         double fInclination = 0.0, int nSamples = 2);

/// A frame whose texels tell their own place: red x & 255, green y & 255, blue (x >> 8) | (y >> 8) << 4.
STestImage TexelFrame(int nWidth, int nHeight);
