/// \file
/// Making, filling and filtering textures.
#pragma once

#include "dewarp/gl/TextureUnits.h"
#include "dewarp/records/Enumerations.h"

class CDriverWatch;

/// Owns: no name; every texture belongs to the pass that had it made. Keeps the sizes last given to each
/// unit. Units: pixels. Thread: GL thread, context current. Fails: never; the watch is told of every object.
class CTextures
{
public:
    CTextures(CDriverWatch& rWatch, const EInterpolationType& rInterpolation)
        : m_rWatch(rWatch), m_rInterpolation(rInterpolation)
    {}
    CTextures(const CTextures&) = delete;
    CTextures& operator=(const CTextures&) = delete;

    /// (Re)creates a texture on a unit (GL_TEXTURE0 .. GL_TEXTURE15; others are ignored).
    void Generate(unsigned int& nTexture, unsigned int nUnit, unsigned int nFormat, int nWidth, int nHeight,
                  int nRowLength, const unsigned char* pPixels);
    void Update(unsigned int nTexture, unsigned int nFormat, int nWidth, int nHeight, int nRowLength,
                const unsigned char* pPixels);
    /// Sets the host's filter on the texture bound to the active unit.
    void SetInterpolation();
    /// The same for a plane of the frame: linear wherever its text asks for linear samples.
    void SetFrameInterpolation();
    /// Binds a texture on a unit, with the host's filter.
    void Bind(int nUnit, unsigned int nTexture);
    /// True when a texture is missing or the unit was last given another size.
    bool NeedsSize(unsigned int nTexture, int nUnit, int nWidth, int nHeight) const;
    /// An RGBA texture of a size, made anew only if there is none. True when it was.
    bool Prepare(unsigned int& nTexture, int nUnit, int nWidth, int nHeight);
    /// True when the driver can hold a texture of that size.
    bool Fits(int nWidth, int nHeight);
    int MaxSize();

    /// Deletes one texture and forgets its name.
    static void Delete(unsigned int& nTexture);
    /// Every texture was deleted, or its context is gone.
    void ForgetSizes();
    void ForgetDriver() { nMaxTextureSize = 0; }

    int anTextureUnitSize[RECORDED_UNITS][2] = {}; ///< width and height last given to Generate on each unit
    int nMaxTextureSize = 0;                       ///< of the driver in use; 0: not asked for yet
    ESampling eSampling = SAMPLING_BY_TYPE;        ///< stands above the type of interpolation
    bool bMinification = false;                    ///< the frame's texts average linear samples

private:
    bool IsLinear() const;
    static void SetFilter(bool bLinear);

    CDriverWatch& m_rWatch;
    const EInterpolationType& m_rInterpolation;
};

/// Attaches a texture to the framebuffer that is bound.
void AttachTexture(unsigned int nTexture);
