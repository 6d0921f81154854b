/// \file
/// How far from the centre a ray lands: the part of a lens that is alike in all directions.
#pragma once

#include <array>
#include <vector>

struct SGivenLens;
struct SLens;

/// Heights over field angles, rising from 0 to the lens's edge and on from there in a straight line, so that
/// what lies beyond can be told from what lies inside. Heights are parts of the one at the edge; a
/// calibration's count in focal lengths.
/// Units: radians off the optical axis. Owns: its rows. Thread: any. Fails: never for lenses without fault.
class CRadialCurve
{
public:
    CRadialCurve() = default;
    explicit CRadialCurve(const SLens& rLens);
    /// A lens of the list; its rows count as they stand, with straight lines between. The edge is at 90
    /// degrees.
    explicit CRadialCurve(const SGivenLens& rLens);

    double Edge() const { return m_fEdge; }
    double EdgeHeight() const { return m_fEdgeHeight; }
    double Height(double fAngle) const;
    /// The angle of a height. False beyond the edge, with the edge.
    bool Angle(double fHeight, double& rAngle) const;

private:
    enum EForm
    {
        FORM_LINES, ///< rows with straight lines between
        FORM_CUBIC, ///< rows with a monotone cubic between
        FORM_EQUISOLID,
        FORM_STEREOGRAPHIC,
        FORM_ORTHOGRAPHIC,
        FORM_RECTILINEAR,
        FORM_POLYNOMIAL,
        FORM_UNIFIED,
    };

    void SetRows(const SLens& rLens);
    void SetModel(const SLens& rLens);
    void SetCalibration(const SLens& rLens);
    void FindSlopes();
    void FindEdge(double fMost);
    void CloseAt(double fEdge, double fWholeHeight);
    double Inside(double fAngle) const;
    double Between(double fAngle) const;

    EForm m_eForm = FORM_LINES;
    std::vector<double> m_vAngles;
    std::vector<double> m_vHeights;
    std::vector<double> m_vSlopes;
    std::array<double, 4> m_aRadial{};
    double m_fXi = 0.0;
    double m_fScale = 1.0; ///< of Inside
    double m_fEdge = 0.0;
    double m_fEdgeHeight = 1.0;
    double m_fBeyond = 1.0; ///< slope beyond the edge
};
