// GStreamer: an effect drawn as one full-screen quad, upload and read-back included. The frames of a batch
// are all handed over before the first view is taken, so that the elements may overlap their work.

#include "bench/peers/Peer.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include <cstdlib>
#include <cstring>

namespace
{

struct SObjectDeleter
{
    void operator()(GstElement* pElement) const
    {
        gst_element_set_state(pElement, GST_STATE_NULL);
        gst_object_unref(pElement);
    }
};

class CGLEffectPeer final : public CPeer
{
public:
    CGLEffectPeer(const SPeerCase& rCase, CPeerFrame& rFrame)
    {
        JoinPlanes(rCase, rFrame);
        StartPipeline(rCase, rFrame);
        CGLEffectPeer::Frame();
    }

    ~CGLEffectPeer() override
    {
        gst_object_unref(m_pSource);
        gst_object_unref(m_pSink);
    }

    std::string Name() const override { return "GStreamer"; }
    bool StandsStill() const override { return true; }
    void SetPan(float /*fPan*/) override {}
    void Frame() override { Frames(1, false); }
    SLuma Luma() override { return {}; }

    void Frames(int nFrames, bool /*bMoving*/) override
    {
        for (int i = 0; i < nFrames; ++i)
            Push();
        for (int i = 0; i < nFrames; ++i)
            Pull();
    }

private:
    void JoinPlanes(const SPeerCase& rCase, CPeerFrame& rFrame)
    {
        const std::size_t nPixels =
            static_cast<std::size_t>(rFrame.Width()) * static_cast<std::size_t>(rFrame.Height());
        if (rCase.ePixels == PEER_RGBA) {
            m_vFrame.assign(rFrame.RGBA(), rFrame.RGBA() + 4 * nPixels);
            return;
        }
        m_vFrame.resize(nPixels * 3 / 2);
        std::memcpy(m_vFrame.data(), rFrame.Luma(), nPixels);
        std::memcpy(m_vFrame.data() + nPixels, rFrame.UV(), nPixels / 2);
    }

    void StartPipeline(const SPeerCase& rCase, const CPeerFrame& rFrame)
    {
        // The same driver as everybody else's, without a window. Desktop GL asks for no half precision, which
        // this driver would emulate.
        setenv("GST_GL_PLATFORM", "egl", 0);
        setenv("GST_GL_WINDOW", "egl-device", 0);
        setenv("GST_GL_API", "opengl3", 0);
        gst_init(nullptr, nullptr);
        const std::string strSize = ",width=" + std::to_string(rFrame.Width()) +
                                    ",height=" + std::to_string(rFrame.Height()) + ",framerate=0/1";
        const std::string strView =
            ",width=" + std::to_string(rCase.nWidth) + ",height=" + std::to_string(rCase.nHeight);
        const std::string strFormat = rCase.ePixels == PEER_RGBA ? "RGBA" : "NV12";
        const std::string strPipeline =
            "appsrc name=in format=time max-bytes=0 caps=video/x-raw,format=" + strFormat + strSize +
            " ! glupload ! glcolorconvert ! gleffects_fisheye ! video/x-raw(memory:GLMemory),format=RGBA" +
            strView + " ! gldownload ! video/x-raw,format=RGBA ! appsink name=out sync=false";
        m_pPipeline.reset(gst_parse_launch(strPipeline.c_str(), nullptr));
        if (m_pPipeline == nullptr)
            PeerFailed("GStreamer: the pipeline cannot be built");
        m_pSource = gst_bin_get_by_name(GST_BIN(m_pPipeline.get()), "in");
        m_pSink = gst_bin_get_by_name(GST_BIN(m_pPipeline.get()), "out");
        gst_element_set_state(m_pPipeline.get(), GST_STATE_PLAYING);
    }

    void Push()
    {
        GstBuffer* pBuffer = gst_buffer_new_wrapped_full(
            GST_MEMORY_FLAG_READONLY, m_vFrame.data(), m_vFrame.size(), 0, m_vFrame.size(), nullptr, nullptr);
        if (gst_app_src_push_buffer(GST_APP_SRC(m_pSource), pBuffer) != GST_FLOW_OK)
            PeerFailed("GStreamer: the pipeline takes no frame");
    }

    /// The view is in memory only when it is mapped.
    void Pull()
    {
        GstSample* pSample = gst_app_sink_try_pull_sample(GST_APP_SINK(m_pSink), 30 * GST_SECOND);
        if (pSample == nullptr)
            PeerFailed("GStreamer: no view (is there a driver for GST_GL_WINDOW=egl-device?)");
        GstMapInfo sMap;
        if (!gst_buffer_map(gst_sample_get_buffer(pSample), &sMap, GST_MAP_READ))
            PeerFailed("GStreamer: the view cannot be read");
        gst_buffer_unmap(gst_sample_get_buffer(pSample), &sMap);
        gst_sample_unref(pSample);
    }

    std::vector<unsigned char> m_vFrame;
    std::unique_ptr<GstElement, SObjectDeleter> m_pPipeline;
    GstElement* m_pSource = nullptr;
    GstElement* m_pSink = nullptr;
};

} // namespace

PPeer MakeGLEffectPeer(const SPeerCase& rCase, CPeerFrame& rFrame)
{
    return std::make_unique<CGLEffectPeer>(rCase, rFrame);
}
