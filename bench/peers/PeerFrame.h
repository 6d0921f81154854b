/// \file
/// The fisheye frame that all contenders get, in the layouts they take.
#pragma once

#include <vector>

/// Colour layout of a case. Contenders that take no NV12 get yuv420p, those that take no packed RGBA get its
/// planes.
enum EPeerPixels : int
{
    PEER_YUV420,
    PEER_RGBA
};

/// A synthetic fisheye picture: soft colours and crossing lines, full-range BT.601 where it is YUV.
/// Units: pixels. Owns: all its planes, rows packed. Thread: any. Fails: never.
class CPeerFrame
{
public:
    CPeerFrame(int nWidth, int nHeight);

    int Width() const { return m_nWidth; }
    int Height() const { return m_nHeight; }
    unsigned char* RGBA() { return m_vRGBA.data(); }
    unsigned char* Luma() { return m_vLuma.data(); }
    unsigned char* U() { return m_avChroma[0].data(); }
    unsigned char* V() { return m_avChroma[1].data(); }
    unsigned char* UV() { return m_vUV.data(); }
    /// 0 red, 1 green, 2 blue, 3 alpha.
    unsigned char* Channel(int nChannel) { return m_avChannels[nChannel].data(); }

private:
    void Paint();
    void SplitChannels();
    void MakeYUV();

    int m_nWidth;
    int m_nHeight;
    std::vector<unsigned char> m_vRGBA;
    std::vector<unsigned char> m_avChannels[4];
    std::vector<unsigned char> m_vLuma;
    std::vector<unsigned char> m_avChroma[2];
    std::vector<unsigned char> m_vUV;
};
