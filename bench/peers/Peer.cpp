#include "bench/peers/Peer.h"

#include <cstdio>
#include <cstdlib>

void CPeer::Frames(int nFrames, bool bMoving)
{
    for (int i = 0; i < nFrames; ++i) {
        if (bMoving) {
            // There and back within a quarter turn, so that every round shows the same parts.
            m_fPan = m_fPan >= PEER_FIRST_PAN + 45.0f ? PEER_FIRST_PAN - 45.0f : m_fPan + PEER_STEP;
            SetPan(m_fPan);
        }
        Frame();
    }
}

void PeerFailed(const std::string& strMessage)
{
    std::fprintf(stderr, "lumor-bench-peers: %s\n", strMessage.c_str());
    std::exit(1);
}
