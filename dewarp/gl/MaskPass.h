/// \file
/// Paints privacy masks into an image of the frame's size.
#pragma once

#include "dewarp/gl/FlatPass.h"

#include <vector>

/// Owns: the pair of textures that masks are painted in. Units: pixels of the frame. Thread: GL thread,
/// context current. Fails: with false; what was painted must not be shown then.
class CMaskPass
{
public:
    explicit CMaskPass(SPassTools& rTools) : m_rTools(rTools) {}
    CMaskPass(const CMaskPass&) = delete;
    CMaskPass& operator=(const CMaskPass&) = delete;

    /// Paints the list into texture A, over the clear colour: a mask's edge is mixed with black as the
    /// target's channels have it.
    bool Paint(const std::vector<SGPolygon>& vPolygons, int nWidth, int nHeight);
    void Free();
    void Forget();

    unsigned int nMaskTextureA = 0; ///< unit 10
    unsigned int nMaskTextureB = 0; ///< unit 11
    SShaderProperties sMaskShader;
    SDewarpMatrices sMatrices; ///< all identity
    SDewarpParams sParams = SDewarpParams::Auxiliary();

private:
    bool PrepareProgram(int nWidth, int nHeight);
    void PrepareTextures(int nWidth, int nHeight);
    bool PaintPolygon(const SGPolygon& rPolygon);

    SPassTools& m_rTools;
};
