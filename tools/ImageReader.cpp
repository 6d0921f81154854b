#include "ImageReader.h"

#include "FFmpegHandles.h"
#include "FileIO.h"
#include "ToolError.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>
#include <optional>

namespace
{

const int MAX_SIDE = 16384;
const int IO_BUFFER_BYTES = 65536;

[[noreturn]] void ThrowUnreadable(const std::string& strPath, const std::string& strReason)
{
    ThrowFailure(strPath + ": " + strReason +
                 "; give a whole PNG or JPEG picture, or bare pixels with --raw");
}

int ReadPacket(void* pUser, uint8_t* pBuffer, int nSize)
{
    const std::size_t nRead =
        std::fread(pBuffer, 1, static_cast<std::size_t>(nSize), static_cast<FILE*>(pUser));
    return nRead == 0 ? AVERROR_EOF : static_cast<int>(nRead);
}

int64_t Seek(void* pUser, int64_t nOffset, int nWhence)
{
    FILE* pFile = static_cast<FILE*>(pUser);
    if ((nWhence & AVSEEK_SIZE) != 0)
        return AVERROR(ENOSYS);
    if (fseeko(pFile, nOffset, nWhence & ~AVSEEK_FORCE) != 0)
        return AVERROR(EIO);
    return ftello(pFile);
}

/// An open picture file: bytes, container and decoder.
class CPictureFile
{
public:
    explicit CPictureFile(const std::string& strPath);
    /// The first picture.
    TFFmpegHandle<AVFrame> Decode();

private:
    void OpenContainer();
    void OpenDecoder();

