/// \file
/// Mesh generator: turns a view and a lens into triangles whose texture coordinates sample the input image.
#pragma once

#include "dewarp/lenses/LensSizes.h"
#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SGRect.h"
#include "platform/Export.h"

/// Builds one mesh at a time into m_pVertices and m_pTexCoords.
/// Units: degrees at every argument; texture coordinates 0..1 from the top left of the input image.
/// Owns: its arrays; they grow, never shrink, until destruction, and stay valid until the next Generate call.
/// Thread: any, serialised by the host. Touches no GL.
/// Fails: never; an unknown lens counts as equidistant. Impossible states stop the program on an assertion.
class LUMOR_API CCustomGPUGeometry
{
public:
    CCustomGPUGeometry() = default;
    ~CCustomGPUGeometry();
    CCustomGPUGeometry(const CCustomGPUGeometry&) = delete;
    CCustomGPUGeometry& operator=(const CCustomGPUGeometry&) = delete;

    // Lens model.
    /// Fisheye radius in pixels for a lens and an input size; also stored in m_fRadius.
    float DetermineRadius(int nLensType, int nWidth, int nHeight);
    /// Fills m_pTheta2rMapping: 92 normalised radii, one a degree. Needs DetermineRadius first.
    void GenerateTheta2rMapping(int nLensType);
    /// Fills m_pR2ThetaMapping: (int)radius + 2 field angles, one a pixel. Needs DetermineRadius first.
    void GenerateR2ThetaMapping(int nLensType);
    /// Unit direction (z along the optical axis) of a pixel offset from the fisheye centre. The distance must
    /// stay below m_fRadius + 1.
    void Fisheye2Sphere(float x, float y, float& fX, float& fY, float& fZ) const;

    // Buffers: each makes room for n elements; a larger request loses the old contents.
    void CheckTemporaryGridBuffer(int n);
    void CheckSinCosBufferSize(int n);
    void CheckBufferSize(int n);

    // Primitives. One that has no room, or whose index lies outside its buffer, does nothing. Vertex numbers
    // count in m_pVCAMVertices, which exists while the virtual-camera mesh is built.
    void AddVertex(float x, float y, float z, float u, float v);
    void AddVertex(int nIndex, float x, float y);
    void AddTriangle(float x1, float y1, float x2, float y2, int& nIndex);
    void AddTrianglesForQuad(float x, float y, float y2, int& nIndex);
    void AddTriangle(SGTriangle& sTriangle);
    /// Cuts the grid in m_pTempGrid (rows nRowStride floats apart) into output vertices from nFirstVertex on;
    /// returns the vertex behind the last one written, nFirstVertex when nothing was.
    int GenerateTriangles(int nRows, int nCols, int nRowStride, int nFirstVertex);
    void ReplicateVertex(int nFrom, int nTo);

    // Meshes. Each sets m_nVertexCount and m_fGeometryAspect.
    void GenerateFisheyeVertices(int nWidth, int nHeight);
    void GenerateCircularFisheyeVertices(int nLensType, int nWidth, int nHeight);
    void GeneratePanoramaVertices(int nLensType, int nWidth, int nHeight);
    int GenerateDualPanoramaVertices(int nLensType, float fRotationAngle, float fElevationOffset, int nWidth,
                                     int nHeight);
    int GenerateTriplePanoramaVertices(int nLensType, float fRotationAngle, float fElevationOffset,
                                       int nWidth, int nHeight);
    void GeneratePanoramaWallVertices(int nLensType, float fTiltAngle, float fRotationAngle, bool bFixedSpan,
                                      int nWidth, int nHeight);
    void GenerateVCAMVertices(int nLensType, int nWidth, int nHeight);
    /// Triangles of a mask polygon in normalised device coordinates; nothing for fewer than 3 points.
    void GenerateFisheyeMaskVertices(SGPolygon sPolygon, int nWidth, int nHeight);
    /// One full-viewport quad for each cell of a font atlas.
    void GenerateFontVertices(int nWidth, int nHeight, int nCols, int nRows);

    static constexpr int nVCAMBufferSize = 36000; ///< vertices m_pVCAMVertices holds whenever there is one

    float* m_pR2ThetaMapping = nullptr;
    float* m_pTheta2rMapping = nullptr;
    int m_nR2ThetaLensType = -1;
    int m_nTheta2rLensType = -1;
    float m_fR2ThetaRadius = 0.0f;
    float m_fTheta2rRadius = 0.0f;
    float* m_pTempGrid = nullptr; ///< scratch grid, 5 floats (x, y, z, u, v) a point
    int m_nTempGridSize = 0;
    float* m_pVCAMVertices = nullptr; ///< scratch list, 5 floats for each of nVCAMBufferSize vertices
    float* m_pSin = nullptr;
    float* m_pCos = nullptr;
    int m_nSinCosSize = 0;
    float m_fRadius = 0.0f;
    int m_nImageWidth = 0;
    int m_nImageHeight = 0;
    int m_nVertexCount = 0;
    float* m_pVertices = nullptr;  ///< 3 floats a vertex
    float* m_pTexCoords = nullptr; ///< 2 floats a vertex
    int m_nBufferSize = 0;         ///< vertices
    float m_fGeometryAspect = 1.0f;

private:
    bool HasVCAMRoom(int nFirst, int nCount) const;
    /// AddVertex of the same arguments, for an index known to lie within the list.
    void PutVertex(int nIndex, float x, float y);
};
