#include "dewarp/cpu/RunLayer.h"

#include <limits>

namespace
{

// Pixels of one colour that are worth a run of their own.
const int PLAIN_PIXELS = 8;

bool IsSeen(std::uint32_t nRGBA)
{
    return nRGBA >> 24 != 0;
}

/// How many pixels from the first one on look like it.
int CountSame(const std::uint32_t* pRGBA, int nPixels)
{
    int n = 1;
    while (n < nPixels && pRGBA[n] == pRGBA[0])
        ++n;
    return n;
}

/// Walks along a row as it was added.
struct SCursor
{
    const SLayerRun* pRun;
    const SLayerRun* pEnd;
    const std::uint32_t* pValues;

    /// Colour of a pixel, and where another one may follow. Pixels are asked for from the left.
    std::uint32_t At(int x, int& rEnd)
    {
        while (pRun != pEnd && pRun->x + pRun->nPixels <= x)
            ++pRun;
        if (pRun == pEnd) {
            rEnd = std::numeric_limits<int>::max();
            return 0;
        }
        if (x < pRun->x) {
            rEnd = pRun->x;
            return 0;
        }
        rEnd = pRun->bPlain ? pRun->x + pRun->nPixels : x + 1;
        return pValues[pRun->nFirst + static_cast<std::uint32_t>(pRun->bPlain ? 0 : x - pRun->x)];
    }
};

template <class T>
void AppendTo(std::vector<T>& rTo, const std::vector<T>& rFrom)
{
    rTo.insert(rTo.end(), rFrom.begin(), rFrom.end());
}

} // namespace

void CRunLayer::Begin(const SLayerFormat& rFormat)
{
    m_sFormat = rFormat;
    m_oColours = CRunColours(rFormat);
    m_sPixels.Clear();
    m_vPixels.clear();
    m_vLuma.clear();
    m_vLumaAlpha.clear();
    m_sChroma.Clear();
    m_vU.clear();
    m_vV.clear();
    m_vChromaAlpha.clear();
    for (int i = 0; i < 2; ++i) {
        m_asSource[static_cast<std::size_t>(i)].Clear();
        m_avSource[static_cast<std::size_t>(i)].clear();
    }
    m_nSourcePair = -1;
}

void CRunLayer::AddRow(int y, int x, const std::uint32_t* pRGBA, int nPixels)
{
    int i = 0;
    while (i < nPixels) {
        const int nSame = CountSame(pRGBA + i, nPixels - i);
        if (!IsSeen(pRGBA[i])) {
            i += nSame;
            continue;
        }
        if (nSame >= PLAIN_PIXELS) {
            AddRun(y, x + i, nSame, pRGBA[i]);
            i += nSame;
            continue;
        }
        int nEnd = i + nSame;
        while (nEnd < nPixels && IsSeen(pRGBA[nEnd])) {
            const int n = CountSame(pRGBA + nEnd, nPixels - nEnd);
            if (n >= PLAIN_PIXELS)
                break;
            nEnd += n;
        }
        AddPixels(y, x + i, pRGBA + i, nEnd - i);
        i = nEnd;
    }
}

void CRunLayer::AddRun(int y, int x, int nPixels, std::uint32_t nRGBA)
{
    if (nPixels < 1 || !IsSeen(nRGBA))
        return;
    if (m_sFormat.bYUV) {
        SRunRows& rSource = SourceRow(y);
        std::vector<std::uint32_t>& rValues = m_avSource[static_cast<std::size_t>(y & 1)];
        rSource.Add(y, x, nPixels, rValues.size(), true);
        rValues.push_back(nRGBA);
    }
    SLayerRun* const pLast = m_sPixels.LastBefore(y, x);
    if (pLast != nullptr && pLast->bPlain && m_nLastColour == nRGBA) {
        pLast->nPixels += nPixels;
        return;
    }
    m_nLastColour = nRGBA;
    m_sPixels.Add(y, x, nPixels, m_sFormat.bYUV ? m_vLuma.size() : m_vPixels.size(), true);
    AddValues(&nRGBA, 1);
}

/// Pixels that all have alpha.
void CRunLayer::AddPixels(int y, int x, const std::uint32_t* pRGBA, int nPixels)
{
    if (m_sFormat.bYUV) {
        SRunRows& rSource = SourceRow(y);
        std::vector<std::uint32_t>& rValues = m_avSource[static_cast<std::size_t>(y & 1)];
        rSource.Add(y, x, nPixels, rValues.size(), false);
        rValues.insert(rValues.end(), pRGBA, pRGBA + nPixels);
    }
    SLayerRun* const pLast = m_sPixels.LastBefore(y, x);
    if (pLast != nullptr && !pLast->bPlain)
        pLast->nPixels += nPixels;
    else
        m_sPixels.Add(y, x, nPixels, m_sFormat.bYUV ? m_vLuma.size() : m_vPixels.size(), false);
    AddValues(pRGBA, nPixels);
}