    std::string m_strPath;
    CFile m_oFile;
    TFFmpegHandle<AVIOContext> m_pIO;
    TFFmpegHandle<AVFormatContext> m_pContainer;
    TFFmpegHandle<AVCodecContext> m_pDecoder;
    int m_nStream = 0;
};

CPictureFile::CPictureFile(const std::string& strPath) : m_strPath(strPath), m_oFile(OpenForReading(strPath))
{
    OpenContainer();
    OpenDecoder();
}

void CPictureFile::OpenContainer()
{
    auto* pBuffer = static_cast<unsigned char*>(av_malloc(IO_BUFFER_BYTES));
    m_pIO.reset(avio_alloc_context(pBuffer, IO_BUFFER_BYTES, 0, m_oFile.get(), ReadPacket, nullptr, Seek));
    AVFormatContext* pContainer = avformat_alloc_context();
    pContainer->pb = m_pIO.get();
    // The format is told from the content; a file that names other files or addresses opens none of them.
    AVDictionary* pOptions = nullptr;
    av_dict_set(&pOptions, "protocol_whitelist", "none", 0);
    const int nError = avformat_open_input(&pContainer, "", nullptr, &pOptions);
    av_dict_free(&pOptions);
    if (nError < 0)
        ThrowUnreadable(m_strPath, "not a picture (" + GetFFmpegError(nError) + ")");
    m_pContainer.reset(pContainer);
}

void CPictureFile::OpenDecoder()
{
    m_nStream = av_find_best_stream(m_pContainer.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (m_nStream < 0)
        ThrowUnreadable(m_strPath, "holds no picture");
    const AVCodecParameters* pParameters = m_pContainer->streams[m_nStream]->codecpar;
    const AVCodec* pCodec = avcodec_find_decoder(pParameters->codec_id);
    if (pCodec == nullptr)
        ThrowUnreadable(m_strPath, "is in a format this FFmpeg cannot decode");
    m_pDecoder.reset(avcodec_alloc_context3(pCodec));
    avcodec_parameters_to_context(m_pDecoder.get(), pParameters);
    // A picture that is cut short or damaged is refused, not shown half gray.
    m_pDecoder->err_recognition |= AV_EF_EXPLODE | AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER;
    const int nError = avcodec_open2(m_pDecoder.get(), pCodec, nullptr);
    if (nError < 0)
        ThrowUnreadable(m_strPath, "cannot be decoded (" + GetFFmpegError(nError) + ")");
}

TFFmpegHandle<AVFrame> CPictureFile::Decode()
{
    TFFmpegHandle<AVPacket> pPacket(av_packet_alloc());
    TFFmpegHandle<AVFrame> pFrame(av_frame_alloc());
    bool bEnd = false;
    int nError = AVERROR(EAGAIN);
    while (nError == AVERROR(EAGAIN)) {
        const int nRead = bEnd ? AVERROR_EOF : av_read_frame(m_pContainer.get(), pPacket.get());
        if (nRead < 0) {
            bEnd = true;
            nError = avcodec_send_packet(m_pDecoder.get(), nullptr);
        } else if (pPacket->stream_index != m_nStream) {
            av_packet_unref(pPacket.get());
            continue;
        } else {
            nError = avcodec_send_packet(m_pDecoder.get(), pPacket.get());
            av_packet_unref(pPacket.get());
        }
        if (nError >= 0)
            nError = avcodec_receive_frame(m_pDecoder.get(), pFrame.get());
    }
    if (nError < 0)
        ThrowUnreadable(m_strPath, "is damaged or cut short (" + GetFFmpegError(nError) + ")");
    if (pFrame->decode_error_flags != 0 || (pFrame->flags & AV_FRAME_FLAG_CORRUPT) != 0)
        ThrowUnreadable(m_strPath, "is damaged or cut short");
    if (pFrame->width < 2 || pFrame->height < 2 || pFrame->width > MAX_SIDE || pFrame->height > MAX_SIDE)
        ThrowFailure(m_strPath + ": " + std::to_string(pFrame->width) + "x" + std::to_string(pFrame->height) +
                     " pixels cannot be drawn; give a picture of 2 to 16384 pixels each way");
    return pFrame;
}

struct SPixelFormatPair
{
    AVPixelFormat eFFmpeg;
    int nFormat;
};

/// Layouts that go in as they are.
const SPixelFormatPair DIRECT_FORMATS[] = {
    {AV_PIX_FMT_YUV420P, IMAGE_FORMAT_YUV420P}, {AV_PIX_FMT_YUVJ420P, IMAGE_FORMAT_YUV420P},
    {AV_PIX_FMT_NV12, IMAGE_FORMAT_NV12},       {AV_PIX_FMT_NV21, IMAGE_FORMAT_NV21},
    {AV_PIX_FMT_RGB24, IMAGE_FORMAT_RGB24},     {AV_PIX_FMT_BGR24, IMAGE_FORMAT_BGR24},
    {AV_PIX_FMT_RGBA, IMAGE_FORMAT_RGBA32},     {AV_PIX_FMT_BGRA, IMAGE_FORMAT_BGRA32},
    {AV_PIX_FMT_GRAY8, IMAGE_FORMAT_GRAY8},
};

std::optional<int> FindDirectFormat(AVPixelFormat eFormat)
{
    for (const SPixelFormatPair& sPair : DIRECT_FORMATS)
        if (sPair.eFFmpeg == eFormat)
            return sPair.nFormat;
    return std::nullopt;
}

AVPixelFormat GetFFmpegFormat(int nFormat)
{
    for (const SPixelFormatPair& sPair : DIRECT_FORMATS)
        if (sPair.nFormat == nFormat)
            return sPair.eFFmpeg;
    return AV_PIX_FMT_NONE;
}

/// The layout nearest to one that does not go in as it is.
int ChooseFormat(AVPixelFormat eFormat)
{
    const AVPixFmtDescriptor* pDescriptor = av_pix_fmt_desc_get(eFormat);
    if (pDescriptor == nullptr)
        return IMAGE_FORMAT_RGB24;
    if ((pDescriptor->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL)) != 0)
        return IMAGE_FORMAT_RGBA32;
    if (pDescriptor->nb_components == 1)
        return IMAGE_FORMAT_GRAY8;
    if ((pDescriptor->flags & AV_PIX_FMT_FLAG_RGB) != 0)
        return IMAGE_FORMAT_RGB24;
    return IMAGE_FORMAT_YUV420P;
}

/// The plain format behind one of the old names that also fix the full range; others as they are.
AVPixelFormat GetPlainFormat(int nPixelFormat)
{
    switch (nPixelFormat) {
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ411P:
        return AV_PIX_FMT_YUV411P;
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ440P:
        return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ444P:
        return AV_PIX_FMT_YUV444P;
    default:
        return static_cast<AVPixelFormat>(nPixelFormat);
    }
}

bool IsFullRange(const AVFrame& sPicture)
{
    return GetPlainFormat(sPicture.format) != sPicture.format || sPicture.color_range == AVCOL_RANGE_JPEG;
}

EYUVSpace GetYUVSpace(const AVFrame& sPicture)
{
    switch (sPicture.colorspace) {
    case AVCOL_SPC_BT709:
        return YUV_SPACE_BT709;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return YUV_SPACE_BT2020;
    default:
        return YUV_SPACE_BT601;
    }
}

/// FFmpeg's coefficients of the picture's own colour space.
const int* GetCoefficients(const AVFrame& sPicture)
{
    switch (GetYUVSpace(sPicture)) {
    case YUV_SPACE_BT709:
        return sws_getCoefficients(SWS_CS_ITU709);
    case YUV_SPACE_BT2020:
        return sws_getCoefficients(SWS_CS_BT2020);
    default:
        return sws_getCoefficients(SWS_CS_ITU601);
    }
}

void CopyPlanes(const AVFrame& sPicture, SFrame& sFrame)
{
    int anRowBytes[4] = {};
    av_image_fill_linesizes(anRowBytes, static_cast<AVPixelFormat>(sPicture.format), sPicture.width);
    for (int i = 0; i < sFrame.GetPlaneCount(); i++)
        av_image_copy_plane(sFrame.avPlanes[static_cast<std::size_t>(i)].data(), sFrame.GetPlaneStride(i),
                            sPicture.data[i], sPicture.linesize[i], anRowBytes[i], sFrame.GetPlaneRows(i));
}

/// Another size or layout. YUV keeps its range and colour space.
TFFmpegHandle<AVFrame> Convert(const AVFrame& sPicture, SSize sSize, AVPixelFormat eTarget,
                               const std::string& strPath)
{
    const TFFmpegHandle<SwsContext> pScaler(sws_getContext(
        sPicture.width, sPicture.height, GetPlainFormat(sPicture.format), sSize.nWidth, sSize.nHeight,
        eTarget, SWS_AREA | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP, nullptr, nullptr,
        nullptr));
    // The scaler writes in whole blocks: it gets rows with room behind them.
    TFFmpegHandle<AVFrame> pTarget(av_frame_alloc());
    pTarget->width = sSize.nWidth;
    pTarget->height = sSize.nHeight;
    pTarget->format = eTarget;
    if (!pScaler || av_frame_get_buffer(pTarget.get(), 0) < 0)
        ThrowUnreadable(strPath, "has a pixel format or size that cannot be converted");
    const int* pCoefficients = GetCoefficients(sPicture);
    const int nRange = IsFullRange(sPicture) ? 1 : 0;
    const int nTargetRange = eTarget == AV_PIX_FMT_YUV420P ? nRange : 1;
    sws_setColorspaceDetails(pScaler.get(), pCoefficients, nRange, pCoefficients, nTargetRange, 0, 1 << 16,
                             1 << 16);
    sws_scale(pScaler.get(), sPicture.data, sPicture.linesize, 0, sPicture.height, pTarget->data,
              pTarget->linesize);
    return pTarget;
}

/// Without a format: the one that is nearest to the file's. Without a box: the file's size.
SFrame Read(const std::string& strPath, std::optional<int> oFormat, std::optional<SSize> oBox)
{
    CPictureFile oFile(strPath);
    TFFmpegHandle<AVFrame> pPicture = oFile.Decode();
    const auto ePixelFormat = static_cast<AVPixelFormat>(pPicture->format);
    const std::optional<int> oDirect = FindDirectFormat(ePixelFormat);
    const int nFormat = oFormat ? *oFormat : oDirect ? *oDirect : ChooseFormat(ePixelFormat);

    SSize sSize = {pPicture->width, pPicture->height};
    if (oBox) {
        const double fScale = std::min(static_cast<double>(oBox->nWidth) / sSize.nWidth,
                                       static_cast<double>(oBox->nHeight) / sSize.nHeight);
        sSize.nWidth = std::max(2, static_cast<int>(std::lround(sSize.nWidth * fScale)));
        sSize.nHeight = std::max(2, static_cast<int>(std::lround(sSize.nHeight * fScale)));
    }
    SFrame sFrame;
    sFrame.Allocate(nFormat, sSize.nWidth, sSize.nHeight);
    sFrame.eYUVSpace = GetYUVSpace(*pPicture);
    sFrame.eYUVRange = IsFullRange(*pPicture) ? YUV_RANGE_FULL : YUV_RANGE_LIMITED;
    if (oDirect != nFormat || oBox)
        pPicture = Convert(*pPicture, sSize, GetFFmpegFormat(nFormat), strPath);
    CopyPlanes(*pPicture, sFrame);
    return sFrame;
}

} // namespace

std::string GetFFmpegError(int nError)
{
    char aText[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(nError, aText, sizeof(aText));
    return aText;
}

SFrame ReadImage(const std::string& strPath)
{
    return Read(strPath, std::nullopt, std::nullopt);
}

SFrame ReadImageRGBA(const std::string& strPath)
{
    return Read(strPath, IMAGE_FORMAT_RGBA32, std::nullopt);
}

SFrame ReadImageFitted(const std::string& strPath, SSize sBox)
{
    return Read(strPath, IMAGE_FORMAT_RGBA32, sBox);
}
