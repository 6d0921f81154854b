#include "bench/peers/Pictures.h"

#include <cmath>

namespace
{

// Two renderings of one soft picture are above this; another view, or one upside down, is far below.
const double SAME_PICTURE = 30.0;

double PSNR(const SLuma& rA, const SLuma& rB)
{
    if (rA.vPixels.size() != rB.vPixels.size())
        PeerFailed("views of different sizes");
    double fSum = 0.0;
    for (std::size_t i = 0; i < rA.vPixels.size(); ++i) {
        const double fDifference = static_cast<double>(rA.vPixels[i]) - static_cast<double>(rB.vPixels[i]);
        fSum += fDifference * fDifference;
    }
    const double fMean = fSum / static_cast<double>(rA.vPixels.size());
    return fMean == 0.0 ? 99.0 : 10.0 * std::log10(255.0 * 255.0 / fMean);
}

} // namespace

std::vector<std::pair<std::string, double>> ComparePictures(const std::vector<CPeer*>& vPeers)
{
    std::vector<std::pair<std::string, double>> vPSNR;
    for (const float fPan : {PEER_FIRST_PAN + 33.0f, PEER_FIRST_PAN}) {
        SLuma sFirst;
        vPSNR.clear();
        for (CPeer* pPeer : vPeers) {
            if (pPeer->StandsStill())
                continue;
            pPeer->SetPan(fPan);
            pPeer->Frame();
            const SLuma sLuma = pPeer->Luma();
            if (sLuma.vPixels.empty())
                continue;
            if (pPeer == vPeers[0]) {
                sFirst = sLuma;
                continue;
            }
            vPSNR.emplace_back(pPeer->Name(), PSNR(sFirst, sLuma));
            if (vPSNR.back().second < SAME_PICTURE)
                PeerFailed(pPeer->Name() + " draws another picture: " + std::to_string(vPSNR.back().second) +
                           " dB");
        }
    }
    return vPSNR;
}
