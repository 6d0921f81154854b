#include "bench/peers/MachineLoad.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace
{

struct STimes
{
    double fBusy = 0.0; ///< seconds
    double fTotal = 0.0;
};

/// First line of /proc/stat: user nice system idle iowait irq softirq steal, in clock ticks of all
/// processors.
STimes MachineTimes()
{
    std::ifstream oStat("/proc/stat");
    std::string strWord;
    oStat >> strWord;
    STimes sTimes;
    for (int i = 0; i < 8; ++i) {
        double fTicks = 0.0;
        if (!(oStat >> fTicks))
            break;
        const bool bIdle = i == 3 || i == 4;
        sTimes.fTotal += fTicks;
        sTimes.fBusy += bIdle ? 0.0 : fTicks;
    }
    const double fSecond = static_cast<double>(sysconf(_SC_CLK_TCK));
    sTimes.fBusy /= fSecond;
    sTimes.fTotal /= fSecond;
    return sTimes;
}

double OwnSeconds()
{
    rusage sUsage{};
    getrusage(RUSAGE_SELF, &sUsage);
    const auto Seconds = [](const timeval& rTime) {
        return static_cast<double>(rTime.tv_sec) + static_cast<double>(rTime.tv_usec) * 1e-6;
    };
    return Seconds(sUsage.ru_utime) + Seconds(sUsage.ru_stime);
}

} // namespace

CMachineLoad::CMachineLoad()
{
    const STimes sNow = MachineTimes();
    m_fBusy = sNow.fBusy;
    m_fTotal = sNow.fTotal;
    m_fOwn = OwnSeconds();
}

double CMachineLoad::OthersShare() const
{
    const STimes sNow = MachineTimes();
    const double fTotal = sNow.fTotal - m_fTotal;
    if (fTotal <= 0.0)
        return 0.0;
    return std::clamp((sNow.fBusy - m_fBusy - (OwnSeconds() - m_fOwn)) / fTotal, 0.0, 1.0);
}

double CMachineLoad::OwnMilliseconds() const
{
    return (OwnSeconds() - m_fOwn) * 1000.0;
}
