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
    static const int TIMED = HEADER_STANDARD | HEADER_CLOCK;
    static const int DRAWING = TIMED | HEADER_GL | HEADER_LOG;
    static const int HOSTING = DRAWING | HEADER_EGL;
    static const std::vector<std::string> GEOMETRY = {"dewarp/geometry/", "dewarp/lenses/", "dewarp/records/",
                                                      "platform/Assert.h"};
    static const std::vector<std::string> HOSTS = {"dewarp/android/", "dewarp/offscreen/"};
    static const std::vector<std::string> PARSING = {"dewarp/overlays/", "dewarp/records/"};
    static const std::vector<SRoomRule> RULES = {
        // The classes that hold the rooms together.
        {"dewarp/", {"dewarp/", "platform/"}, DRAWING, {}},
        {"dewarp/CustomGPUGeometry", GEOMETRY, PLAIN, {"dewarp/views/"}},

        {"dewarp/records/", {"dewarp/records/"}, PLAIN, {}},
        {"dewarp/records/SShaderProperties.cpp", {"dewarp/records/"}, PLAIN | HEADER_GL, {}},
        {"dewarp/lenses/",
         {"dewarp/lenses/", "dewarp/records/", "dewarp/tables/"},
         PLAIN,
         {"dewarp/geometry/", "dewarp/views/"}},
        {"dewarp/geometry/", GEOMETRY, PLAIN, {"dewarp/views/"}},
        {"dewarp/tables/", {"dewarp/tables/"}, PLAIN, {}},
        {"dewarp/shaders/",
         {"dewarp/shaders/", "dewarp/records/Enumerations.h", "dewarp/records/ColourMatrix.h"},
         PLAIN,
         {}},
        {"dewarp/pipeline/", {"dewarp/", "platform/"}, DRAWING, HOSTS},
        {"dewarp/views/",
         {"dewarp/views/", "dewarp/geometry/", "dewarp/lenses/", "dewarp/records/",
          "dewarp/CustomGPUGeometry.h", "platform/Assert.h"},
         PLAIN | HEADER_GL,
         {"dewarp/shaders/", "dewarp/pipeline/", "dewarp/CustomGPUDewarper"}},

        {"dewarp/overlays/", {"dewarp/", "platform/"}, DRAWING, HOSTS},
        // Parsers and builders of the byte lists, and what they fill.
        {"dewarp/overlays/BigEndian", PARSING, PLAIN, {}},
        {"dewarp/overlays/MaskPolygonFormat", PARSING, PLAIN | HEADER_LOG, {}},
        {"dewarp/overlays/StringFormat", PARSING, PLAIN | HEADER_LOG, {}},
        {"dewarp/overlays/SGPUString", PARSING, PLAIN, {}},

        {"dewarp/offscreen/", {"dewarp/", "platform/"}, HOSTING, {"dewarp/android/"}},
        {"dewarp/android/", {"dewarp/", "platform/"}, HOSTING | HEADER_ANDROID, {"dewarp/offscreen/"}},

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

std::vector<std::string> BrokenUserRules(const MSources& oSources)
{
    // Headers are installed, sources and folders above are not; these rooms are nobody's business.
    static const std::vector<std::string> PRIVATE = {
        "dewarp/pipeline/", "dewarp/shaders/", "dewarp/gl/", "platform/android/",
        "platform/linux/",  "tests/",          "bench/"};
    std::vector<std::string> vBroken;
    for (const auto& [strPath, strSource] : oSources) {
        for (const std::string& strInclude : IncludesOf(strSource)) {
            const std::string strName = Bare(strInclude);
            const bool bOutside = strName.find("..") != std::string::npos ||
                                  strName.find(".c") != std::string::npos ||
                                  StartsWithOneOf(strName, PRIVATE);
            const bool bDrawing = (KindOf(strInclude) & (HEADER_GL | HEADER_EGL)) != 0;
            if (bOutside || bDrawing)
                vBroken.push_back(Concatenate({strPath, " may not include ", strInclude}));
        }
        for (const std::string& strCall : CallsOf(strSource, {"gl", "egl"}))
            vBroken.push_back(Concatenate({strPath, " may not call ", strCall}));
    }
    return vBroken;
}
