/// \file
/// The meshes written down formula by formula, one point after the other, with every sine, cosine and
/// arctangent taken from the C library where the formula has one. Slow on purpose: the generator must give
/// the same bits, and the benchmarks show what it gains.
#pragma once

#include <cstddef>
#include <vector>

struct SPlainMesh
{
    std::vector<float> vVertices;  ///< 3 floats a vertex
    std::vector<float> vTexCoords; ///< 2 floats a vertex
    std::size_t nCount = 0;        ///< vertices
    float fAspect = 1.0f;
};

float PlainRadius(int nLensType, int nWidth, int nHeight);
std::vector<float> PlainTheta2r(int nLensType);
std::vector<float> PlainR2Theta(int nLensType, float fRadius);

void PlainCircularFisheye(int nLensType, int nWidth, int nHeight, SPlainMesh& sMesh);
void PlainPanorama(int nLensType, int nWidth, int nHeight, SPlainMesh& sMesh);
void PlainDualPanorama(int nLensType, float fRotation, float fElevation, int nWidth, int nHeight,
                       SPlainMesh& sMesh);
void PlainTriplePanorama(int nLensType, float fRotation, float fElevation, int nWidth, int nHeight,
                         SPlainMesh& sMesh);
void PlainPanoramaWall(int nLensType, float fTilt, float fRotation, bool bFixedSpan, int nWidth, int nHeight,
                       SPlainMesh& sMesh);
void PlainVCAM(int nLensType, int nWidth, int nHeight, SPlainMesh& sMesh);
