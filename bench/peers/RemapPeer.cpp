// OpenCV: cv::fisheye makes a map in the fixed-point form that cv::remap takes fastest.

#include "bench/peers/Peer.h"
#include "bench/peers/PlaneRing.h"

#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>

namespace
{

const double DEGREE = 3.14159265358979 / 180.0;

/// One plane, or several interleaved ones, with their map.
struct SMappedPlane
{
    std::vector<cv::Mat> vInputs; ///< taken in turn, and so are the outputs
    std::vector<cv::Mat> vOutputs;
    cv::Mat oMap;
    cv::Mat oFractions;
    int nShrink = 1; ///< 2 for chroma
};

class CRemapPeer final : public CPeer
{
public:
    CRemapPeer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bPixels)
        : m_sCase(rCase), m_bPixels(bPixels), m_oPlanes(rCase.nBuffers, rCase.bOwnPlanes),
          m_vPixels(static_cast<std::size_t>(rCase.nBuffers))
    {
        cv::setNumThreads(rCase.nThreads);
        const cv::Size oSize(rFrame.Width(), rFrame.Height());
        const std::size_t nPixels =
            static_cast<std::size_t>(rFrame.Width()) * static_cast<std::size_t>(rFrame.Height());
        if (rCase.ePixels == PEER_RGBA) {
            m_oPlanes.Add(rFrame.RGBA(), 4 * nPixels);
            AddPlane(oSize, CV_8UC4, 1);
        } else {
            m_oPlanes.Add(rFrame.Luma(), nPixels);
            m_oPlanes.Add(rFrame.UV(), nPixels / 2);
            AddPlane(oSize, CV_8UC1, 1);
            AddPlane(oSize / 2, CV_8UC2, 2);
        }
        CRemapPeer::SetPan(PEER_FIRST_PAN);
        for (int i = 0; i < rCase.nBuffers; ++i)
            CRemapPeer::Frame(); // every piece of memory was written once
    }

    std::string Name() const override { return "OpenCV"; }

    void SetPan(float fPan) override
    {
        for (SMappedPlane& rPlane : m_vPlanes)
            MakeMap(rPlane, static_cast<double>(fPan));
    }

    void Frame() override
    {
        m_nTurn = (m_nTurn + 1) % m_vPixels.size();
        for (SMappedPlane& rPlane : m_vPlanes)
            cv::remap(rPlane.vInputs[m_nTurn], rPlane.vOutputs[m_nTurn], rPlane.oMap, rPlane.oFractions,
                      cv::INTER_LINEAR, cv::BORDER_CONSTANT);
        if (m_bPixels && m_vPlanes.size() == 2)
            cv::cvtColorTwoPlane(m_vPlanes[0].vOutputs[m_nTurn], m_vPlanes[1].vOutputs[m_nTurn],
                                 m_vPixels[m_nTurn], cv::COLOR_YUV2BGRA_NV12);
    }

    SLuma Luma() override
    {
        const cv::Mat& rOutput = m_vPlanes[0].vOutputs[m_nTurn];
        cv::Mat oGray = rOutput;
        if (rOutput.channels() == 4)
            cv::cvtColor(rOutput, oGray, cv::COLOR_RGBA2GRAY);
        return {oGray.cols, oGray.rows, std::vector<unsigned char>(oGray.datastart, oGray.dataend)};
    }

private:
    void AddPlane(const cv::Size& rSize, int nType, int nShrink)
    {
        SMappedPlane sPlane;
        const int nPlane = static_cast<int>(m_vPlanes.size());
        for (int i = 0; i < m_oPlanes.CountSets(); ++i) {
            sPlane.vInputs.emplace_back(rSize, nType, m_oPlanes.Plane(nPlane));
            m_oPlanes.Next();
        }
        sPlane.vOutputs.resize(sPlane.vInputs.size());
        sPlane.nShrink = nShrink;
        m_vPlanes.push_back(sPlane);
    }

    /// OpenCV's fisheye model without distortion terms is the equidistant lens.
    void MakeMap(SMappedPlane& rPlane, double fPan) const
    {
        const double fInput = 1.0 / rPlane.nShrink;
        const double w = rPlane.vInputs[0].cols;
        const double h = rPlane.vInputs[0].rows;
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
    bool m_bPixels;
    CPlaneRing m_oPlanes;
    std::vector<SMappedPlane> m_vPlanes;
    std::vector<cv::Mat> m_vPixels; ///< where YUV becomes pixels
    std::size_t m_nTurn = 0;
};

} // namespace

PPeer MakeRemapPeer(const SPeerCase& rCase, CPeerFrame& rFrame, bool bPixels)
{
    return std::make_unique<CRemapPeer>(rCase, rFrame, bPixels);
}
