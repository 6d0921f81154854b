/// \file
/// Asks the driver how making objects ended, and tells its answers from what the host left behind.
#pragma once

class CReport;

/// The driver is asked only around frames that make objects: a steady frame asks nothing.
/// Thread: GL thread, context current. Fails: never.
class CDriverWatch
{
public:
    explicit CDriverWatch(CReport& rReport) : m_rReport(rReport) {}
    CDriverWatch(const CDriverWatch&) = delete;
    CDriverWatch& operator=(const CDriverWatch&) = delete;

    /// An object is about to be made. Errors that wait already are the host's, unless this frame has begun
    /// before: they are logged and count for nothing.
    void BeginMaking();
    /// True when an object of this frame could not be made for lack of memory. Stays true until EndFrame.
    bool LacksMemory();
    /// Somebody else has met a lack of memory in this frame.
    void NoteLack() { m_bLacks = true; }
    /// Takes what the host has left, with a log line, before calls that are to be judged.
    void TakeHostErrors(const char* pFunction);
    /// A frame begins whose errors are going to be told: what the host has left is taken first.
    void BeginToldFrame();
    /// The last GL error of this frame; asks the driver when none is known yet.
    unsigned int ErrorOfFrame();
    void EndFrame();

    unsigned int m_nErrorOfFrame = 0; ///< 0: none was met

private:
    CReport& m_rReport;
    bool m_bMaking = false;    ///< objects were made since the driver was last asked
    bool m_bFrameOurs = false; ///< what waits in the driver is of this frame
    bool m_bLacks = false;
};
