/// \file
/// The host's frame in textures: planes, their layout, their upload.
#pragma once

#include "dewarp/gl/PlaneUpload.h"
#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SQPInfo.h"

#include <vector>

class CDriverWatch;
class CPrograms;
class CTextures;

/// How a frame that was handed over fared.
enum EUploadResult : int
{
    UPLOAD_DONE = 0,
    UPLOAD_NOT_WHOLE, ///< a plane, a texture or an unnamed format's textures are missing
    UPLOAD_TOO_LARGE, ///< the driver has no texture of that size
    UPLOAD_NO_MEMORY, ///< the driver has no memory for it
};

/// Owns: seven textures, and a copy of planes in forms that drivers take. The planes are the host's.
/// Units: pixels, bytes. Thread: GL thread, context current. Fails: by results.
class CInputTextures
{
public:
    CInputTextures(CTextures& rTextures, CPrograms& rPrograms, CDriverWatch& rWatch,
                   const SDewarpParams& rParams, const bool& rShowQP)
        : m_rTextures(rTextures), m_rPrograms(rPrograms), m_rWatch(rWatch), m_rParams(rParams),
          m_rShowQP(rShowQP)
    {}
    CInputTextures(const CInputTextures&) = delete;
    CInputTextures& operator=(const CInputTextures&) = delete;

    /// Makes the textures of the frame's format and fills them when planes wait to be uploaded.
    void Initialize();
    /// Brings the waiting planes into the textures.
    EUploadResult Upload();
    bool TexturesMissing();
    void Bind();
    void Unbind();
    /// Deletes the textures.
    void Free();
    /// Forgets their names: their context is gone.
    void Forget();
    /// What freed textures held comes back with the next frame.
    void ForgetContents();
    bool Fits();

    unsigned int nTextureY = 0;
    unsigned int nTextureUV = 0;
    unsigned int nTextureU = 0;
    unsigned int nTextureV = 0;
    unsigned int nTextureQP = 0;
    unsigned int nTextureMBType = 0;
    unsigned int nTextureRGB = 0;
    unsigned char* pInputPlanes[3] = {nullptr, nullptr, nullptr}; ///< the host's, of the last SetTexture
    int anChromaStrides[2] = {0, 0}; ///< bytes a row of the second and third plane
    bool bTexturesNeedInit = false;  ///< the input size or format changed
    bool bTextureUpload = false;     ///< a frame waits to be uploaded
    bool bFrameInTextures = false;   ///< the textures hold a whole frame
    int nImageFormat = 0;            ///< EImageFormat
    SQPInfo sQPInfo;

private:
    /// How red and blue of a BGR frame find their places.
    enum ERedBlueUpload
    {
        RED_BLUE_UNDECIDED, ///< no such frame was uploaded to this texture yet
        RED_BLUE_BY_FORMAT, ///< the driver takes the BGR format
        RED_BLUE_BY_SWIZZLE ///< the driver does not; the texture exchanges the channels when it is sampled
    };

    int ListPlanes(SPlaneUpload* pPlanes);
    void UploadPlane(const SPlaneUpload& rPlane, bool bCreate);
    void UploadRedBlue(const SPlaneUpload& rPlane, unsigned char* pPixels, int nRowLength);
    void UploadWidened(const SPlaneUpload& rPlane);
    void PreferRGBA(const SPlaneUpload& rPlane, unsigned char* pPixels, int nRowLength);
    unsigned char* RepackRows(const SPlaneUpload& rPlane, int& nRowBytes);
    bool ShowsQP() const;
    void CreateQPTextures();
    void UploadQPTextures();

    CTextures& m_rTextures;
    CPrograms& m_rPrograms;
    CDriverWatch& m_rWatch;
    const SDewarpParams& m_rParams;
    const bool& m_rShowQP; ///< quantisers and macroblock types are shown
    ERedBlueUpload m_eRedBlue = RED_BLUE_UNDECIDED;
    bool m_bUploadDecided = false;        ///< a plane went up as it is: the driver's likes were considered
    bool m_bWidenPixels = false;          ///< frames of 3 bytes a pixel go up as RGBA
    bool m_bBlankTypes = false;           ///< the macroblock types in their texture are all 0
    std::vector<unsigned char> m_vRepack; ///< a plane's rows in a form the driver takes
};
