/// \file
/// Renders the library's bitmap font: 96 cells of 38 x 64 pixels in 16 columns and 6 rows, codes 32 to 127.
///
/// make_font FACE.ttf ATLAS.bin [PREVIEW.pgm]
///
/// ATLAS.bin gets two bytes a pixel, luminance and alpha, rows from the top. The luminance is 255 everywhere,
/// also where nothing is drawn: text is blended with straight alpha, so the colour beside an edge must be the
/// text's own, or filtering would darken the edge. Only the alpha holds the shape. PREVIEW.pgm gets the
/// alpha.
#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdio>
#include <cstdlib>
#include <vector>

static const int CELL_WIDTH = 38;
static const int CELL_HEIGHT = 64;
static const int COLS = 16;
static const int ROWS = 6;
static const int ATLAS_WIDTH = COLS * CELL_WIDTH;
static const int ATLAS_HEIGHT = ROWS * CELL_HEIGHT;
static const int FIRST_CODE = 32;
static const int SOLID_CODE = 127;

// The largest size at which every glyph leaves one empty pixel at each side of its cell, so that filtering
// never pulls in a neighbour's ink.
static const unsigned int FACE_PIXELS = 59;
static const int BASELINE = 49; // row, from the top of the cell
static const int MARGIN = 1;

[[noreturn]] static void Stop(const char* pReason, int nCode = 0)
{
    std::fprintf(stderr, "make_font: %s (character %d)\n", pReason, nCode);
    std::exit(1);
}

static unsigned char* Cell(std::vector<unsigned char>& vAlpha, int nCode)
{
    const int nGlyph = nCode - FIRST_CODE;
    return vAlpha.data() + (nGlyph / COLS) * CELL_HEIGHT * ATLAS_WIDTH + (nGlyph % COLS) * CELL_WIDTH;
}

static void RenderGlyph(FT_Face pFace, int nCode, std::vector<unsigned char>& vAlpha)
{
    if (FT_Load_Char(pFace, static_cast<FT_ULong>(nCode), FT_LOAD_RENDER | FT_LOAD_TARGET_NORMAL) != 0)
        Stop("the face cannot render", nCode);
    const FT_GlyphSlot pGlyph = pFace->glyph;
    const FT_Bitmap& sBitmap = pGlyph->bitmap;
    const int nAdvance = static_cast<int>(pGlyph->advance.x / 64);
    const int nLeft = (CELL_WIDTH - nAdvance) / 2 + pGlyph->bitmap_left;
    const int nTop = BASELINE - pGlyph->bitmap_top;
    const int nWidth = static_cast<int>(sBitmap.width);
    const int nHeight = static_cast<int>(sBitmap.rows);
    if (nWidth == 0 || nHeight == 0)
        Stop("the face draws nothing for", nCode);
    if (nLeft < MARGIN || nTop < MARGIN || nLeft + nWidth > CELL_WIDTH - MARGIN ||
        nTop + nHeight > CELL_HEIGHT - MARGIN)
        Stop("the cell is too small for", nCode);
    unsigned char* pCell = Cell(vAlpha, nCode);
    for (int nRow = 0; nRow < nHeight; ++nRow)
        for (int nCol = 0; nCol < nWidth; ++nCol)
            pCell[(nTop + nRow) * ATLAS_WIDTH + nLeft + nCol] = sBitmap.buffer[nRow * sBitmap.pitch + nCol];
}

static void Write(const char* pPath, const char* pHeader, const std::vector<unsigned char>& vBytes)
{
    std::FILE* pFile = std::fopen(pPath, "wb");
    if (pFile == nullptr || std::fputs(pHeader, pFile) < 0 ||
        std::fwrite(vBytes.data(), 1, vBytes.size(), pFile) != vBytes.size() || std::fclose(pFile) != 0)
        Stop("cannot write the file");
}

int main(int nArguments, char** pArguments)
{
    if (nArguments < 3)
        Stop("usage: make_font FACE.ttf ATLAS.bin [PREVIEW.pgm]");
    FT_Library pLibrary = nullptr;
    FT_Face pFace = nullptr;
    if (FT_Init_FreeType(&pLibrary) != 0 || FT_New_Face(pLibrary, pArguments[1], 0, &pFace) != 0 ||
        FT_Set_Pixel_Sizes(pFace, 0, FACE_PIXELS) != 0)
        Stop("cannot open the face");

    // The first cell (space) stays empty; the last is solid: text is erased by drawing it.
    std::vector<unsigned char> vAlpha(static_cast<std::size_t>(ATLAS_WIDTH * ATLAS_HEIGHT), 0);
    for (int nCode = FIRST_CODE + 1; nCode < SOLID_CODE; ++nCode)
        RenderGlyph(pFace, nCode, vAlpha);
    for (int nRow = 0; nRow < CELL_HEIGHT; ++nRow)
        for (int nCol = 0; nCol < CELL_WIDTH; ++nCol)
            Cell(vAlpha, SOLID_CODE)[nRow * ATLAS_WIDTH + nCol] = 255;

    std::vector<unsigned char> vAtlas;
    for (const unsigned char nAlpha : vAlpha) {
        vAtlas.push_back(255);
        vAtlas.push_back(nAlpha);
    }
    Write(pArguments[2], "", vAtlas);
    if (nArguments > 3)
        Write(pArguments[3], "P5\n608 384\n255\n", vAlpha);
    FT_Done_Face(pFace);
    FT_Done_FreeType(pLibrary);
    return 0;
}