void CRunLayer::AddValues(const std::uint32_t* pRGBA, int nPixels)
{
    const auto nNew = static_cast<std::size_t>(nPixels);
    if (!m_sFormat.bYUV) {
        const std::size_t nFirst = m_vPixels.size();
        m_vPixels.resize(nFirst + nNew);
        for (std::size_t i = 0; i < nNew; ++i)
            m_vPixels[nFirst + i] = m_oColours.Pixel(pRGBA[i]);
        return;
    }
    const std::size_t nFirst = m_vLuma.size();
    m_vLuma.resize(nFirst + nNew);
    m_vLumaAlpha.resize(nFirst + nNew);
    for (std::size_t i = 0; i < nNew; ++i) {
        m_vLuma[nFirst + i] = m_oColours.Luma(pRGBA[i]);
        m_vLumaAlpha[nFirst + i] = static_cast<unsigned char>(pRGBA[i] >> 24);
    }
}

/// The row as it comes, for its chroma. Two rows that are complete get it.
SRunRows& CRunLayer::SourceRow(int y)
{
    if (m_nSourcePair != y / 2) {
        AddChroma();
        m_nSourcePair = y / 2;
    }
    return m_asSource[static_cast<std::size_t>(y & 1)];
}

void CRunLayer::Finish()
{
    AddChroma();
}

void CRunLayer::AddChroma()
{
    SCursor asRows[2];
    int nFirst = std::numeric_limits<int>::max();
    for (int i = 0; i < 2; ++i) {
        const std::vector<SLayerRun>& rRuns = m_asSource[static_cast<std::size_t>(i)].vRuns;
        asRows[i] = {rRuns.data(), rRuns.data() + rRuns.size(),
                     m_avSource[static_cast<std::size_t>(i)].data()};
        if (!rRuns.empty())
            nFirst = std::min(nFirst, rRuns[0].x);
    }
    int x = nFirst & ~1;
    while (asRows[0].pRun != asRows[0].pEnd || asRows[1].pRun != asRows[1].pEnd) {
        int anEnds[2];
        std::uint32_t anRGBA[4];
        for (unsigned int i = 0; i < 2; ++i)
            anRGBA[2 * i] = anRGBA[2 * i + 1] = asRows[i].At(x, anEnds[i]);
        int nPlaces = (std::min(anEnds[0], anEnds[1]) - x) / 2;
        if (nPlaces == 0) {
            nPlaces = 1;
            for (unsigned int i = 0; i < 2; ++i)
                anRGBA[2 * i + 1] = asRows[i].At(x + 1, anEnds[i]);
        }
        if (IsSeen(anRGBA[0] | anRGBA[1] | anRGBA[2] | anRGBA[3]))
            AddChromaPlaces(m_nSourcePair, x / 2, nPlaces, anRGBA);
        x += 2 * nPlaces;
    }
    for (int i = 0; i < 2; ++i) {
        m_asSource[static_cast<std::size_t>(i)].Clear();
        m_avSource[static_cast<std::size_t>(i)].clear();
    }
}

/// Places that have the same four pixels each.
void CRunLayer::AddChromaPlaces(int y, int x, int nPlaces, const std::uint32_t (&anRGBA)[4])
{
    unsigned char u = 0;
    unsigned char v = 0;
    const unsigned char nAlpha = m_oColours.Chroma(anRGBA, u, v);
    SLayerRun* const pLast = m_sChroma.LastBefore(y, x);
    const bool bSame =
        pLast != nullptr && m_vU.back() == u && m_vV.back() == v && m_vChromaAlpha.back() == nAlpha;
    if (bSame && pLast->bPlain) {
        pLast->nPixels += nPlaces;
        return;
    }
    if (nPlaces == 1 && pLast != nullptr && !pLast->bPlain)
        ++pLast->nPixels;
    else
        m_sChroma.Add(y, x, nPlaces, m_vU.size(), nPlaces > 1);
    m_vU.push_back(u);
    m_vV.push_back(v);
    m_vChromaAlpha.push_back(nAlpha);
}

void CRunLayer::Append(const CRunLayer& rLower)
{
    m_sPixels.Append(rLower.m_sPixels, m_sFormat.bYUV ? m_vLuma.size() : m_vPixels.size());
    AppendTo(m_vPixels, rLower.m_vPixels);
    AppendTo(m_vLuma, rLower.m_vLuma);
    AppendTo(m_vLumaAlpha, rLower.m_vLumaAlpha);
    m_sChroma.Append(rLower.m_sChroma, m_vU.size());
    AppendTo(m_vU, rLower.m_vU);
    AppendTo(m_vV, rLower.m_vV);
    AppendTo(m_vChromaAlpha, rLower.m_vChromaAlpha);
}

std::size_t CRunLayer::CountBytes() const
{
    std::size_t nBytes = m_sPixels.CountBytes() + m_sChroma.CountBytes();
    nBytes += (m_vPixels.capacity() + m_avSource[0].capacity() + m_avSource[1].capacity()) * 4;
    nBytes += m_vLuma.capacity() + m_vLumaAlpha.capacity();
    nBytes += m_vU.capacity() + m_vV.capacity() + m_vChromaAlpha.capacity();
    return nBytes + m_asSource[0].CountBytes() + m_asSource[1].CountBytes();
}
