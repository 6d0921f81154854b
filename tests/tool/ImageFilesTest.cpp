#include "ImageReader.h"
#include "ImageWriter.h"
#include "TestPictures.h"
#include "ToolError.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace
{

bool IsRefused(const std::string& strPath)
{
    try {
        ReadImage(strPath);
    } catch (const CToolError& oError) {
        EXPECT_EQ(oError.GetStatus(), EXIT_FAILED);
        EXPECT_NE(std::string(oError.what()).find(strPath), std::string::npos) << oError.what();
        return true;
    }
    return false;
}

/// The largest difference of a plane's pixels from a raw file's.
int GetPlaneDifference(const SFrame& sFrame, int nPlane, const TBytes& vRaw, int nFirst, int nWidth,
                       int nHeight)
{
    int nLargest = 0;
    for (int y = 0; y < nHeight; y++)
        for (int x = 0; x < nWidth; x++) {
            const int nIs =
                sFrame.avPlanes[nPlane][static_cast<std::size_t>(y * sFrame.GetPlaneStride(nPlane) + x)];
            const int nWanted = vRaw[static_cast<std::size_t>(nFirst + y * nWidth + x)];
            nLargest = std::max(nLargest, std::abs(nIs - nWanted));
        }
    return nLargest;
}

/// Luma and chroma of a JPEG that was made from the gradient.
void ExpectGradientPlanes(const SFrame& sFrame, const SRGBPicture& sPicture)
{
    const TBytes vRaw = MakeRaw(sPicture, "yuv420p");
    const int nWidth = sPicture.nWidth;
    const int nHeight = sPicture.nHeight;
    ASSERT_EQ(sFrame.nFormat, IMAGE_FORMAT_YUV420P);
    EXPECT_EQ(sFrame.eYUVRange, YUV_RANGE_FULL);
    EXPECT_EQ(sFrame.eYUVSpace, YUV_SPACE_BT601);
    // JPEG's own loss at the best quality: 3 of 255.
    EXPECT_LE(GetPlaneDifference(sFrame, 0, vRaw, 0, nWidth, nHeight), 3);
    EXPECT_LE(GetPlaneDifference(sFrame, 1, vRaw, nWidth * nHeight, nWidth / 2, nHeight / 2), 3);
    EXPECT_LE(GetPlaneDifference(sFrame, 2, vRaw, nWidth * nHeight * 5 / 4, nWidth / 2, nHeight / 2), 3);
}

} // namespace

TEST(ImageReader, JPEGPlanesGoInAsTheyWereDecoded)
{
    const CTempFolder oFolder;
    const SRGBPicture sPicture = MakeGradient(64, 48);
    SaveJPEG(oFolder.Path("a.jpg"), sPicture, "yuvj420p");
    ExpectGradientPlanes(ReadImage(oFolder.Path("a.jpg")), sPicture);
}

TEST(ImageReader, OtherSubsamplingsAreScaledWithinTheirRange)
{
    const CTempFolder oFolder;
    const SRGBPicture sPicture = MakeGradient(64, 48);
    for (const char* pFormat : {"yuvj444p", "yuvj422p"}) {
        SaveJPEG(oFolder.Path("a.jpg"), sPicture, pFormat);
        ExpectGradientPlanes(ReadImage(oFolder.Path("a.jpg")), sPicture);
    }
}

TEST(ImageReader, PNGsKeepTheirChannels)
{
    const CTempFolder oFolder;
    const SRGBPicture sPicture = MakeGradient(33, 17);
    SavePNG(oFolder.Path("a.png"), sPicture);
    const SFrame sRGB = ReadImage(oFolder.Path("a.png"));
    EXPECT_EQ(sRGB.nFormat, IMAGE_FORMAT_RGB24);
    EXPECT_EQ(sRGB.avPlanes[0], sPicture.vBytes);

    SavePNGWithAlpha(oFolder.Path("b.png"), sPicture, 77);
    const SFrame sRGBA = ReadImage(oFolder.Path("b.png"));
    EXPECT_EQ(sRGBA.nFormat, IMAGE_FORMAT_RGBA32);
    EXPECT_EQ(sRGBA.avPlanes[0][3], 77);
    EXPECT_EQ(sRGBA.avPlanes[0][0], sPicture.vBytes[0]);
}

