// FFmpeg's v360 in a graph of its own: buffer, v360, buffersink. Frames are handed over by reference.

#include "bench/peers/Peer.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

struct SGraphDeleter
{
    void operator()(AVFilterGraph* pGraph) const { avfilter_graph_free(&pGraph); }
};
struct SFrameDeleter
{
    void operator()(AVFrame* pFrame) const { av_frame_free(&pFrame); }
};

void Check(int nResult, const char* pWhat)
{
    if (nResult < 0)
        PeerFailed(std::string("v360: ") + pWhat + " failed");
}

/// The planes belong to the frame of the comparison: nothing is to be freed.
void KeepPlane(void* /*pOwner*/, unsigned char* /*pPlane*/) {}

class CV360Peer final : public CPeer
{
public:
    CV360Peer(const SPeerCase& rCase, CPeerFrame& rFrame)
        : m_bRGBA(rCase.ePixels == PEER_RGBA), m_pGraph(avfilter_graph_alloc()), m_pInput(av_frame_alloc()),
          m_pOutput(av_frame_alloc())
    {
        FillInput(rFrame);
        BuildGraph(rCase, rFrame);
        CV360Peer::Frame();
    }

    std::string Name() const override { return "v360"; }

    void SetPan(float fPan) override
    {
        char szRoll[32];
        std::snprintf(szRoll, sizeof szRoll, "%.6f", static_cast<double>(PEER_FIRST_PAN - fPan));
        Check(avfilter_graph_send_command(m_pGraph.get(), "v360", "roll", szRoll, nullptr, 0, 0), "turning");
    }

    void Frame() override
    {
        av_frame_unref(m_pOutput.get());
        Check(av_buffersrc_add_frame_flags(m_pSource, m_pInput.get(), AV_BUFFERSRC_FLAG_KEEP_REF), "input");
        Check(av_buffersink_get_frame(m_pSink, m_pOutput.get()), "output");
    }

    SLuma Luma() override
    {
        SLuma sLuma{m_pOutput->width, m_pOutput->height, {}};
        for (int y = 0; y < sLuma.nHeight; ++y) {
            for (int x = 0; x < sLuma.nWidth; ++x)
                sLuma.vPixels.push_back(LumaAt(x, y));
        }
        return sLuma;
    }

private:
    void FillInput(CPeerFrame& rFrame)
    {
        m_pInput->width = rFrame.Width();
        m_pInput->height = rFrame.Height();
        m_pInput->format = m_bRGBA ? AV_PIX_FMT_GBRAP : AV_PIX_FMT_YUV420P;
        unsigned char* const apYUV[] = {rFrame.Luma(), rFrame.U(), rFrame.V()};
        unsigned char* const apRGBA[] = {rFrame.Channel(1), rFrame.Channel(2), rFrame.Channel(0),
                                         rFrame.Channel(3)};
        const int nPlanes = m_bRGBA ? 4 : 3;
        for (int i = 0; i < nPlanes; ++i) {
            const bool bHalf = !m_bRGBA && i > 0;
            const int nRow = bHalf ? rFrame.Width() / 2 : rFrame.Width();
            const int nRows = bHalf ? rFrame.Height() / 2 : rFrame.Height();
            m_pInput->data[i] = m_bRGBA ? apRGBA[i] : apYUV[i];
            m_pInput->linesize[i] = nRow;
            m_pInput->buf[i] = av_buffer_create(
                m_pInput->data[i], static_cast<std::size_t>(nRow) * static_cast<std::size_t>(nRows),
                KeepPlane, nullptr, AV_BUFFER_FLAG_READONLY);
        }
    }

    void BuildGraph(const SPeerCase& rCase, const CPeerFrame& rFrame)
    {
        char szSource[160];
        std::snprintf(szSource, sizeof szSource,
                      "video_size=%dx%d:pix_fmt=%d:time_base=1/25:pixel_aspect=1/1", rFrame.Width(),
                      rFrame.Height(), m_pInput->format);
        // The circle's diameter is the longer side and spans 180 degrees.
        const double fDegree = 3.14159265358979 / 180.0;
        const double fLonger = std::max(rFrame.Width(), rFrame.Height());
        const double fHalf = std::tan(static_cast<double>(PEER_HEIGHT_ANGLE) / 2.0 * fDegree);
        char szFilter[400];
        std::snprintf(szFilter, sizeof szFilter,
                      "input=fisheye:ih_fov=%.6f:iv_fov=%.6f:output=flat:h_fov=%.6f:v_fov=%.6f:w=%d:h=%d:"
                      "interp=linear:rorder=rpy:pitch=%.6f:reset_rot=1",
                      180.0 * rFrame.Width() / fLonger, 180.0 * rFrame.Height() / fLonger,
                      2.0 * std::atan(fHalf * rCase.nWidth / rCase.nHeight) / fDegree,
                      static_cast<double>(PEER_HEIGHT_ANGLE), rCase.nWidth, rCase.nHeight,
                      static_cast<double>(PEER_TILT));
        AVFilterContext* pFilter = nullptr;
        AVFilterGraph* pGraph = m_pGraph.get();
        Check(avfilter_graph_create_filter(&m_pSource, avfilter_get_by_name("buffer"), "in", szSource,
                                           nullptr, pGraph),
              "the source");
        Check(avfilter_graph_create_filter(&pFilter, avfilter_get_by_name("v360"), "v360", szFilter, nullptr,
                                           pGraph),
              "the filter");
        Check(avfilter_graph_create_filter(&m_pSink, avfilter_get_by_name("buffersink"), "out", nullptr,
                                           nullptr, pGraph),
              "the sink");
        Check(avfilter_link(m_pSource, 0, pFilter, 0), "linking");
        Check(avfilter_link(pFilter, 0, m_pSink, 0), "linking");
        Check(avfilter_graph_config(pGraph, nullptr), "the graph");
    }

    unsigned char At(int nPlane, int x, int y) const
    {
        return m_pOutput->data[nPlane][static_cast<std::ptrdiff_t>(y) * m_pOutput->linesize[nPlane] + x];
    }

    unsigned char LumaAt(int x, int y) const
    {
        if (!m_bRGBA)
            return At(0, x, y);
        return static_cast<unsigned char>((587 * At(0, x, y) + 114 * At(1, x, y) + 299 * At(2, x, y) + 500) /
                                          1000);
    }

    bool m_bRGBA;
    std::unique_ptr<AVFilterGraph, SGraphDeleter> m_pGraph;
    std::unique_ptr<AVFrame, SFrameDeleter> m_pInput;
    std::unique_ptr<AVFrame, SFrameDeleter> m_pOutput;
    AVFilterContext* m_pSource = nullptr;
    AVFilterContext* m_pSink = nullptr;
};

} // namespace

PPeer MakeV360Peer(const SPeerCase& rCase, CPeerFrame& rFrame)
{
    return std::make_unique<CV360Peer>(rCase, rFrame);
}
