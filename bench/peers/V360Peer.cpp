// FFmpeg's v360 in a graph of its own: buffer, v360, where pixels are wanted a conversion, buffersink. Frames
// are handed over by reference.

#include "bench/peers/Peer.h"
#include "bench/peers/PlaneRing.h"

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

/// This library's panorama, 2500x350, shows what lies 39.6 to 90 degrees off the axis, evenly. v360 centres
/// its strips on the horizon; the same radii lie on both sides of it where the circle counts as one of 250
/// degrees.
const char* const PANORAMA = "output=e:h_fov=360:v_fov=70:pitch=90";
const double PANORAMA_INPUT = 250.0;

/// The planes belong to the frame of the comparison, or to a ring: nothing is to be freed.
void KeepPlane(void* /*pOwner*/, unsigned char* /*pPlane*/) {}

class CV360Peer final : public CPeer
{
public:
    CV360Peer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bPixels)
        : m_sCase(rCase), m_bRGBA(rCase.ePixels == PEER_RGBA), m_bPixels(bPixels),
          m_oPlanes(rCase.nBuffers, rCase.bOwnPlanes), m_pGraph(avfilter_graph_alloc())
    {
        FillInputs(rFrame);
        BuildGraph(rFrame);
        if (rCase.eView == PEER_PANORAMA)
            CV360Peer::SetPan(PEER_FIRST_PAN);
        for (int i = 0; i < rCase.nBuffers; ++i)
            CV360Peer::Frame(); // every piece of memory was written once
    }

    std::string Name() const override { return m_bPixels ? "v360 + swscale" : "v360"; }

    void SetPan(float fPan) override
    {
        char szRoll[32];
        const float fRoll = m_sCase.eView == PEER_PANORAMA ? fPan : PEER_FIRST_PAN - fPan;
        std::snprintf(szRoll, sizeof szRoll, "%.6f", std::remainder(static_cast<double>(fRoll), 360.0));
        Check(avfilter_graph_send_command(m_pGraph.get(), "v360", "roll", szRoll, nullptr, 0, 0), "turning");
    }

    /// A view is let go of only when its turn comes again: the filter then writes into other memory.
    void Frame() override
    {
        m_nTurn = (m_nTurn + 1) % m_vInputs.size();
        av_frame_unref(Output());
        Check(av_buffersrc_add_frame_flags(m_pSource, m_vInputs[m_nTurn].get(), AV_BUFFERSRC_FLAG_KEEP_REF),
              "input");
        Check(av_buffersink_get_frame(m_pSink, Output()), "output");
    }

    SLuma Luma() override
    {
        SLuma sLuma{Output()->width, Output()->height, {}};
        for (int y = 0; y < sLuma.nHeight; ++y) {
            for (int x = 0; x < sLuma.nWidth; ++x)
                sLuma.vPixels.push_back(LumaAt(x, y));
        }
        return sLuma;
    }

