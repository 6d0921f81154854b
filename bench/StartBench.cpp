// From the start of GL to the first picture in memory, in a process of its own, with the driver's shader
// cache empty and filled:
//     lumor-bench-start [ROUNDS]
// Calls into GL and EGL pass through StageClock.cpp, which tells what each kind of them took.

#include "bench/Frames.h"
#include "bench/StageClock.h"
#include "dewarp/LumorDewarp.h"

#include <GLES3/gl31.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace
{

const int FIGURES = STAGE_COUNT + 2; ///< the stages, the library's own share, the sum

/// In the child: draws one picture and prints what each stage took.
int DrawFirstPicture()
{
    CBenchFrame oFrame(IMAGE_FORMAT_NV12, 1920, 1920);
    CCustomGPUDewarperOffscreen oDewarper;
    bool bDrawn = false;
    const double fTotal = MillisecondsOf([&] {
        oDewarper.InitGL(1920, 1080);
        if (!oDewarper.StartGL())
            std::exit(77);
        oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
        oDewarper.SetLensType(LENS_AUTO);
        oDewarper.SetViewType(VIEW_VCAM);
        oDewarper.AbsolutePTZ(90.0f, 45.0f, 120.0f);
        int nSize = 0;
        int nWidth = 0;
        int nHeight = 0;
        int nStride = 0;
        bDrawn = oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0) && oDewarper.DrawGLScene(true) &&
                 oDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride) != nullptr;
    });
    double fOwn = fTotal;
    for (int i = 0; i < STAGE_COUNT; ++i) {
        const double fStage = StageMilliseconds(static_cast<EStage>(i));
        fOwn -= fStage;
        std::printf("%.3f ", fStage);
    }
    std::printf("%.3f %.3f\n", fOwn, fTotal);
    return bDrawn ? 0 : 1;
}

/// Figures of one child process.
std::vector<double> RunChild(const std::string& strProgram)
{
    std::FILE* pPipe = popen(("'" + strProgram + "' --child").c_str(), "r");
    std::vector<double> vFigures(FIGURES);
    for (double& rFigure : vFigures) {
        if (pPipe == nullptr || std::fscanf(pPipe, "%lf", &rFigure) != 1) {
            std::fprintf(stderr, "no picture\n");
            std::exit(1);
        }
    }
    pclose(pPipe);
    return vFigures;
}

void PrintLine(const char* pName, const std::vector<double>* pCold, const std::vector<double>* pWarm)
{
    std::printf("%-28s %10.2f %10.2f\n", pName, Median(*pCold), Median(*pWarm));
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    const std::string strFirst = nArguments > 1 ? ppArguments[1] : "9";
    setenv("EGL_PLATFORM", "surfaceless", 0);
    if (strFirst == "--child")
        return DrawFirstPicture();
    const std::string strCache = (std::filesystem::temp_directory_path() / "lumor-start-XXXXXX").string();
    std::string strFolder = strCache;
    if (mkdtemp(strFolder.data()) == nullptr)
        return 1;
    setenv("MESA_SHADER_CACHE_DIR", strFolder.c_str(), 1);
    std::vector<double> avCold[FIGURES];
    std::vector<double> avWarm[FIGURES];
    const int nRounds = std::max(1, std::atoi(strFirst.c_str()));
    for (int i = 0; i < nRounds; ++i) {
        std::filesystem::remove_all(strFolder);
        std::filesystem::create_directory(strFolder);
        for (std::vector<double>* pFigures : {avCold, avWarm}) {
            const std::vector<double> vFigures = RunChild(ppArguments[0]);
            for (std::size_t n = 0; n < vFigures.size(); ++n)
                pFigures[n].push_back(vFigures[n]);
        }
    }
    std::filesystem::remove_all(strFolder);
    std::printf("First picture, 1920x1920 NV12 to 1920x1080; medians of %d processes, ms\n", nRounds);
    std::printf("%-28s %10s %10s\n", "", "cold cache", "warm cache");
    for (int i = 0; i < STAGE_COUNT; ++i)
        PrintLine(StageName(static_cast<EStage>(i)), &avCold[i], &avWarm[i]);
    PrintLine("library", &avCold[STAGE_COUNT], &avWarm[STAGE_COUNT]);
    PrintLine("together", &avCold[STAGE_COUNT + 1], &avWarm[STAGE_COUNT + 1]);
    return 0;
}
