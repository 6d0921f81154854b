// lumor-contact-sheet: many pictures side by side, each with a caption that the dewarper itself draws.
#include "FFmpegHandles.h"
#include "FileIO.h"
#include "ImageReader.h"
#include "ImageWriter.h"
#include "Session.h"
#include "ToolError.h"
#include "ToolLog.h"

#include <algorithm>
#include <cstdio>
#include <exception>

namespace
{

const int COLUMNS = 3;
const int TILE_WIDTH = 620; ///< pixels, as everything here
const int TILE_HEIGHT = 400;
const int GAP = 16;
const int CAPTION_HEIGHT = 24;
const int CELL_WIDTH = TILE_WIDTH + GAP;
const int CELL_HEIGHT = TILE_HEIGHT + CAPTION_HEIGHT + 2 * GAP;
const unsigned char BACKGROUND = 0x20;

struct STile
{
    std::string strPath;
    std::string strCaption;
};

/// Puts a picture, scaled, into the middle of a tile; gives the row below it.
int PlaceTile(const STile& sTile, int nX, int nY, SFrame& sSheet)
{
    const SFrame sPicture = ReadImageFitted(sTile.strPath, {TILE_WIDTH, TILE_HEIGHT});
    nX += (TILE_WIDTH - sPicture.nWidth) / 2;
    nY += (TILE_HEIGHT - sPicture.nHeight) / 2;
    for (int nRow = 0; nRow < sPicture.nHeight; nRow++)
        std::copy_n(sPicture.avPlanes[0].data() + static_cast<std::ptrdiff_t>(nRow) * sPicture.nStride,
                    sPicture.nStride,
                    sSheet.avPlanes[0].data() + static_cast<std::ptrdiff_t>(nY + nRow) * sSheet.nStride +
                        nX * 4);
    return nY + sPicture.nHeight;
}

SGPUString MakeCaption(const std::string& strText, int nX, int nY)
{
    SGPUString sString;
    sString.strText = strText;
    sString.nX = nX + TILE_WIDTH / 2;
    sString.nY = nY + GAP / 4;
    sString.nHeight = CAPTION_HEIGHT;
    sString.nColor = 0xFFFFFFFF;
    sString.nHAlign = 1;
    return sString;
}

/// The sheet is shown flat, pixel for pixel, and its captions are texts over it.
void DrawSheet(const std::vector<STile>& vTiles, const std::string& strOutput)
{
    const int nTiles = static_cast<int>(vTiles.size());
    const int nRows = (nTiles + COLUMNS - 1) / COLUMNS;
    const int nColumns = std::min(nTiles, COLUMNS);
    SFrame sSheet;
    sSheet.Allocate(IMAGE_FORMAT_RGBA32, nColumns * CELL_WIDTH + GAP, nRows * CELL_HEIGHT + GAP);
    std::fill(sSheet.avPlanes[0].begin(), sSheet.avPlanes[0].end(), BACKGROUND);
    for (std::size_t i = 3; i < sSheet.avPlanes[0].size(); i += 4)
        sSheet.avPlanes[0][i] = 0xFF;

    SToolOptions sOptions;
    sOptions.eView = VIEW_FISHEYE;
    sOptions.eInterpolation = INTERPOLATION_NEAREST;
    SOverlays sOverlays;
    for (int i = 0; i < nTiles; i++) {
        const int nX = GAP + i % COLUMNS * CELL_WIDTH;
        const int nY = GAP + i / COLUMNS * CELL_HEIGHT;
        const STile& sTile = vTiles[static_cast<std::size_t>(i)];
        const int nBelow = PlaceTile(sTile, nX, nY, sSheet);
        sOverlays.vTexts.push_back(MakeCaption(sTile.strCaption, nX, nBelow));
    }

    const CToolLog oLog(false);
    const std::unique_ptr<CDewarpSession> pSession =
        StartSession(sOptions, {sSheet.nWidth, sSheet.nHeight}, oLog);
    pSession->DrawFirst(sSheet, sOverlays);
    const std::vector<unsigned char> vBytes = EncodePicture(pSession->ReadBack(), GetOutputKind(strOutput));
    WriteFile(strOutput, vBytes.data(), vBytes.size());
}

int Run(int nArguments, const char* const* ppArguments)
{
    if (nArguments < 4 || nArguments % 2 != 0)
        ThrowUsage("usage: lumor-contact-sheet OUTPUT.png PICTURE CAPTION [PICTURE CAPTION ...]");
    std::vector<STile> vTiles;
    for (int i = 2; i + 1 < nArguments; i += 2)
        vTiles.push_back({ppArguments[i], ppArguments[i + 1]});
    av_log_set_level(AV_LOG_QUIET);
    DrawSheet(vTiles, ppArguments[1]);
    return EXIT_DONE;
}

} // namespace

int main(int nArguments, char** ppArguments)
{
    try {
        return Run(nArguments, ppArguments);
    } catch (const CToolError& oError) {
        std::fprintf(stderr, "lumor-contact-sheet: %s\n", oError.what());
        return oError.GetStatus();
    } catch (const std::exception& oError) {
        std::fprintf(stderr, "lumor-contact-sheet: %s\n", oError.what());
    }
    return EXIT_FAILED;
}
