#include "IncludeRules.h"

#include "SourceScan.h"

#include <algorithm>

namespace
{

bool StartsWith(const std::string& strText, const std::string& strBeginning)
{
    return strText.compare(0, strBeginning.size(), strBeginning) == 0;
}

bool StartsWithOneOf(const std::string& strText, const std::vector<std::string>& vBeginnings)
{
    return std::any_of(vBeginnings.begin(), vBeginnings.end(),
                       [&](const std::string& strBeginning) { return StartsWith(strText, strBeginning); });
}

const SRoomRule* RuleOf(const std::string& strPath, const std::vector<SRoomRule>& vRules)
{
    const SRoomRule* pFound = nullptr;
    for (const SRoomRule& rRule : vRules) {
        if (StartsWith(strPath, rRule.strRoom) &&
            (pFound == nullptr || rRule.strRoom.size() > pFound->strRoom.size()))
            pFound = &rRule;
    }
    return pFound;
}

std::vector<std::string> With(std::vector<std::string> vTexts, const std::vector<std::string>& vMore)
{
    vTexts.insert(vTexts.end(), vMore.begin(), vMore.end());
    return vTexts;
}

bool IsOwn(const std::string& strInclude)
{
    return strInclude[0] == '"';
}

/// Without quotes or brackets.
std::string Bare(const std::string& strInclude)
{
    return strInclude.substr(1, strInclude.size() - 2);
}

} // namespace

const std::vector<SRoomRule>& HouseRules()
{
    static const int PLAIN = HEADER_STANDARD;
    static const int TELLING = PLAIN | HEADER_LOG;
    static const int DRAWING = TELLING | HEADER_CLOCK | HEADER_GL;
    static const int HOSTING = DRAWING | HEADER_EGL;
    static const std::vector<std::string> HOSTS = {"dewarp/android/", "dewarp/offscreen/", "dewarp/hosted/"};
    static const std::string EXPORT = "platform/Export.h";
    static const std::vector<std::string> EVERYTHING = {"dewarp/", "platform/"};
    static const std::vector<std::string> DECIDING = {"dewarp/records/", "dewarp/lenses/", "dewarp/geometry/",
                                                      "dewarp/views/"};
    static const std::vector<std::string> CARRYING =
        With(DECIDING, {"dewarp/control/", "dewarp/mapping/", "dewarp/overlays/", "dewarp/tables/",
                        "dewarp/cpu/", "dewarp/Dewarper.h", "platform/Report.h", "platform/MemoryGuard.h",
                        "platform/FairMutex.h", EXPORT});
    static const std::vector<SRoomRule> RULES = {
        // Each may include rooms above it.
        {"dewarp/records/", {"dewarp/records/", EXPORT}, PLAIN, {}},
        {"dewarp/tables/", {"dewarp/tables/", EXPORT}, PLAIN, {}},
        {"dewarp/lenses/", {"dewarp/lenses/", "dewarp/records/", "dewarp/tables/", EXPORT}, PLAIN, {}},
        {"dewarp/geometry/",
         {"dewarp/geometry/", "dewarp/records/", "dewarp/lenses/", "dewarp/tables/", "platform/Assert.h",
          EXPORT},
         PLAIN,
         {}},
        {"dewarp/views/", With(DECIDING, {EXPORT}), PLAIN, {}},
        {"dewarp/control/", With(DECIDING, {"dewarp/control/", "platform/Report.h", EXPORT}), TELLING, {}},
        {"dewarp/mapping/",
         With(DECIDING, {"dewarp/mapping/", "dewarp/control/S", "dewarp/control/Decision.h", EXPORT}),
         PLAIN,
         {}},
        {"dewarp/overlays/",
         {"dewarp/overlays/", "dewarp/records/", "platform/Report.h", EXPORT},
         TELLING,
         {}},
        {"dewarp/shaders/",
         {"dewarp/shaders/", "dewarp/records/Enumerations.h", "dewarp/records/ColourMatrix",
          "dewarp/records/Mirrors.h"},
         PLAIN,
         {}},
        // The interface of both engines, and the one that needs no GL.
        {"dewarp/Dewarper.",
         {"dewarp/Dewarper.h", "dewarp/records/", "dewarp/lenses/", "dewarp/overlays/", "dewarp/views/",
          EXPORT},
         PLAIN,
         {}},
        {"dewarp/cpu/", CARRYING, TELLING, {}},
        // The files that are written for one set of instructions.
        {"dewarp/cpu/CellAVX", CARRYING, TELLING | HEADER_OTHER, {}},
        {"dewarp/cpu/GridLoopsAVX", CARRYING, TELLING | HEADER_OTHER, {}},
        // Of control only its records: what was decided, not how.
        {"dewarp/gl/",
         With(DECIDING, {"dewarp/gl/", "dewarp/tables/", "dewarp/overlays/", "dewarp/shaders/",
                         "dewarp/control/S", "platform/"}),
         DRAWING, With(HOSTS, {"dewarp/CustomGPUDewarper"})},

        // The choice between the engines is part of the core.
        {"dewarp/CreateDewarper.cpp",
         {"dewarp/Dewarper.h", "dewarp/GLEngine.h", "dewarp/cpu/CustomCPUDewarper.h", "dewarp/records/",
          "platform/MemoryGuard.h", "platform/FairMutex.h", "platform/Report.h"},
         TELLING,
         {}},
        {"dewarp/GLEngine", {"dewarp/GLEngine.h", "platform/SiblingLibrary.h", EXPORT}, PLAIN, {}},

        // The classes that hold the rooms together.
        {"dewarp/", EVERYTHING, DRAWING, HOSTS},
        // Everything a host may want to have.
        {"dewarp/LumorDewarp.h", {"dewarp/"}, HOSTING, {"dewarp/android/"}},

        {"dewarp/offscreen/", EVERYTHING, HOSTING, {"dewarp/android/", "dewarp/hosted/"}},
        {"dewarp/hosted/", EVERYTHING, HOSTING, {"dewarp/android/", "dewarp/offscreen/"}},
        {"dewarp/android/", EVERYTHING, HOSTING | HEADER_ANDROID, {"dewarp/offscreen/", "dewarp/hosted/"}},

        {"platform/",
         {"platform/"},
         HOSTING | HEADER_OTHER,
         {"dewarp/", "platform/linux/", "platform/android/"}},
        {"platform/linux/",
         {"platform/"},
         HOSTING | HEADER_OTHER | HEADER_ANDROID,
         {"dewarp/", "platform/android/"}},
        {"platform/android/",
         {"platform/"},
         HOSTING | HEADER_OTHER | HEADER_ANDROID,
         {"dewarp/", "platform/linux/"}},
    };
    return RULES;
}

