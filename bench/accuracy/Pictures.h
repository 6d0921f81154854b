/// \file
/// A room seen through a lens, beside the room itself.
#pragma once

#include "bench/accuracy/Cases.h"
#include "bench/accuracy/ViewSession.h"

/// Decibels (PSNR over red, green and blue of the whole picture) against the room drawn directly, without
/// lens, frame and mesh.
struct SPictureResult
{
    double fView = 0.0;  ///< the library's picture
    double fRemap = 0.0; ///< the same frame sampled bilinearly at the exact places, in double precision
};

/// The frame of a group's room: the lens curve, supersampled.
class CRoomFrame
{
public:
    explicit CRoomFrame(const SCaseGroup& sGroup);

    /// \param strFolder where view, room and their difference go as one PNG; empty: nowhere
    SPictureResult Compare(const SAccuracyCase& sCase, CViewSession& oSession, const std::string& strFolder);

private:
    STestImage m_sPicture;
    CTestFrame m_oFrame;
};
