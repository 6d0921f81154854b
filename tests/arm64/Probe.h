/// \file
/// What one processor makes, to be compared with another's.
#pragma once

#include "ProbeFile.h"

void DumpMeshesAndTexts(CProbeFile& rFile);
/// Needs a driver. Fails: false when it has none, or a picture could not be drawn.
bool DrawPictures(CProbeFile& rFile);
