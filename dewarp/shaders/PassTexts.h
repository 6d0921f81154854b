/// \file
/// Texts of the passes that copy, overlay, mask and write text. They never change, save one.
#pragma once

#include <string>

/// Thread: any. Constants of the library, valid as long as it is loaded.
namespace PASS_TEXT
{

// A frame texture onto the target; the target takes YUV.
extern const char* const pTextureToScreenVertex;
extern const char* const pTextureToScreenFragment;
// A texture into another one, upside down.
extern const char* const pTextureToTextureVertex;
extern const char* const pTextureToTextureFragment;
// The output overlay over the finished view; the target takes YUV.
extern const char* const pOutputOverlayVertex;
extern const char* const pOutputOverlayFragment;
// One privacy mask polygon over what has been painted so far.
extern const char* const pMaskVertex;
extern const char* const pMaskFragment;
// One glyph over the string overlay as drawn so far.
extern const char* const pStringVertex;
extern const char* const pStringFragment;
// The string overlay over the view.
extern const char* const pStringCompositeVertex;

} // namespace PASS_TEXT

/// The string overlay over the view: into a texture (plain colours) or onto the target, which takes YUV and
/// for which the view is read upside down.
/// Thread: any. Touches no GL.
/// Fails: never.
std::string StringCompositeFragmentText(bool bToTexture);
