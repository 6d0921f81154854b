/// \file
/// One run from graphic buffer to graphic buffer.
#pragma once

#include "Session.h"

#include "dewarp/android/CustomGPUDewarperVela.h"

#include <ui/GraphicBuffer.h>

#include <memory>
#include <vector>

/// As the base class. The frames become NV12 on their way in, whatever they are.
class CBufferSession : public CDewarpSession
{
public:
    CBufferSession(const SToolOptions& sOptions, SSize sSize);
    ~CBufferSession() override;
    CBufferSession(const CBufferSession&) = delete;
    CBufferSession& operator=(const CBufferSession&) = delete;

    SPicture ReadBack() override;

protected:
    CCustomGPUDewarper& GetDewarper() override { return m_oDewarper; }
    void GiveFrame(SFrame& sFrame) override;
    void DrawGiven() override;
    void PrepareOverlays(const SFrame& sFrame, SOverlays& sOverlays) override;

private:
    CCustomGPUDewarperVela m_oDewarper;
    std::unique_ptr<android::GraphicBuffer> m_pInput; ///< made for the first frame
    android::GraphicBuffer m_oOutput;
    std::vector<unsigned char> m_vPixels;
    EYUVSpace m_eSpace = YUV_SPACE_BT601; ///< of the YUV in both buffers
    EYUVRange m_eRange = YUV_RANGE_FULL;
};
