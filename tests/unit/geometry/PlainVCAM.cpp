#include "PlainMeshes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace
{

struct SSpherePoint
{
    float x, y, z, u, v;
};

/// The quadrant mesh of one image, a list of vertices a band.
struct SQuadrant
{
    int W, H;
    float R;
    std::vector<float> vTable;
    std::vector<std::vector<SSpherePoint>> vBands;

    SSpherePoint Project(float x, float y) const;
    void Quad(std::vector<SSpherePoint>& vBand, float x, float y, float y2) const;
    void Triangle(std::vector<SSpherePoint>& vBand, float x1, float y1, float x2, float y2) const;
    void Build();
    void CloseSeams();
};

} // namespace

SSpherePoint SQuadrant::Project(float x, float y) const
{
    const float s = std::sqrt(x * x + y * y) * (-0.5f / R) + 1.5f;
    const float fW = static_cast<float>(W);
    const float fH = static_cast<float>(H);
    const float px = std::max(std::min(s * x, fW / 2.0f), -fW / 2.0f);
    const float py = std::max(std::min(s * y, fH / 2.0f), -fH / 2.0f);
    const float d = std::sqrt(px * px + py * py);
    const std::size_t k = static_cast<std::size_t>(d);
    const float f = d - static_cast<float>(k);
    const float theta = (vTable.at(k + 1) * f + vTable.at(k) * (1.0f - f)) * 3.1415927f / 180.0f;
    const float phi = std::atan2(py, px);
    const int nHalfW = W / 2;
    const int nHalfH = H / 2;
    return {std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), -std::cos(theta),
            (px + static_cast<float>(nHalfW) + 1.0f) / fW, (static_cast<float>(nHalfH) - py) / fH};
}

void SQuadrant::Triangle(std::vector<SSpherePoint>& vBand, float x1, float y1, float x2, float y2) const
{
    vBand.push_back(Project(x1, y1));
    vBand.push_back(Project(x2, y1));
    vBand.push_back(Project(x2, y2));
}

void SQuadrant::Quad(std::vector<SSpherePoint>& vBand, float x, float y, float y2) const
{
    const SSpherePoint sTop = vBand[vBand.size() - 1];
    const SSpherePoint sBottom = vBand[vBand.size() - 2];
    const SSpherePoint sNewTop = Project(x, std::min(std::sqrt(R * R - x * x), y));
    const SSpherePoint sNewBottom = Project(x, y2);
    for (const SSpherePoint& s : {sTop, sBottom, sNewTop, sBottom, sNewBottom, sNewTop})
        vBand.push_back(s);
}

void SQuadrant::Build()
{
    const float Y0 = std::min(static_cast<float>(H) * 0.5f, R);
    const float X0 = std::min(static_cast<float>(W) * 0.5f, R);
    std::vector<float> vX(31);
    for (int i = 0; i < 30; ++i)
        vX[static_cast<std::size_t>(i)] = (2.0f * X0 / 60.0f) * static_cast<float>(i) - X0;
    float fPrevEdge = -std::sqrt(R * R - Y0 * Y0);
    float fPrevY = Y0;
    for (int j = 0; j < 30; ++j) {
        const float y = j == 29 ? 0.0f : Y0 + Y0 * (-2.0f) / 60.0f * static_cast<float>(j + 1);
        float E = -std::sqrt(R * R - y * y);
        if (E < vX[0])
            E = vX[0];
        std::size_t m = 0;
        while (!(vX.at(m) > E))
            ++m;
        std::vector<SSpherePoint> vBand;
        if (vX[m] <= fPrevEdge) {
            Triangle(vBand, E, y, vX[m], std::sqrt(R * R - vX[m] * vX[m]));
            for (++m; vX.at(m) < fPrevEdge; ++m)
                Quad(vBand, vX[m], fPrevY, y);
            Quad(vBand, fPrevEdge, fPrevY, y);
        } else {
            Triangle(vBand, E, y, fPrevEdge, fPrevY);
            Quad(vBand, vX[m], fPrevY, y);
        }
        for (; m < 31; ++m)
            Quad(vBand, vX[m], fPrevY, y);
        vBands.push_back(vBand);
        fPrevEdge = E;
        fPrevY = y;
    }
}

void SQuadrant::CloseSeams()
{
    for (std::vector<SSpherePoint>& vBand : vBands) {
        for (std::size_t n : {vBand.size() - 4, vBand.size() - 2, vBand.size() - 1}) {
            vBand[n].x = 0.0f;
            vBand[n].u = 0.5f;
        }
    }
    std::vector<SSpherePoint>& vLast = vBands.back();
    for (std::size_t n = 0; n < vLast.size(); ++n) {
        if (n % 6 == 0 || n % 6 == 1 || n % 6 == 4) {
            vLast[n].y = 0.0f;
            vLast[n].v = 0.5f;
        }
    }
}

static void Emit(SPlainMesh& sMesh, float x, float y, float z, float u, float v)
{
    sMesh.vVertices.insert(sMesh.vVertices.end(), {x, y, z});
    sMesh.vTexCoords.insert(sMesh.vTexCoords.end(), {u, v});
    ++sMesh.nCount;
}

void PlainVCAM(int nLensType, int nWidth, int nHeight, SPlainMesh& sMesh)
{
    SQuadrant sQuadrant;
    sQuadrant.W = nWidth;
    sQuadrant.H = nHeight;
    sQuadrant.R = PlainRadius(nLensType, nWidth, nHeight);
    sQuadrant.vTable = PlainR2Theta(nLensType, sQuadrant.R);
    sQuadrant.Build();
    sQuadrant.CloseSeams();
    sMesh.vVertices.clear();
    sMesh.vTexCoords.clear();
    sMesh.nCount = 0;
    sMesh.fAspect = 1.0f;
    for (const std::vector<SSpherePoint>& vBand : sQuadrant.vBands) {
        for (const SSpherePoint& s : vBand)
            Emit(sMesh, s.x, s.y, s.z, s.u, s.v);
        for (std::size_t n = vBand.size(); n-- > 0;)
            Emit(sMesh, -vBand[n].x, vBand[n].y, vBand[n].z, 0.5f - (vBand[n].u - 0.5f), vBand[n].v);
    }
    for (std::size_t j = sQuadrant.vBands.size(); j-- > 0;) {
        const std::vector<SSpherePoint>& vBand = sQuadrant.vBands[j];
        for (const SSpherePoint& s : vBand)
            Emit(sMesh, s.x, -s.y, s.z, s.u, 1.0f - s.v);
        for (std::size_t n = vBand.size(); n-- > 0;) {
            const SSpherePoint& s = vBand[n];
            Emit(sMesh, -s.x, -s.y, s.z, 0.5f - (s.u - 0.5f), 1.0f - s.v);
        }
    }
}
