// The host's frames: recorded on any thread, brought into textures on the GL thread.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "dewarp/records/ColourMatrix.h"
#include "dewarp/records/FrameCheck.h"
#include "platform/MemoryGuard.h"

#include <GLES3/gl31.h>

bool CCustomGPUDewarper::SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                                    unsigned long long nTimestamp)
{
    CLockScope oScope(*this);
    if (pImage == nullptr) {
        pRooms->oReport.Refuse("%s: no image", "SetTexture");
        return false;
    }
    // The only step that can fail comes first: planes and size of a frame belong together.
    if (pQP != nullptr && !GuardMemory("SetTexture", pRooms->oReport, false, [&] {
            *pQPInfo = *pQP;
            return true;
        }))
        return false;
    nLastSetTimestamp = nTimestamp;
    pInputPlanes[0] = pImage->pPlane0;
    pInputPlanes[1] = pImage->pPlane1;
    pInputPlanes[2] = pImage->pPlane2;
    const SFramePlanes sPlanes = PlanesOf(*pImage);
    pRooms->oInput.anChromaStrides[0] = sPlanes.anStrides[1];
    pRooms->oInput.anChromaStrides[1] = sPlanes.anStrides[2];
    sMainShader.bGainRequested = bGain;
    const bool bOtherPicture = pImage->nWidth != pParams->nImageWidth ||
                               pImage->nHeight != pParams->nImageHeight || pImage->nFormat != nImageFormat;
    if (bOtherPicture) {
        bTexturesNeedInit = true;
        sMainShader.bForceReload = true;
        bResetObjects = true;
    }
    pRooms->oControl.SetFrame(pImage->nWidth, pImage->nHeight, pImage->nStride, bOtherPicture);
    nImageFormat = pImage->nFormat;
    // The text follows the frame's own space and range where the host left the choice to the frame.
    const SYUV2RGBConversionParams& rWanted = sMainShader.sYUV2RGBRequested;
    if (EffectiveYUVSpace(rWanted.eSpace, pImage->eYUVSpace) !=
            EffectiveYUVSpace(rWanted.eSpace, nImageYUVSpace) ||
        EffectiveYUVRange(rWanted.eRange, pImage->eYUVRange) !=
            EffectiveYUVRange(rWanted.eRange, nImageYUVRange))
        sMainShader.bForceReload = true;
    nImageYUVSpace = pImage->eYUVSpace;
    nImageYUVRange = pImage->eYUVRange;
    bTextureUpload = true;
    DrawRequired();
    return true;
}

bool CCustomGPUDewarper::SetFrame(const SFramePlanes& rFrame, unsigned long long nTimestamp)
{
    CLockScope oScope(*this);
    SRooms& r = *pRooms;
    const std::string strFault = GuardMemory("SetFrame", r.oReport, std::string("out of memory"),
                                             [&] { return FindFrameFault(rFrame); });
    if (!strFault.empty()) {
        r.oReport.Error("%s: %s", "SetFrame", strFault.c_str());
        return false;
    }
    SImageProperties sImage = ImageOf(rFrame);
    if (!SetTexture(&sImage, rFrame.bGain, nullptr, nTimestamp))
        return false;
    r.oInput.anChromaStrides[0] = rFrame.anStrides[1];
    r.oInput.anChromaStrides[1] = rFrame.anStrides[2];
    return true;
}

bool CCustomGPUDewarper::InitializeTextures()
{
    pRooms->oInput.Initialize();
    return true;
}

void CCustomGPUDewarper::UploadTexture()
{
    SRooms& r = *pRooms;
    if (bTextureUpload) {
        if (bTexturesNeedInit)
            InitializeTextures();
        if (OSDependentUploadTexture()) {
            r.oInput.bFrameInTextures = true;
            bTextureUpload = false;
        } else {
            if (r.oInput.TexturesMissing())
                InitializeTextures();
            const EUploadResult eResult = r.oInput.Upload();
            SayIfTooLarge();
            if (eResult == UPLOAD_NOT_WHOLE && !r.oWatch.LacksMemory())
                r.oReport.Standing(
                    FAULT_FRAME_PLANES,
                    "%s: the frame is not whole: a plane is missing, its rows are too short, or "
                    "format %d has none",
                    "DrawGLScene", nImageFormat);
        }
        glActiveTexture(GL_TEXTURE0);
    }
    UploadOverlayTexture();
}

void CCustomGPUDewarper::SayIfTooLarge()
{
    SRooms& r = *pRooms;
    if (!r.oInput.Fits())
        r.oReport.Standing(FAULT_FRAME_SIZE,
                           "%s: frames of %d x %d are larger than this driver's textures (%d)", "DrawGLScene",
                           pParams->nImageWidth, pParams->nImageHeight, r.oTextures.MaxSize());
}

void CCustomGPUDewarper::BindTextures()
{
    if (!OSDependentBindTextures())
        pRooms->oInput.Bind();
    BindOverlayTextures();
}

void CCustomGPUDewarper::UnbindTextures()
{
    if (!OSDependentUnBindTextures())
        pRooms->oInput.Unbind();
    UnbindOverlayTextures();
}

void CCustomGPUDewarper::GenerateTexture(unsigned int& nTexture, unsigned int nUnit, unsigned int nFormat,
                                         int nWidth, int nHeight, int nRowLength, unsigned char* pPixels)
{
    pRooms->oTextures.Generate(nTexture, nUnit, nFormat, nWidth, nHeight, nRowLength, pPixels);
}

void CCustomGPUDewarper::UpdateTexture(unsigned int& nTexture, unsigned int /*nUnit*/, unsigned int nFormat,
                                       int nWidth, int nHeight, int nRowLength, unsigned char* pPixels)
{
    pRooms->oTextures.Update(nTexture, nFormat, nWidth, nHeight, nRowLength, pPixels);
}

void CCustomGPUDewarper::SetInterpolation()
{
    pRooms->oTextures.SetInterpolation();
}
