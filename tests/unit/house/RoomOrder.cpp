#include "RoomOrder.h"

#include "SourceScan.h"

#include <algorithm>
#include <map>
#include <set>

namespace
{

/// Room, needed room, and the includes that make it so.
using MNeeds = std::map<std::string, std::map<std::string, std::vector<std::string>>>;

MNeeds NeedsOf(const MSources& oSources)
{
    MNeeds oNeeds;
    for (const auto& [strPath, strSource] : oSources) {
        for (const std::string& strInclude : IncludesOf(strSource)) {
            const std::string strNeeded = RoomOf(strInclude.substr(1, strInclude.size() - 2));
            if (strInclude[0] == '"' && strNeeded != RoomOf(strPath))
                oNeeds[RoomOf(strPath)][strNeeded].push_back(
                    Concatenate({strPath, " includes ", strInclude}));
        }
    }
    return oNeeds;
}

/// Every room that a room needs, through others too.
std::set<std::string> Reached(const MNeeds& oNeeds, const std::string& strRoom)
{
    std::set<std::string> oReached;
    std::vector<std::string> vOpen = {strRoom};
    while (!vOpen.empty()) {
        const auto itNeeds = oNeeds.find(vOpen.back());
        vOpen.pop_back();
        if (itNeeds == oNeeds.end())
            continue;
        for (const auto& [strNeeded, vIncludes] : itNeeds->second) {
            if (oReached.insert(strNeeded).second)
                vOpen.push_back(strNeeded);
        }
    }
    return oReached;
}

bool IsHeader(const std::string& strPath)
{
    return strPath.ends_with(".h");
}

/// The rooms whose headers hold a class.
std::map<std::string, std::set<std::string>> HomesOf(const MSources& oSources)
{
    std::map<std::string, std::set<std::string>> oHomes;
    for (const auto& [strPath, strSource] : oSources) {
        if (!IsHeader(strPath))
            continue;
        for (const std::string& strType : ScanSource(strSource).vTypes)
            oHomes[strType].insert(RoomOf(strPath));
    }
    return oHomes;
}

} // namespace

std::string RoomOf(const std::string& strPath)
{
    if (strPath == "dewarp/LumorDewarp.h")
        return strPath;
    if (strPath.starts_with("dewarp/Dewarper."))
        return "dewarp/Dewarper";
    const std::size_t nFirst = strPath.find('/');
    const std::string strFolder = strPath.substr(0, nFirst);
    const std::size_t nSecond = nFirst == std::string::npos ? nFirst : strPath.find('/', nFirst + 1);
    return strFolder == "dewarp" && nSecond != std::string::npos ? strPath.substr(0, nSecond) : strFolder;
}

std::vector<std::string> RoomsThatNeedEachOther(const MSources& oSources)
{
    const MNeeds oNeeds = NeedsOf(oSources);
    std::vector<std::string> vBroken;
    for (const auto& [strRoom, oNeeded] : oNeeds) {
        for (const auto& [strNeeded, vIncludes] : oNeeded) {
            if (Reached(oNeeds, strNeeded).contains(strRoom))
                vBroken.push_back(
                    Concatenate({strRoom, " and ", strNeeded, " need each other: ", vIncludes.front(),
                                 " (1 of ", std::to_string(vIncludes.size()), ")"}));
        }
    }
    return vBroken;
}

std::vector<std::string> MethodsAwayFromHome(const MSources& oSources)
{
    const auto oHomes = HomesOf(oSources);
    std::vector<std::string> vBroken;
    for (const auto& [strPath, strSource] : oSources) {
        if (IsHeader(strPath))
            continue;
        const SScan sScan = ScanSource(strSource);
        for (const SFunction& sFunction : sScan.vFunctions) {
            const std::size_t nColons = sFunction.strName.find("::");
            const std::string strClass = sFunction.strName.substr(0, nColons);
            const auto itHome = oHomes.find(strClass);
            const bool bLocal =
                std::find(sScan.vTypes.begin(), sScan.vTypes.end(), strClass) != sScan.vTypes.end();
            if (nColons != std::string::npos && !bLocal && itHome != oHomes.end() &&
                !itHome->second.contains(RoomOf(strPath)))
                vBroken.push_back(Concatenate(
                    {strPath, ": ", sFunction.strName, " of a class in ", *itHome->second.begin()}));
        }
    }
    return vBroken;
}

std::vector<std::string> LongFunctions(const MSources& oSources, int nLines)
{
    std::vector<std::string> vLong;
    for (const auto& [strPath, strSource] : oSources) {
        for (const SFunction& sFunction : ScanSource(strSource).vFunctions) {
            if (sFunction.nLines > nLines)
                vLong.push_back(
                    Concatenate({strPath, ":", std::to_string(sFunction.nLine), ": ", sFunction.strName,
                                 " has ", std::to_string(sFunction.nLines), " lines"}));
        }
    }
    return vLong;
}
