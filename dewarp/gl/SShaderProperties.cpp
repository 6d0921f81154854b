#include "dewarp/gl/SShaderProperties.h"

#include <GLES3/gl31.h>

void SShaderProperties::Free()
{
    if (bNamesDeleted || bShared)
        nProgram = nVertexShader = nFragmentShader = 0;
    bNamesDeleted = false;
    bShared = false;
    if (nProgram != 0) {
        glDeleteProgram(nProgram);
        nProgram = 0;
    }
    if (nVertexShader != 0) {
        glDeleteShader(nVertexShader);
        nVertexShader = 0;
    }
    if (nFragmentShader != 0) {
        glDeleteShader(nFragmentShader);
        nFragmentShader = 0;
    }
}

bool SShaderProperties::ShouldReloadShaders() const
{
    if (bForceReload || bTexCoordClip != bTexCoordClipRequested)
        return true;
    for (int i = 0; i < 4; ++i) {
        if (anClipPlanes[i] != anClipPlanesRequested[i] || afRim[i] != afRimRequested[i])
            return true;
    }
    return bGain != bGainRequested || fLumaGain != fLumaGainRequested ||
           fChromaGain != fChromaGainRequested || !(sYUV2RGB == sYUV2RGBRequested) ||
           fClipValue != fClipValueRequested || bInputOverlayInShader != bInputOverlay ||
           eSampling != eSamplingRequested || bMinification != bMinificationRequested ||
           bFlipHorizontal != bFlipHorizontalRequested || bFlipVertical != bFlipVerticalRequested;
}
