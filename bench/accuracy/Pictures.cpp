#include "bench/accuracy/Pictures.h"

#include "FileIO.h"
#include "ImageWriter.h"

#include <algorithm>
#include <cmath>

namespace
{

/// The frame sampled where the lens shows each pixel's direction.
STestImage ExactRemap(const CReferenceView& oView, const STestImage& sInput)
{
    STestImage sImage(oView.Setup().nTargetWidth, oView.Setup().nTargetHeight);
    for (int y = 0; y < sImage.nHeight; ++y)
        for (int x = 0; x < sImage.nWidth; ++x) {
            const SReferencePixel sPixel = oView.At(x + 0.5, y + 0.5);
            if (!sPixel.bDrawn)
                continue;
            double fU = sPixel.fU;
            double fV = sPixel.fV;
            if (sPixel.aRay[2] > 0.0)
                oView.TrueTexCoord(sPixel.aRay, fU, fV);
            const double fX = std::clamp(fU * sInput.nWidth - 0.5, 0.0, sInput.nWidth - 1.0);
            const double fY = std::clamp(fV * sInput.nHeight - 0.5, 0.0, sInput.nHeight - 1.0);
            const int nX = std::min(static_cast<int>(fX), sInput.nWidth - 2);
            const int nY = std::min(static_cast<int>(fY), sInput.nHeight - 2);
            const double fRight = fX - nX;
            const double fBelow = fY - nY;
            int anBytes[3];
            for (int i = 0; i < 3; ++i)
                anBytes[i] = static_cast<int>(std::lround(
                    (sInput.At(nX, nY)[i] * (1.0 - fRight) + sInput.At(nX + 1, nY)[i] * fRight) *
                        (1.0 - fBelow) +
                    (sInput.At(nX, nY + 1)[i] * (1.0 - fRight) + sInput.At(nX + 1, nY + 1)[i] * fRight) *
                        fBelow));
            sImage.Set(x, y, anBytes[0], anBytes[1], anBytes[2]);
        }
    return sImage;
}

std::string FileName(const SAccuracyCase& sCase)
{
    std::string strName = sCase.strView;
    for (const std::string& strPart : {sCase.strMount, LensName(sCase.sSetup.nLensType)})
        strName.append("-").append(strPart);
    for (char& cLetter : strName)
        if (std::isalnum(static_cast<unsigned char>(cLetter)) == 0)
            cLetter = '-';
    return strName;
}

void WritePNG(const std::string& strPath, const STestImage& sImage)
{
    std::vector<unsigned char> vPixels = sImage.vPixels;
    for (std::size_t i = 0; i < vPixels.size(); i += 4)
        std::swap(vPixels[i], vPixels[i + 2]);
    const SPicture sPicture = {vPixels.data(), sImage.nWidth, sImage.nHeight, sImage.nWidth * 4};
    const std::vector<unsigned char> vFile = EncodePicture(sPicture, EOutputKind::PNG);
    WriteFile(strPath, vFile.data(), vFile.size());
}

} // namespace

CRoomFrame::CRoomFrame(const SCaseGroup& sGroup)
    : m_sPicture(RenderFisheye(RoomColour, sGroup.nLens, sGroup.nImageWidth, sGroup.nImageHeight,
                               sGroup.eMount, sGroup.fMountTilt)),
      m_oFrame(m_sPicture, IMAGE_FORMAT_RGB24)
{}

SPictureResult CRoomFrame::Compare(const SAccuracyCase& sCase, CViewSession& oSession,
                                   const std::string& strFolder)
{
    oSession.Show(sCase.sSetup, m_oFrame, true);
    const STestImage sView = oSession.Picture();
    const CReferenceView oView(sCase.sSetup);
    const STestImage sRoom = oView.Render(RoomColour);
    SPictureResult sResult;
    sResult.fView = CompareImages(sView, sRoom).fPSNR;
    sResult.fRemap = CompareImages(ExactRemap(oView, m_sPicture), sRoom).fPSNR;
    if (!strFolder.empty())
        WritePNG(strFolder + "/" + FileName(sCase) + ".png",
                 SideBySide(SideBySide(sView, sRoom), DifferenceImage(sView, sRoom)));
    return sResult;
}
