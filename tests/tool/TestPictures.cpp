#include "TestPictures.h"

#include "FFmpegHandles.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <stdlib.h>

CTempFolder::CTempFolder()
{
    std::string strPattern = (std::filesystem::temp_directory_path() / "lumor-tool-XXXXXX").string();
    if (mkdtemp(strPattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    m_oPath = strPattern;
}

CTempFolder::~CTempFolder()
{
    std::error_code oError;
    std::filesystem::remove_all(m_oPath, oError);
}

void SaveBytes(const std::string& strPath, const TBytes& vBytes)
{
    std::ofstream oFile(strPath, std::ios::binary);
    oFile.write(reinterpret_cast<const char*>(vBytes.data()), static_cast<std::streamsize>(vBytes.size()));
}

TBytes LoadBytes(const std::string& strPath)
{
    std::ifstream oFile(strPath, std::ios::binary);
    return TBytes(std::istreambuf_iterator<char>(oFile), std::istreambuf_iterator<char>());
}

SRGBPicture::SRGBPicture(int nNewWidth, int nNewHeight)
    : nWidth(nNewWidth), nHeight(nNewHeight),
      vBytes(static_cast<std::size_t>(nNewWidth) * static_cast<std::size_t>(nNewHeight) * 3)
{}

void SRGBPicture::Set(int x, int y, SColor sColor)
{
    unsigned char* pPixel = vBytes.data() + (static_cast<std::ptrdiff_t>(y) * nWidth + x) * 3;
    pPixel[0] = static_cast<unsigned char>(sColor.nRed);
    pPixel[1] = static_cast<unsigned char>(sColor.nGreen);
    pPixel[2] = static_cast<unsigned char>(sColor.nBlue);
}

SColor SRGBPicture::Get(int x, int y) const
{
    const unsigned char* pPixel = vBytes.data() + (static_cast<std::ptrdiff_t>(y) * nWidth + x) * 3;
    return {pPixel[0], pPixel[1], pPixel[2]};
}

SRGBPicture MakeGradient(int nWidth, int nHeight)
{
    SRGBPicture sPicture(nWidth, nHeight);
    for (int y = 0; y < nHeight; y++)
        for (int x = 0; x < nWidth; x++)
            sPicture.Set(x, y, {60 + 130 * x / nWidth, 70 + 100 * y / nHeight, 180 - 90 * x / nWidth});
    return sPicture;
}

SRGBPicture MakeQuarters(int nWidth, int nHeight)
{
    SRGBPicture sPicture(nWidth, nHeight);
    for (int y = 0; y < nHeight; y++)
        for (int x = 0; x < nWidth; x++) {
            const bool bLeft = x < nWidth / 2;
            const bool bTop = y < nHeight / 2;
            sPicture.Set(x, y,
                         bTop ? (bLeft ? SColor{255, 0, 0} : SColor{0, 255, 0})
                              : (bLeft ? SColor{0, 0, 255} : SColor{255, 255, 255}));
        }
    return sPicture;
}

namespace
{

struct SYUV
{
    double fY = 0.0;
    double fU = 0.0;
    double fV = 0.0;
};

/// ITU-R BT.601, full range.
SYUV ToYUV(SColor sColor)
{
    SYUV sYUV;
    sYUV.fY = 0.299 * sColor.nRed + 0.587 * sColor.nGreen + 0.114 * sColor.nBlue;
    sYUV.fU = 128.0 + 0.564 * (sColor.nBlue - sYUV.fY);
    sYUV.fV = 128.0 + 0.713 * (sColor.nRed - sYUV.fY);
    return sYUV;
}

unsigned char Round(double fValue)
{
    return static_cast<unsigned char>(std::clamp(std::lround(fValue), 0L, 255L));
}

/// Mean chroma of a block of 2 x 2 pixels; single pixels count double at odd edges.
SYUV GetBlock(const SRGBPicture& sPicture, int nColumn, int nRow)
{
    SYUV sSum;
    for (int i = 0; i < 4; i++) {
        const SYUV sPixel = ToYUV(sPicture.Get(std::min(nColumn * 2 + i % 2, sPicture.nWidth - 1),
                                               std::min(nRow * 2 + i / 2, sPicture.nHeight - 1)));
        sSum.fU += sPixel.fU / 4.0;
        sSum.fV += sPixel.fV / 4.0;
    }
    return sSum;
}

const unsigned char PADDING = 0xEE;

/// Appends a row and its padding.
void AddRow(TBytes& vFile, const TBytes& vRow, std::size_t nStride)
{
    vFile.insert(vFile.end(), vRow.begin(), vRow.end());
    if (vRow.size() < nStride)
        vFile.insert(vFile.end(), nStride - vRow.size(), PADDING);
}

TBytes MakeYUV(const SRGBPicture& sPicture, const std::string& strFormat, std::size_t nStride)
{
    TBytes vFile;
    for (int y = 0; y < sPicture.nHeight; y++) {
        TBytes vRow;
        for (int x = 0; x < sPicture.nWidth; x++)
            vRow.push_back(Round(ToYUV(sPicture.Get(x, y)).fY));
        AddRow(vFile, vRow, nStride);
    }
    TBytes vPlaneV;
    for (int y = 0; y < (sPicture.nHeight + 1) / 2; y++) {
        TBytes vRowU;
        TBytes vRowV;
        TBytes vMixed;
        for (int x = 0; x < (sPicture.nWidth + 1) / 2; x++) {
            const SYUV sBlock = GetBlock(sPicture, x, y);
            vRowU.push_back(Round(sBlock.fU));
            vRowV.push_back(Round(sBlock.fV));
            vMixed.push_back(strFormat == "nv12" ? vRowU.back() : vRowV.back());
            vMixed.push_back(strFormat == "nv12" ? vRowV.back() : vRowU.back());
        }
        if (strFormat == "yuv420p") {
            AddRow(vFile, vRowU, (nStride + 1) / 2);
            AddRow(vPlaneV, vRowV, (nStride + 1) / 2);
        } else {
            AddRow(vFile, vMixed, (nStride + 1) / 2 * 2);
        }
    }
    vFile.insert(vFile.end(), vPlaneV.begin(), vPlaneV.end());
    return vFile;
}

} // namespace

TBytes MakeRaw(const SRGBPicture& sPicture, const std::string& strFormat, int nStride)
{
    const int nBytes = strFormat == "rgba" || strFormat == "bgra"     ? 4
                       : strFormat == "rgb24" || strFormat == "bgr24" ? 3
                                                                      : 1;
    const auto nRowBytes = static_cast<std::size_t>(nStride > 0 ? nStride : sPicture.nWidth * nBytes);
    if (strFormat == "nv12" || strFormat == "nv21" || strFormat == "yuv420p")
        return MakeYUV(sPicture, strFormat, nRowBytes);
    const bool bBlueFirst = strFormat[0] == 'b';
    TBytes vFile;
    for (int y = 0; y < sPicture.nHeight; y++) {
        TBytes vRow;
        for (int x = 0; x < sPicture.nWidth; x++) {
            const SColor sColor = sPicture.Get(x, y);
            const int anValues[4] = {bBlueFirst ? sColor.nBlue : sColor.nRed, sColor.nGreen,
                                     bBlueFirst ? sColor.nRed : sColor.nBlue, 255};
            if (nBytes == 1)
                vRow.push_back(Round(ToYUV(sColor).fY));
            else
                for (int i = 0; i < nBytes; i++)
                    vRow.push_back(static_cast<unsigned char>(anValues[i]));
        }
        AddRow(vFile, vRow, nRowBytes);
    }
    return vFile;
}

namespace
{

TFFmpegHandle<AVFrame> MakeFrame(const SRGBPicture& sPicture, AVPixelFormat eFormat)
{
    TFFmpegHandle<AVFrame> pFrame(av_frame_alloc());
    pFrame->width = sPicture.nWidth;
    pFrame->height = sPicture.nHeight;
    pFrame->format = eFormat;
    if (av_frame_get_buffer(pFrame.get(), 0) < 0)
        throw std::runtime_error("no frame");
    return pFrame;
}

void Encode(const std::string& strPath, AVFrame& sFrame, AVCodecID eCodec)
{
    const AVCodec* pCodec = avcodec_find_encoder(eCodec);
    const TFFmpegHandle<AVCodecContext> pEncoder(avcodec_alloc_context3(pCodec));
    pEncoder->width = sFrame.width;
    pEncoder->height = sFrame.height;
    pEncoder->pix_fmt = static_cast<AVPixelFormat>(sFrame.format);
    pEncoder->time_base = {1, 25};
    pEncoder->flags |= AV_CODEC_FLAG_QSCALE;
    pEncoder->global_quality = FF_QP2LAMBDA;
    pEncoder->qmin = 1;
    pEncoder->color_range = eCodec == AV_CODEC_ID_MJPEG ? AVCOL_RANGE_JPEG : AVCOL_RANGE_UNSPECIFIED;
    sFrame.quality = FF_QP2LAMBDA;
    const TFFmpegHandle<AVPacket> pPacket(av_packet_alloc());
    if (avcodec_open2(pEncoder.get(), pCodec, nullptr) < 0 ||
        avcodec_send_frame(pEncoder.get(), &sFrame) < 0 ||
        avcodec_receive_packet(pEncoder.get(), pPacket.get()) < 0)
        throw std::runtime_error("cannot encode " + strPath);
    SaveBytes(strPath, TBytes(pPacket->data, pPacket->data + pPacket->size));
}

} // namespace

void SavePNG(const std::string& strPath, const SRGBPicture& sPicture)
{
    const TFFmpegHandle<AVFrame> pFrame = MakeFrame(sPicture, AV_PIX_FMT_RGB24);
    for (int y = 0; y < sPicture.nHeight; y++)
        std::copy_n(sPicture.vBytes.data() + static_cast<std::ptrdiff_t>(y) * sPicture.nWidth * 3,
                    sPicture.nWidth * 3,
                    pFrame->data[0] + static_cast<std::ptrdiff_t>(y) * pFrame->linesize[0]);
    Encode(strPath, *pFrame, AV_CODEC_ID_PNG);
}

void SavePNGWithAlpha(const std::string& strPath, const SRGBPicture& sPicture, unsigned char nAlpha)
{
    const TFFmpegHandle<AVFrame> pFrame = MakeFrame(sPicture, AV_PIX_FMT_RGBA);
    for (int y = 0; y < sPicture.nHeight; y++)
        for (int x = 0; x < sPicture.nWidth; x++) {
            unsigned char* pPixel =
                pFrame->data[0] + static_cast<std::ptrdiff_t>(y) * pFrame->linesize[0] + x * 4;
            const SColor sColor = sPicture.Get(x, y);
            pPixel[0] = static_cast<unsigned char>(sColor.nRed);
            pPixel[1] = static_cast<unsigned char>(sColor.nGreen);
            pPixel[2] = static_cast<unsigned char>(sColor.nBlue);
            pPixel[3] = nAlpha;
        }
    Encode(strPath, *pFrame, AV_CODEC_ID_PNG);
}

void SaveJPEG(const std::string& strPath, const SRGBPicture& sPicture, const std::string& strPixelFormat)
{
    const TFFmpegHandle<AVFrame> pFrame = MakeFrame(sPicture, av_get_pix_fmt(strPixelFormat.c_str()));
    const AVPixFmtDescriptor* pDescriptor = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(pFrame->format));
    for (int y = 0; y < sPicture.nHeight; y++)
        for (int x = 0; x < sPicture.nWidth; x++) {
            const SYUV sYUV = ToYUV(sPicture.Get(x, y));
            const double afValues[3] = {sYUV.fY, sYUV.fU, sYUV.fV};
            for (int i = 0; i < pDescriptor->nb_components; i++) {
                const int nX = i == 0 ? x : x >> pDescriptor->log2_chroma_w;
                const int nY = i == 0 ? y : y >> pDescriptor->log2_chroma_h;
                pFrame->data[i][static_cast<std::ptrdiff_t>(nY) * pFrame->linesize[i] + nX] =
                    Round(afValues[i]);
            }
        }
    pFrame->color_range = AVCOL_RANGE_JPEG;
    Encode(strPath, *pFrame, AV_CODEC_ID_MJPEG);
}