ESystemHeader KindOf(const std::string& strInclude)
{
    const std::string strName = Bare(strInclude);
    if (strName == "chrono" || strName == "ctime" || strName == "time.h")
        return HEADER_CLOCK;
    if (strName == "android/log.h")
        return HEADER_LOG;
    if (StartsWithOneOf(strName, {"android/", "ui/", "hardware/", "nativebase/", "vndk/"}))
        return HEADER_ANDROID;
    if (StartsWith(strName, "EGL/"))
        return HEADER_EGL;
    if (StartsWithOneOf(strName, {"GLES", "GL/", "KHR/"}))
        return HEADER_GL;
    // The C++ library's own names have neither folder nor ending.
    return strName.find_first_of("/.") == std::string::npos ? HEADER_STANDARD : HEADER_OTHER;
}

std::vector<std::string> BrokenIncludeRules(const MSources& oSources, const std::vector<SRoomRule>& vRules)
{
    std::vector<std::string> vBroken;
    for (const auto& [strPath, strSource] : oSources) {
        const SRoomRule* const pRule = RuleOf(strPath, vRules);
        if (pRule == nullptr) {
            vBroken.push_back(strPath + " belongs to no room");
            continue;
        }
        for (const std::string& strInclude : IncludesOf(strSource)) {
            if (IsOwn(strInclude) && !StartsWithOneOf(Bare(strInclude), pRule->vOwn))
                vBroken.push_back(Concatenate({strPath, " may not include ", strInclude}));
        }
        for (const std::string& strInclude : IncludesReached(oSources, strPath)) {
            const bool bForbidden = IsOwn(strInclude) ? StartsWithOneOf(Bare(strInclude), pRule->vForbidden)
                                                      : (KindOf(strInclude) & pRule->nSystem) == 0;
            if (bForbidden)
                vBroken.push_back(Concatenate({strPath, " may not reach ", strInclude}));
        }
    }
    return vBroken;
}

std::vector<std::string> BrokenUserRules(const MSources& oSources, const std::set<std::string>& oInstalled)
{
    static const std::vector<std::string> OURS = {"dewarp/", "platform/", "tests/", "bench/"};
    std::vector<std::string> vBroken;
    for (const auto& [strPath, strSource] : oSources) {
        for (const std::string& strInclude : IncludesOf(strSource)) {
            const std::string strName = Bare(strInclude);
            const bool bOutside = strName.find("..") != std::string::npos ||
                                  strName.find(".c") != std::string::npos ||
                                  (StartsWithOneOf(strName, OURS) && !oInstalled.contains(strName));
            const bool bDrawing = (KindOf(strInclude) & (HEADER_GL | HEADER_EGL)) != 0;
            if (bOutside || bDrawing)
                vBroken.push_back(Concatenate({strPath, " may not include ", strInclude}));
        }
        for (const std::string& strCall : CallsOf(strSource, {"gl", "egl"}))
            vBroken.push_back(Concatenate({strPath, " may not call ", strCall}));
    }
    return vBroken;
}