private:
    using PFrame = std::unique_ptr<AVFrame, SFrameDeleter>;

    AVFrame* Output() const { return m_vOutputs[m_nTurn].get(); }

    void FillInputs(CPeerFrame& rFrame)
    {
        const std::size_t nPixels =
            static_cast<std::size_t>(rFrame.Width()) * static_cast<std::size_t>(rFrame.Height());
        if (m_bRGBA) {
            for (const int nChannel : {1, 2, 0, 3})
                m_oPlanes.Add(rFrame.Channel(nChannel), nPixels);
        } else {
            m_oPlanes.Add(rFrame.Luma(), nPixels);
            m_oPlanes.Add(rFrame.U(), nPixels / 4);
            m_oPlanes.Add(rFrame.V(), nPixels / 4);
        }
        for (int i = 0; i < m_oPlanes.CountSets(); ++i) {
            m_vInputs.emplace_back(av_frame_alloc());
            m_vOutputs.emplace_back(av_frame_alloc());
            DescribeInput(rFrame, *m_vInputs.back());
            m_oPlanes.Next();
        }
    }

    void DescribeInput(const CPeerFrame& rFrame, AVFrame& rInput) const
    {
        rInput.width = rFrame.Width();
        rInput.height = rFrame.Height();
        rInput.format = m_bRGBA ? AV_PIX_FMT_GBRAP : AV_PIX_FMT_YUV420P;
        rInput.color_range = AVCOL_RANGE_JPEG;
        rInput.colorspace = m_bRGBA ? AVCOL_SPC_RGB : AVCOL_SPC_BT470BG;
        const int nPlanes = m_bRGBA ? 4 : 3;
        for (int i = 0; i < nPlanes; ++i) {
            const bool bHalf = !m_bRGBA && i > 0;
            const int nRow = bHalf ? rFrame.Width() / 2 : rFrame.Width();
            const int nRows = bHalf ? rFrame.Height() / 2 : rFrame.Height();
            rInput.data[i] = m_oPlanes.Plane(i);
            rInput.linesize[i] = nRow;
            rInput.buf[i] = av_buffer_create(rInput.data[i],
                                             static_cast<std::size_t>(nRow) * static_cast<std::size_t>(nRows),
                                             KeepPlane, nullptr, AV_BUFFER_FLAG_READONLY);
        }
    }

    /// What v360 is asked for. The circle's diameter is the longer side.
    std::string FilterText(const CPeerFrame& rFrame) const
    {
        const double fDegree = 3.14159265358979 / 180.0;
        const double fLonger = std::max(rFrame.Width(), rFrame.Height());
        const double fHalf = std::tan(static_cast<double>(PEER_HEIGHT_ANGLE) / 2.0 * fDegree);
        char szView[160];
        if (m_sCase.eView == PEER_PANORAMA)
            std::snprintf(szView, sizeof szView, "%s", PANORAMA);
        else
            std::snprintf(szView, sizeof szView, "output=flat:h_fov=%.6f:v_fov=%.6f:pitch=%.6f",
                          2.0 * std::atan(fHalf * m_sCase.nWidth / m_sCase.nHeight) / fDegree,
                          static_cast<double>(PEER_HEIGHT_ANGLE), static_cast<double>(PEER_TILT));
        const double fInput = m_sCase.eView == PEER_PANORAMA ? PANORAMA_INPUT : 180.0;
        char szFilter[400];
        std::snprintf(szFilter, sizeof szFilter,
                      "input=fisheye:ih_fov=%.6f:iv_fov=%.6f:%s:w=%d:h=%d:interp=%s:rorder=rpy:reset_rot=1",
                      fInput * rFrame.Width() / fLonger, fInput * rFrame.Height() / fLonger, szView,
                      m_sCase.nWidth, m_sCase.nHeight, m_sCase.bNearest ? "nearest" : "linear");
        return szFilter;
    }

    AVFilterContext* AddFilter(const char* pFilter, const char* pName, const char* pArguments)
    {
        AVFilterContext* pContext = nullptr;
        Check(avfilter_graph_create_filter(&pContext, avfilter_get_by_name(pFilter), pName, pArguments,
                                           nullptr, m_pGraph.get()),
              pName);
        return pContext;
    }

    void BuildGraph(const CPeerFrame& rFrame)
    {
        m_pGraph->nb_threads = m_sCase.nThreads;
        char szSource[160];
        std::snprintf(szSource, sizeof szSource,
                      "video_size=%dx%d:pix_fmt=%d:time_base=1/25:pixel_aspect=1/1", rFrame.Width(),
                      rFrame.Height(), m_vInputs[0]->format);
        m_pSource = AddFilter("buffer", "in", szSource);
        AVFilterContext* pLast = AddFilter("v360", "v360", FilterText(rFrame).c_str());
        Check(avfilter_link(m_pSource, 0, pLast, 0), "linking");
        if (m_bPixels) {
            AVFilterContext* pFormat = AddFilter("format", "format", "pix_fmts=bgra");
            Check(avfilter_link(pLast, 0, pFormat, 0), "linking");
            pLast = pFormat;
        }
        m_pSink = AddFilter("buffersink", "out", nullptr);
        Check(avfilter_link(pLast, 0, m_pSink, 0), "linking");
        Check(avfilter_graph_config(m_pGraph.get(), nullptr), "the graph");
    }

    unsigned char At(int nPlane, int x, int y) const
    {
        return Output()->data[nPlane][static_cast<std::ptrdiff_t>(y) * Output()->linesize[nPlane] + x];
    }

    unsigned char LumaAt(int x, int y) const
    {
        int nGreen = 0;
        int nBlue = 0;
        int nRed = 0;
        if (m_bPixels) {
            nBlue = At(0, 4 * x, y);
            nGreen = At(0, 4 * x + 1, y);
            nRed = At(0, 4 * x + 2, y);
        } else if (m_bRGBA) {
            nGreen = At(0, x, y);
            nBlue = At(1, x, y);
            nRed = At(2, x, y);
        } else {
            return At(0, x, y);
        }
        return static_cast<unsigned char>((587 * nGreen + 114 * nBlue + 299 * nRed + 500) / 1000);
    }

    SPeerCase m_sCase;
    bool m_bRGBA;
    bool m_bPixels;
    CPlaneRing m_oPlanes;
    std::unique_ptr<AVFilterGraph, SGraphDeleter> m_pGraph;
    std::vector<PFrame> m_vInputs;
    std::vector<PFrame> m_vOutputs;
    std::size_t m_nTurn = 0;
    AVFilterContext* m_pSource = nullptr;
    AVFilterContext* m_pSink = nullptr;
};

} // namespace

PPeer MakeV360Peer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bPixels)
{
    return std::make_unique<CV360Peer>(rCase, rFrame, bPixels);
}