TEST(ImageReader, EverythingCanBeHadAsRGBA)
{
    const CTempFolder oFolder;
    const SRGBPicture sPicture = MakeGradient(33, 17);
    SavePNG(oFolder.Path("a.png"), sPicture);
    const SFrame sFrame = ReadImageRGBA(oFolder.Path("a.png"));
    ASSERT_EQ(sFrame.nFormat, IMAGE_FORMAT_RGBA32);
    TBytes vExpected = MakeRaw(sPicture, "rgba");
    EXPECT_EQ(sFrame.avPlanes[0], vExpected);
}

TEST(ImageReader, FittedPicturesKeepTheirShape)
{
    const CTempFolder oFolder;
    SavePNG(oFolder.Path("a.png"), MakeGradient(64, 16));
    const SFrame sFrame = ReadImageFitted(oFolder.Path("a.png"), {32, 32});
    EXPECT_EQ(sFrame.nWidth, 32);
    EXPECT_EQ(sFrame.nHeight, 8);
}

TEST(ImageReader, DamagedFilesAreRefused)
{
    const CTempFolder oFolder;
    const SRGBPicture sPicture = MakeGradient(128, 96);
    SavePNG(oFolder.Path("whole.png"), sPicture);
    SaveJPEG(oFolder.Path("whole.jpg"), sPicture, "yuvj420p");
    EXPECT_FALSE(IsRefused(oFolder.Path("whole.png")));
    EXPECT_FALSE(IsRefused(oFolder.Path("whole.jpg")));
    for (const char* pName : {"whole.png", "whole.jpg"}) {
        const TBytes vWhole = LoadBytes(oFolder.Path(pName));
        for (const double fShare : {0.0, 0.01, 0.1, 0.5, 0.9}) {
            const auto nBytes = static_cast<std::size_t>(static_cast<double>(vWhole.size()) * fShare);
            SaveBytes(oFolder.Path("cut"),
                      TBytes(vWhole.begin(), vWhole.begin() + static_cast<std::ptrdiff_t>(nBytes)));
            EXPECT_TRUE(IsRefused(oFolder.Path("cut"))) << pName << " " << fShare;
        }
    }
}

TEST(ImageReader, WhatIsNoPictureIsRefused)
{
    const CTempFolder oFolder;
    const std::string strText = "This is a text file, not a picture.\n";
    SaveBytes(oFolder.Path("a.png"), TBytes(strText.begin(), strText.end()));
    EXPECT_TRUE(IsRefused(oFolder.Path("a.png")));
    EXPECT_TRUE(IsRefused(oFolder.Path("missing.png")));
    EXPECT_TRUE(IsRefused(std::filesystem::path(oFolder.Path("a.png")).parent_path().string()));
    // A list of files must not open the files it names.
    SavePNG(oFolder.Path("b.png"), MakeGradient(8, 8));
    const std::string strList = "ffconcat version 1.0\nfile 'b.png'\n";
    SaveBytes(oFolder.Path("list"), TBytes(strList.begin(), strList.end()));
    EXPECT_TRUE(IsRefused(oFolder.Path("list")));
}

TEST(ImageReader, TinyPicturesAreRefused)
{
    const CTempFolder oFolder;
    SavePNG(oFolder.Path("a.png"), MakeGradient(1, 8));
    EXPECT_TRUE(IsRefused(oFolder.Path("a.png")));
}

TEST(ImageWriter, PicturesComeBackAsTheyWere)
{
    const CTempFolder oFolder;
    const SRGBPicture sPicture = MakeGradient(30, 20);
    const int nStride = 31 * 4;
    const TBytes vRows = MakeRaw(sPicture, "bgra", nStride);
    const SPicture sView = {vRows.data(), 30, 20, nStride};
    EXPECT_EQ(EncodePicture(sView, EOutputKind::RAW), MakeRaw(sPicture, "bgra"));
    SaveBytes(oFolder.Path("a.png"), EncodePicture(sView, EOutputKind::PNG));
    const SFrame sFrame = ReadImage(oFolder.Path("a.png"));
    EXPECT_EQ(sFrame.nFormat, IMAGE_FORMAT_RGB24);
    EXPECT_EQ(sFrame.avPlanes[0], sPicture.vBytes);
}

TEST(ImageWriter, EndingsChooseTheKind)
{
    EXPECT_EQ(GetOutputKind("a.png"), EOutputKind::PNG);
    EXPECT_EQ(GetOutputKind("a.PNG"), EOutputKind::PNG);
    EXPECT_EQ(GetOutputKind("b/c.raw"), EOutputKind::RAW);
    for (const char* pName : {"", "png", "a", "a.jpg", "a.png.gz", ".pn"})
        EXPECT_THROW(GetOutputKind(pName), CToolError) << pName;
}
