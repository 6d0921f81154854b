/// \file
/// What the passes share that draw a flat picture over the whole target.
#pragma once

#include "dewarp/gl/GPUObjFisheye.h"
#include "dewarp/gl/Programs.h"
#include "dewarp/records/SDewarpMatrices.h"
#include "dewarp/records/SDewarpParams.h"

class CFrameTextures;
class CTextures;

/// What every pass works with. The pieces belong to the dewarper.
struct SPassTools
{
    CPrograms& rPrograms;
    CTextures& rTextures;
    CFrameTextures& rFrame;
    CDriverWatch& rWatch;
    CCustomGPUGeometry& rGeometry;
};

/// A quad that covers the target, its matrices (all identity) and its parameters.
struct SFlatQuad
{
    SDewarpMatrices sMatrices;
    SDewarpParams sParams = SDewarpParams::Auxiliary();
    CCGPUObjFisheye oQuad;

    /// The viewport of the pass.
    void SetViewport(int nWidth, int nHeight);
    /// Clears the target and draws the quad with a program. False: the driver has no memory for it.
    bool Draw(SPassTools& rTools, SShaderProperties& rShader);
};
