/// \file
/// What other processes, and other guests of the same host, took of the processors.
#pragma once

/// A span of time, from construction on. Thread: any. Where the system does not tell, nobody took anything.
class CMachineLoad
{
public:
    CMachineLoad();

    /// Share of all processors' time since construction that others used, 0..1.
    double OthersShare() const;
    /// Processor time of this process since construction, all threads together, in milliseconds.
    double OwnMilliseconds() const;

private:
    double m_fBusy;
    double m_fTotal;
    double m_fOwn;
};
