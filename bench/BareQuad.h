/// \file
/// The least a frame can cost: one full-screen quad with the dewarper's fragment shader and uploads.
#pragma once

#include "dewarp/records/SImageProperties.h"

#include <string>

/// Lives in the context that is current when it is made. GL thread.
class CBareQuad
{
public:
    /// \param strFragmentText as the driver got it.
    CBareQuad(const SImageProperties& rImage, const std::string& strFragmentText, int nWidth, int nHeight);
    ~CBareQuad();
    CBareQuad(const CBareQuad&) = delete;
    CBareQuad& operator=(const CBareQuad&) = delete;

    void Upload();
    void Draw();

private:
    struct SPlane
    {
        unsigned int nTexture = 0;
        unsigned int nFormat = 0; ///< of the texture
        unsigned int nUpload = 0; ///< of the pixels
        int nWidth = 0;
        int nHeight = 0;
        int nRowLength = 0;
        const unsigned char* pPixels = nullptr;
        const char* pSampler = nullptr;
    };

    void ListPlanes(const SImageProperties& rImage);
    void CreateTextures();
    void CreateProgram(const std::string& strFragmentText);
    void CreateTarget();

    SPlane m_aPlanes[3];
    int m_nPlanes = 0;
    int m_nWidth;
    int m_nHeight;
    unsigned int m_nProgram = 0;
    unsigned int m_anBuffers[2] = {};
    unsigned int m_nFrameBuffer = 0;
    unsigned int m_nColorBuffer = 0;
};
