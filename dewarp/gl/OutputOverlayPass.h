/// \file
/// Lays the output overlay over the finished view.
#pragma once

#include "dewarp/gl/FlatPass.h"

/// Owns: its quad. Thread: GL thread, context current. Fails: with false when its program cannot be made or
/// memory lacks.
class COutputOverlayPass
{
public:
    explicit COutputOverlayPass(SPassTools& rTools) : m_rTools(rTools) {}
    COutputOverlayPass(const COutputOverlayPass&) = delete;
    COutputOverlayPass& operator=(const COutputOverlayPass&) = delete;

    /// Makes the program ready. The target is bound after this.
    bool Begin(int nWidth, int nHeight);
    /// Draws view and overlay into the target that is bound.
    bool Draw(unsigned int nView, unsigned int nOverlay);

    SShaderProperties sOutputOverlayShader;
    SFlatQuad sQuad;

private:
    SPassTools& m_rTools;
};
