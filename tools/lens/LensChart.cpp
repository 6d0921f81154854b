#include "lens/LensChart.h"

#include "lens/NumberText.h"

#include <cmath>

namespace
{

const int WIDTH = 640;
const int HEIGHT = 480;
const int LEFT = 62;
const int RIGHT = 620;
const int TOP = 44;
const int BOTTOM = 420;

const unsigned int BLACK = 0x202020;
const unsigned int GRID = 0xE4E4E4;
const unsigned int MODEL = 0x909090;
const unsigned int LENS = 0xC81E1E;

/// The models' lines, in the order of ELensModel.
const std::vector<double> DASHES[] = {{}, {12.0, 4.0}, {6.0, 4.0}, {2.0, 3.0}, {10.0, 3.0, 2.0, 3.0}};

/// Where angles and heights lie in the picture.
class CAxes
{
public:
    explicit CAxes(double fEdge) : m_fStep(fEdge > 45.0 ? 10.0 : fEdge > 15.0 ? 5.0 : 1.0)
    {
        m_fLast = m_fStep * std::ceil(fEdge / m_fStep - 1e-9);
    }
    double Step() const { return m_fStep; }
    double Last() const { return m_fLast; }
    double X(double fAngle) const { return LEFT + (RIGHT - LEFT) * fAngle / m_fLast; }
    double Y(double fHeight) const { return BOTTOM - (BOTTOM - TOP) * fHeight; }

private:
    double m_fStep;
    double m_fLast = 0.0;
};

void DrawAxes(CCanvas& rCanvas, const CAxes& rAxes, const SLensSurvey& rSurvey)
{
    const auto Vertical = [&](double fAngle, unsigned int nColor) {
        rCanvas.Draw({{rAxes.X(fAngle), rAxes.Y(0.0)}, {rAxes.X(fAngle), rAxes.Y(1.0)}}, 1.0, nColor);
    };
    const auto Horizontal = [&](double fHeight, unsigned int nColor) {
        rCanvas.Draw({{rAxes.X(0.0), rAxes.Y(fHeight)}, {rAxes.X(rAxes.Last()), rAxes.Y(fHeight)}}, 1.0,
                     nColor);
    };
    const int nLast = static_cast<int>(std::lround(rAxes.Last() / rAxes.Step()));
    for (int i = 0; i <= nLast; ++i) {
        const double fAngle = rAxes.Step() * i;
        const std::string strText = FixedText(fAngle, 0);
        Vertical(fAngle, GRID);
        rCanvas.Write(rAxes.X(fAngle) - 0.5 * CCanvas::WidthOf(strText), BOTTOM + 6.0, strText, BLACK);
    }
    for (int i = 0; i <= 5; ++i) {
        const std::string strText = FixedText(0.2 * i, 1);
        Horizontal(0.2 * i, GRID);
        rCanvas.Write(LEFT - 8.0 - CCanvas::WidthOf(strText), rAxes.Y(0.2 * i) - 8.0, strText, BLACK);
    }
    Vertical(0.0, BLACK);
    Horizontal(0.0, BLACK);
    std::string strBelow = "degrees off the axis; height of the edge: 1";
    if (rSurvey.fPixels > 0.0)
        strBelow += " = " + FixedText(rSurvey.fPixels, 1) + " pixels";
    rCanvas.Write(0.5 * (LEFT + RIGHT - CCanvas::WidthOf(strBelow)), BOTTOM + 32.0, strBelow, BLACK);
}

template <class THeight>
std::vector<CCanvas::SPoint> CurveOf(const CAxes& rAxes, double fEdge, THeight Height)
{
    std::vector<CCanvas::SPoint> vPoints;
    const int nSteps = 400;
    for (int i = 0; i <= nSteps; ++i) {
        const double fAngle = fEdge * i / nSteps;
        vPoints.push_back({rAxes.X(fAngle), rAxes.Y(Height(fAngle))});
    }
    return vPoints;
}

void WriteLegendRow(CCanvas& rCanvas, int nRow, const std::string& strText, double fWidth,
                    unsigned int nColor, const std::vector<double>& vDashes)
{
    const double fTop = BOTTOM - 118.0 + 18.0 * nRow;
    std::vector<CCanvas::SPoint> vSample;
    for (int i = 0; i <= 32; ++i)
        vSample.push_back({RIGHT - 186.0 + i, fTop + 8.0});
    rCanvas.Draw(vSample, fWidth, nColor, vDashes);
    rCanvas.Write(RIGHT - 146.0, fTop, strText, BLACK);
}

} // namespace

CCanvas DrawLensChart(const std::string& strTitle, const SLensFile& rFile, const SLensSurvey& rSurvey)
{
    CCanvas oCanvas(WIDTH, HEIGHT);
    const CAxes oAxes(rSurvey.fEdge);
    DrawAxes(oCanvas, oAxes, rSurvey);
    int nRow = 5;
    for (const SModelComparison& rModel : rSurvey.vModels) {
        if (!rModel.bPossible)
            continue;
        const SLens sModel = SLens::FromModel(rModel.eModel, 2.0 * rSurvey.fEdge);
        const std::vector<double>& rDashes = DASHES[rModel.eModel];
        oCanvas.Draw(CurveOf(oAxes, rSurvey.fEdge, [&sModel](double f) { return LensHeightAt(sModel, f); }),
                     1.0, MODEL, rDashes);
        WriteLegendRow(oCanvas, nRow--, LensModelName(rModel.eModel), 1.0, MODEL, rDashes);
    }
    const auto Height = [&rFile, &rSurvey](double f) { return SurveyHeight(rFile, rSurvey, f); };
    oCanvas.Draw(CurveOf(oAxes, rSurvey.fEdge, Height), 2.0, LENS);
    WriteLegendRow(oCanvas, nRow, "this lens", 2.0, LENS, {});
    const std::size_t nMost = 64;
    oCanvas.Write(LEFT, 14.0, strTitle.size() > nMost ? strTitle.substr(0, nMost - 3) + "..." : strTitle,
                  BLACK);
    return oCanvas;
}
