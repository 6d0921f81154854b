/// \file
/// Owners of FFmpeg's objects.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

struct SFFmpegDeleter
{
    void operator()(AVFrame* pFrame) const { av_frame_free(&pFrame); }
    void operator()(AVPacket* pPacket) const { av_packet_free(&pPacket); }
    void operator()(AVCodecContext* pContext) const { avcodec_free_context(&pContext); }
    void operator()(AVFormatContext* pContext) const { avformat_close_input(&pContext); }
    void operator()(SwsContext* pContext) const { sws_freeContext(pContext); }
    void operator()(AVIOContext* pContext) const
    {
        av_freep(&pContext->buffer);
        avio_context_free(&pContext);
    }
};

template <class T>
using TFFmpegHandle = std::unique_ptr<T, SFFmpegDeleter>;

/// FFmpeg's words for one of its error codes.
std::string GetFFmpegError(int nError);
