// OpenCV: cv::fisheye makes a map in the fixed-point form that cv::remap takes fastest.

#include "bench/peers/Peer.h"

#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>

namespace
{

const double DEGREE = 3.14159265358979 / 180.0;

/// One plane, or several interleaved ones, with their map.
struct SMappedPlane
{
    cv::Mat oInput;
    cv::Mat oMap;
    cv::Mat oFractions;
    cv::Mat oOutput;
    int nShrink = 1; ///< 2 for chroma
};

class CRemapPeer final : public CPeer
{
public:
    CRemapPeer(const SPeerCase& rCase, CPeerFrame& rFrame) : m_sCase(rCase)
    {
        const int w = rFrame.Width();
        const int h = rFrame.Height();
        if (rCase.ePixels == PEER_RGBA) {
            AddPlane(cv::Mat(h, w, CV_8UC4, rFrame.RGBA()), 1);
        } else {
            AddPlane(cv::Mat(h, w, CV_8UC1, rFrame.Luma()), 1);
            AddPlane(cv::Mat(h / 2, w / 2, CV_8UC2, rFrame.UV()), 2);
        }
        CRemapPeer::SetPan(PEER_FIRST_PAN);
        CRemapPeer::Frame();
    }

    std::string Name() const override { return "OpenCV"; }

    void SetPan(float fPan) override
    {
        for (SMappedPlane& rPlane : m_vPlanes)
            MakeMap(rPlane, static_cast<double>(fPan));
    }

    void Frame() override
    {
        for (SMappedPlane& rPlane : m_vPlanes)
            cv::remap(rPlane.oInput, rPlane.oOutput, rPlane.oMap, rPlane.oFractions, cv::INTER_LINEAR,
                      cv::BORDER_CONSTANT);
    }

    SLuma Luma() override
    {
        const cv::Mat& rOutput = m_vPlanes[0].oOutput;
        cv::Mat oGray = rOutput;
        if (rOutput.channels() == 4)
            cv::cvtColor(rOutput, oGray, cv::COLOR_RGBA2GRAY);
        return {oGray.cols, oGray.rows, std::vector<unsigned char>(oGray.datastart, oGray.dataend)};
    }

private:
    void AddPlane(const cv::Mat& rInput, int nShrink)
    {
        SMappedPlane sPlane;
        sPlane.oInput = rInput;
        sPlane.nShrink = nShrink;
        m_vPlanes.push_back(sPlane);
    }

    /// OpenCV's fisheye model without distortion terms is the equidistant lens.
    void MakeMap(SMappedPlane& rPlane, double fPan) const
    {
        const double fInput = 1.0 / rPlane.nShrink;
        const double w = rPlane.oInput.cols;
        const double h = rPlane.oInput.rows;
        const double fPerRadian = std::max(w, h) / 2.0 / (90.0 * DEGREE);
        const cv::Matx33d oLens(fPerRadian, 0.0, w / 2.0 - 0.5, 0.0, fPerRadian, h / 2.0 - 0.5, 0.0, 0.0,
                                1.0);
        const cv::Size oSize(m_sCase.nWidth / rPlane.nShrink, m_sCase.nHeight / rPlane.nShrink);
        const double fHalf = std::tan(static_cast<double>(PEER_HEIGHT_ANGLE) / 2.0 * DEGREE);
        const double fFocus = m_sCase.nHeight * fInput / 2.0 / fHalf;
        const cv::Matx33d oView(fFocus, 0.0, oSize.width / 2.0 - 0.5, 0.0, fFocus, oSize.height / 2.0 - 0.5,
                                0.0, 0.0, 1.0);
        const double t = static_cast<double>(PEER_TILT) * DEGREE;
        const double a = (fPan - static_cast<double>(PEER_FIRST_PAN)) * DEGREE;
        const cv::Matx33d oTilt(1.0, 0.0, 0.0, 0.0, std::cos(t), -std::sin(t), 0.0, std::sin(t), std::cos(t));
        const cv::Matx33d oTurn(std::cos(a), std::sin(a), 0.0, -std::sin(a), std::cos(a), 0.0, 0.0, 0.0, 1.0);
        const cv::Matx33d oFromView = oTurn * oTilt;
        cv::fisheye::initUndistortRectifyMap(oLens, cv::Vec4d(0.0, 0.0, 0.0, 0.0), oFromView.t(), oView,
                                             oSize, CV_16SC2, rPlane.oMap, rPlane.oFractions);
    }

    SPeerCase m_sCase;
    std::vector<SMappedPlane> m_vPlanes;
};

} // namespace

PPeer MakeRemapPeer(const SPeerCase& rCase, CPeerFrame& rFrame)
{
    return std::make_unique<CRemapPeer>(rCase, rFrame);
}
