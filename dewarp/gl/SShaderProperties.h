/// \file
/// One shader program: its texts, its GL names, and the parameters the texts were written from.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SYUV2RGBConversionParams.h"
#include "platform/Export.h"

#include <string>

/// Every parameter that shapes the text is held twice: as requested by the host and as in force in the
/// current program. A difference means that the program must be rebuilt.
struct LUMOR_API SShaderProperties
{
    std::string strVertexShader;
    std::string strFragmentShader;

    // GL names; 0 when there is none. They must be freed under their context, before the record dies.
    unsigned int nVertexShader = 0;
    unsigned int nFragmentShader = 0;
    unsigned int nProgram = 0;
    /// The last build failed: the names are still on record but deleted, and may be another object's by now.
    bool bNamesDeleted = false;
    /// The names belong to the programs that are kept (Programs.h): to be forgotten, not deleted.
    bool bShared = false;

    // Attribute and uniform locations; -1 when the program has none of that name.
    int nPositionLocation = -1;   ///< "vPosition"
    int nScreenSizeLocation = -1; ///< "u_ScreenSize"
    int nColorLocation = -1;      ///< "u_Color" or "u_TextColor"
    int nTexCoordLocation = -1;   ///< "a_TexCoordinate"
    int nMVPMatrixLocation = -1;  ///< "uMVPMatrix"
    int nMultLocation = -1;       ///< "u_Mult"
    int nPosYMultLocation = -1;   ///< "u_PosYMult"
    int nSampler0Location = -1;
    int nSampler1Location = -1;

    /// Discard fragments whose texture row lies outside 0..1.
    bool bTexCoordClip = false;
    bool bTexCoordClipRequested = false;
    /// Framebuffer x minimum and maximum, y minimum and maximum, in pixels; -1 in a pair: no limit there.
    int anClipPlanes[4] = {-1, -1, -1, -1};
    int anClipPlanesRequested[4] = {-1, -1, -1, -1};
    /// Framebuffer depth below which fragments are discarded; 0: no limit.
    float fClipValue = 0.0f;
    float fClipValueRequested = 0.0f;
    /// An input overlay is present (requested) / is blended in by the text.
    bool bInputOverlay = false;
    bool bInputOverlayInShader = false;
    /// Multiply luma and chroma by the gains.
    bool bGainRequested = false;
    bool bGain = false;
    float fLumaGainRequested = 1.1765f;
    float fChromaGainRequested = 2.0f;
    float fLumaGain = 1.1765f;
    float fChromaGain = 2.0f;
    SYUV2RGBConversionParams sYUV2RGB;
    SYUV2RGBConversionParams sYUV2RGBRequested;
    bool bFlipHorizontalRequested = false;
    bool bFlipHorizontal = false;
    bool bFlipVerticalRequested = false;
    bool bFlipVertical = false;
    /// How the frame is sampled, and whether pixels are averaged over what they cover.
    ESampling eSamplingRequested = SAMPLING_BY_TYPE;
    ESampling eSampling = SAMPLING_BY_TYPE;
    bool bMinificationRequested = false;
    bool bMinification = false;
    bool bQPTextures = false; ///< the quantiser and macroblock-type textures are in use
    /// Centre and inverse radii of the rim in texture coordinates; 0 without one.
    float afRim[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    float afRimRequested[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    bool bForceReload = false; ///< rebuild at the next check whatever the pairs say

    /// Deletes the program, then the vertex and the fragment shader, if they are this record's own, and
    /// zeroes their names. Texts and locations stay. GL thread, context current.
    void Free();

    /// True when any requested value differs from the one in force. Floats are compared exactly.
    bool ShouldReloadShaders() const;

    /// True when there is a program to draw with.
    bool IsUsable() const { return nProgram != 0 && !bNamesDeleted; }
};
