/// \file
/// A dewarper of either class with what it draws from and into, for sweeps that treat both alike.
#pragma once

#include "dewarp/CustomGPUDewarper.h"

#include <memory>
#include <vector>

inline constexpr int SUBJECT_WIDTH = 48;
inline constexpr int SUBJECT_HEIGHT = 36;

/// A started dewarper with masks, text and an output overlay. Owns: dewarper, frame and buffers.
class CFaultSubject
{
public:
    virtual ~CFaultSubject() = default;

    virtual CCustomGPUDewarper& Dewarper() = 0;
    virtual bool InitGL(int nWidth, int nHeight) = 0;
    virtual bool StartGL() = 0;
    virtual bool StopGL() = 0;
    /// Hands over the frame and draws it.
    virtual bool Draw() = 0;
    /// The bytes that were drawn last.
    virtual std::vector<unsigned char> Picture() = 0;
    /// Ends the dewarper.
    virtual void Destroy() = 0;
};

enum ESubject : int
{
    SUBJECT_DESKTOP,
    SUBJECT_BUFFERS,
};

std::unique_ptr<CFaultSubject> MakeSubject(ESubject eSubject);
