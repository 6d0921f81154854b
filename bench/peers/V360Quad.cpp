// A quad as four filters: each draws a quarter of the picture, a quarter of a turn further.

#include "bench/peers/Peer.h"

#include <algorithm>

namespace
{

// Bottom left, top left, top right, bottom right: the order in which this library turns them.
const int QUARTERS[4][2] = {{0, 1}, {0, 0}, {1, 0}, {1, 1}};

class CV360Quad final : public CPeer
{
public:
    CV360Quad(const SPeerCase& rCase, CPeerFrame& rFrame)
    {
        SPeerCase sQuarter = rCase;
        sQuarter.eView = PEER_CAMERA;
        sQuarter.nWidth /= 2;
        sQuarter.nHeight /= 2;
        for (PPeer& pQuarter : m_apQuarters)
            pQuarter = MakeV360Peer(sQuarter, rFrame, false);
        CV360Quad::SetPan(PEER_FIRST_PAN);
        CV360Quad::Frame();
    }

    std::string Name() const override { return "v360, four graphs"; }

    void SetPan(float fPan) override
    {
        for (const PPeer& pQuarter : m_apQuarters) {
            pQuarter->SetPan(fPan);
            fPan += 90.0f;
        }
    }

    void Frame() override
    {
        for (const PPeer& pQuarter : m_apQuarters)
            pQuarter->Frame();
    }

    SLuma Luma() override
    {
        SLuma sWhole;
        for (int i = 0; i < 4; ++i) {
            const SLuma sQuarter = m_apQuarters[i]->Luma();
            sWhole.nWidth = 2 * sQuarter.nWidth;
            sWhole.nHeight = 2 * sQuarter.nHeight;
            sWhole.vPixels.resize(4 * sQuarter.vPixels.size());
            const std::ptrdiff_t nCorner =
                QUARTERS[i][0] * static_cast<std::ptrdiff_t>(sQuarter.nWidth) +
                QUARTERS[i][1] * static_cast<std::ptrdiff_t>(sQuarter.nHeight) * sWhole.nWidth;
            for (std::ptrdiff_t y = 0; y < sQuarter.nHeight; ++y)
                std::copy_n(sQuarter.vPixels.begin() + y * sQuarter.nWidth, sQuarter.nWidth,
                            sWhole.vPixels.begin() + nCorner + y * sWhole.nWidth);
        }
        return sWhole;
    }

private:
    PPeer m_apQuarters[4];
};

} // namespace

PPeer MakeV360Quad(const SPeerCase& rCase, CPeerFrame& rFrame)
{
    return std::make_unique<CV360Quad>(rCase, rFrame);
}
