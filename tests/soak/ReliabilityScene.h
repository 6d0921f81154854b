/// \file
/// A dewarper with everything switched on, for runs that try to break it.
#pragma once

#include "dewarp/Dewarper.h"
#include "tests/support/TestDewarper.h"

#include <random>

/// For CCustomGPUDewarper and CDewarper. Overlays of both kinds, a mask (which takes the input overlay's
/// place) and a text.
void SwitchEverythingOn(CCustomGPUDewarper& oDewarper, int nTargetWidth, int nTargetHeight);
void SwitchEverythingOn(CDewarper& oDewarper, int nTargetWidth, int nTargetHeight);

/// For both as well. One control call, chosen by chance: views, mounts, lenses, moves, mouse, colours,
/// overlays, masks, texts; its numbers now and then are not finite or out of all limits. No call that needs
/// GL.
void RandomControlCall(CCustomGPUDewarper& oDewarper, std::mt19937& oRandom);
void RandomControlCall(CDewarper& oDewarper, std::mt19937& oRandom);

/// True where the environment asks for length (LUMOR_SOAK_SECONDS): sweeps leave nothing out then.
bool IsLongRun();
