#!/usr/bin/env python3
"""Writes the shader texts the library must generate, without the library.

texts.golden  every different text once: "=== number length", then the text and a line end
cases.golden  one case a line: key, tab, number of its text

    make_golden.py          writes both files beside this script
    make_golden.py --check  compares them instead; status 1 when they differ

The fragments stand here a second time on purpose: a change of the library's texts must be made in both places.
Blanks at line ends count.
"""

import itertools
import pathlib
import struct
import sys

# Vertex shader of the views.

V_BEGIN = (
    "#version 310 es            \n"
    "uniform mat4 uMVPMatrix;   \n"
    "in vec4 vPosition;   \n"
    "in vec2 a_TexCoordinate; \n"
    "out vec2 v_TexCoordinate;   \n"
    "void main()                  \n"
    "{                            \n"
    "   v_TexCoordinate = a_TexCoordinate; \n"
)

V_X = "   v_TexCoordinate.x = 1.0 - v_TexCoordinate.x; \n"

V_Y = "   v_TexCoordinate.y = 1.0 - v_TexCoordinate.y; \n"

V_POSITION = "   gl_Position = uMVPMatrix * vPosition; \n"

V_UPSIDE_DOWN = "   gl_Position.y = -1.0 * gl_Position.y; \n"

V_END = "}                            \n"

# Fragment shader of the views.

H_RGB = (
    "#version 310 es            \n"
    "precision mediump float; \n"
    "uniform sampler2D samplerRGB;\n"
    "in vec2 v_TexCoordinate;  \n"
    "out vec4 vOutputColor;     \n"
)

H_NV = (
    "#version 310 es            \n"
    "precision mediump float; \n"
    "uniform sampler2D samplerY;\n"
    "uniform sampler2D samplerUV;\n"
    "in vec2 v_TexCoordinate;  \n"
    "out vec4 vOutputColor;     \n"
)

H_P = (
    "#version 310 es            \n"
    "precision mediump float; \n"
    "uniform sampler2D samplerY;\n"
    "uniform sampler2D samplerU;\n"
    "uniform sampler2D samplerV;\n"
    "in vec2 v_TexCoordinate;  \n"
    "out vec4 vOutputColor;     \n"
)

QP_DECL = (
    "uniform sampler2D samplerMBType;\n"
    "uniform sampler2D samplerQP;\n"
)

OVL_DECL = "uniform sampler2D samplerInputOverlay;\n"

MAIN = (
    "void main()\n"
    "{\n"
)

RGB_FETCH = "   vec4 rgba = texture(samplerRGB, v_TexCoordinate);       \n"

RGB2YUV = (
    "   float y, u, v; \n"
    "   vec4 rgba = texture(samplerRGB, v_TexCoordinate);       \n"
    "   y = (0.299*rgba.r + 0.587*rgba.g + 0.114*rgba.b);    \n"
    "   u = (-0.169*rgba.r - 0.331*rgba.g + 0.5*rgba.b);        \n"
    "   v = (0.5*rgba.r - 0.419*rgba.g - 0.081*rgba.b);         \n"
)

YUV2RGB_ADJ = (
    "   rgba.r = clamp(y + 1.4 * v, 0.0, 1.0);        \n"
    "   rgba.b = clamp(y + 1.765 * u, 0.0, 1.0);        \n"
    "   rgba.g = clamp(y - 0.343 * u - 0.711 * v, 0.0, 1.0);        \n"
)

NV_Y = (
    "   float y, u, v; \n"
    "   vec4 rgba = vec4(0.0, 0.0, 0.0, 1.0); \n"
    "   y = texture(samplerY, v_TexCoordinate).r;        \n"
)

NV_UV_RA = (
    "   u = texture(samplerUV, v_TexCoordinate).r - 0.5;        \n"
    "   v = texture(samplerUV, v_TexCoordinate).a - 0.5;        \n"
)

NV_UV_AR = (
    "   u = texture(samplerUV, v_TexCoordinate).a - 0.5;        \n"
    "   v = texture(samplerUV, v_TexCoordinate).r - 0.5;        \n"
)

P_YUV = (
    "   float y, u, v, qp, mb_type; \n"
    "   vec4 rgba = vec4(0.0, 0.0, 0.0, 1.0); \n"
    "   y = texture(samplerY, v_TexCoordinate).r;        \n"
    "   u = texture(samplerU, v_TexCoordinate).r - 0.5;        \n"
    "   v = texture(samplerV, v_TexCoordinate).r - 0.5;        \n"
)

QP_BODY = (
    "   qp = texture(samplerQP, v_TexCoordinate).r / 0.1;        \n"
    "   mb_type = texture(samplerMBType, v_TexCoordinate).r;        \n"
    "   u = mb_type * clamp(qp-0.5, -0.5, 0.5) + (1-mb_type) * u;        \n"
    "   v = mb_type * clamp(qp-1.5, -0.5, 0.5) + (1-mb_type) * v;        \n"
)

OVL_BLEND = (
    "   vec4 overlay = texture(samplerInputOverlay, v_TexCoordinate);        \n"
    "   rgba.r = rgba.r*(1.0 - overlay.a) + overlay.r * overlay.a;        \n"
    "   rgba.g = rgba.g*(1.0 - overlay.a) + overlay.g * overlay.a;        \n"
    "   rgba.b = rgba.b*(1.0 - overlay.a) + overlay.b * overlay.a;        \n"
)

OUT = "   vOutputColor = rgba;        \n"

OUT_END = (
    "   vOutputColor = rgba;        \n"
    "}\n"
)

PREMUL_OUT = (
    "   rgba.r = rgba.r * rgba.a;        \n"
    "   rgba.g = rgba.g * rgba.a;        \n"
    "   rgba.b = rgba.b * rgba.a;        \n"
    "   vOutputColor = rgba;        \n"
)

END = "}\n"

RANGE = (
    "   y = (y-{a})/{b};      \n"
    "   u = u/{c};        \n"
    "   v = v/{c};        \n"
    "   y = clamp(y, 0.0, 1.0);        \n"
    "   u = clamp(u, -0.5, 0.5);        \n"
    "   v = clamp(v, -0.5, 0.5);        \n"
)

GAIN = (
    "   y = {luma} * y;        \n"
    "   u = {chroma} * u;        \n"
    "   v = {chroma} * v;        \n"
)

CONVERSION = {}

CONVERSION[1] = (
    "   rgba.r = clamp(y + 1.402 * v, 0.0, 1.0);                    \n"
    "   rgba.g = clamp(y - 0.344 * u - 0.714 * v, 0.0, 1.0);      \n"
    "   rgba.b = clamp(y + 1.772 * u, 0.0, 1.0);        \n"
)

CONVERSION[2] = (
    "   rgba.r = clamp(y + 1.575 * v, 0.0, 1.0);                    \n"
    "   rgba.g = clamp(y - 0.187 * u - 0.468 * v, 0.0, 1.0);      \n"
    "   rgba.b = clamp(y + 1.856 * u, 0.0, 1.0);        \n"
)

CONVERSION[3] = (
    "   rgba.r = clamp(y + 1.475 * v, 0.0, 1.0);                    \n"
    "   rgba.g = clamp(y - 0.165 * u - 0.571 * v, 0.0, 1.0);      \n"
    "   rgba.b = clamp(y + 1.881 * u, 0.0, 1.0);        \n"
)

CONVERSION[4] = (
    "   rgba.r = clamp(y + 1.3707 * v, 0.0, 1.0);        \n"
    "   rgba.g = clamp(y - 0.3376 * u - 0.6980 * v, 0.0, 1.0);        \n"
    "   rgba.b = clamp(y + 1.7324 * u, 0.0, 1.0);        \n"
)

# Passes.

PASS = {}

PASS["pTextureToScreenVertex"] = (
    "#version 310 es            \n"
    "uniform mat4 uMVPMatrix;   \n"
    "in vec4 vPosition;   \n"
    "in vec2 a_TexCoordinate; \n"
    "out vec2 v_RGBTexCoordinate;   \n"
    "void main()                  \n"
    "{                            \n"
    "   v_RGBTexCoordinate = a_TexCoordinate; \n"
    "   gl_Position = uMVPMatrix * vPosition; \n"
    "}                            \n"
)

PASS["pTextureToScreenFragment"] = (
    "#version 310 es            \n"
    "#extension GL_EXT_YUV_target : require \n"
    " precision mediump float; \n"
    "in vec2 v_RGBTexCoordinate;  \n"
    "uniform sampler2D samplerInput;\n"
    "layout (yuv) out vec4 vOutputColor; \n"
    "void main()\n"
    "{\n"
    "   vOutputColor = texture(samplerInput, v_RGBTexCoordinate);        \n"
    "}\n"
)

PASS["pTextureToTextureVertex"] = (
    "#version 310 es            \n"
    "uniform mat4 uMVPMatrix;   \n"
    "in vec4 vPosition;   \n"
    "in vec2 a_TexCoordinate; \n"
    "out vec2 v_RGBTexCoordinate;   \n"
    "void main()                  \n"
    "{                            \n"
    "   v_RGBTexCoordinate = a_TexCoordinate; \n"
    "   v_RGBTexCoordinate.y = 1.0 - v_RGBTexCoordinate.y; \n"
    "   gl_Position = uMVPMatrix * vPosition; \n"
    "}                            \n"
)

PASS["pTextureToTextureFragment"] = (
    "#version 310 es            \n"
    "precision mediump float; \n"
    "in vec2 v_RGBTexCoordinate;  \n"
    "uniform sampler2D samplerInput;\n"
    "out vec4 vOutputColor;     \n"
    "void main()\n"
    "{\n"
    "   vOutputColor = texture(samplerInput, v_RGBTexCoordinate);        \n"
    "}\n"
)

PASS["pOutputOverlayVertex"] = (
    "#version 310 es            \n"
    "uniform mat4 uMVPMatrix;   \n"
    "in vec4 vPosition;   \n"
    "in vec2 a_TexCoordinate; \n"
    "out vec2 v_TexCoordinate;   \n"
    "out vec2 v_RGBTexCoordinate;   \n"
    "void main()                  \n"
    "{                            \n"
    "   v_TexCoordinate = a_TexCoordinate; \n"
    "   v_RGBTexCoordinate = a_TexCoordinate; \n"
    "   v_TexCoordinate.y = 1.0 - v_TexCoordinate.y; \n"
    "   gl_Position = uMVPMatrix * vPosition; \n"
    "}                            \n"
)

PASS["pOutputOverlayFragment"] = (
    "#version 310 es            \n"
    "#extension GL_EXT_YUV_target : require \n"
    " precision mediump float; \n"
    "in vec2 v_TexCoordinate;  \n"
    "in vec2 v_RGBTexCoordinate;  \n"
    "uniform sampler2D samplerInput;\n"
    "uniform sampler2D samplerOverlay;\n"
    "layout (yuv) out vec4 vOutputColor; \n"
    "void main()\n"
    "{\n"
    "   vec4 rgba; \n"
    "   vec4 overlay = texture(samplerOverlay, v_TexCoordinate);        \n"
    "   vec4 geom = texture(samplerInput, v_RGBTexCoordinate);        \n"
    "   rgba.r = geom.r*(1.0 - overlay.a) + overlay.r * overlay.a;        \n"
    "   rgba.g = geom.g*(1.0 - overlay.a) + overlay.g * overlay.a;        \n"
    "   rgba.b = geom.b*(1.0 - overlay.a) + overlay.b * overlay.a;        \n"
    "   rgba.a = 1.0;        \n"
    "   vOutputColor = rgba;        \n"
    "}\n"
)

PASS["pMaskVertex"] = (
    "#version 310 es            \n"
    "uniform mat4 uMVPMatrix;   \n"
    "in vec4 vPosition;   \n"
    "void main()                  \n"
    "{                            \n"
    "   gl_Position = uMVPMatrix * vPosition; \n"
    "   gl_Position.y = -1.0 * gl_Position.y; \n"
    "}                            \n"
)

PASS["pMaskFragment"] = (
    "#version 310 es            \n"
    "precision mediump float; \n"
    "uniform sampler2D samplerInput;\n"
    "uniform vec4 u_Color; \n"
    "uniform vec2 u_ScreenSize; \n"
    "out vec4 vOutputColor;     \n"
    "void main()\n"
    "{\n"
    "   vec4 rgba; \n"
    "   vec2 v_RGBTexCoordinate = gl_FragCoord.xy / u_ScreenSize;         \n"
    "   vec4 mask = texture(samplerInput, v_RGBTexCoordinate);        \n"
    "   rgba.r = mask.r*(1.0 - u_Color.a) + u_Color.r * u_Color.a;        \n"
    "   rgba.g = mask.g*(1.0 - u_Color.a) + u_Color.g * u_Color.a;        \n"
    "   rgba.b = mask.b*(1.0 - u_Color.a) + u_Color.b * u_Color.a;        \n"
    "   rgba.a = max(u_Color.a, mask.a);        \n"
    "   vOutputColor = rgba;     \n"
    "}\n"
)

PASS["pStringVertex"] = (
    "#version 310 es            \n"
    "uniform mat4 uMVPMatrix;   \n"
    "in vec4 vPosition;   \n"
    "in vec2 a_TexCoordinate; \n"
    "out vec2 v_TexCoordinate;   \n"
    "uniform float u_PosYMult; \n"
    "void main()                  \n"
    "{                            \n"
    "   v_TexCoordinate = a_TexCoordinate; \n"
    "   gl_Position = uMVPMatrix * vPosition; \n"
    "   gl_Position.y = u_PosYMult * gl_Position.y; \n"
    "}                            \n"
)

PASS["pStringFragment"] = (
    "#version 310 es            \n"
    "precision mediump float; \n"
    "in vec2 v_TexCoordinate;  \n"
    "uniform sampler2D samplerString;\n"
    "uniform sampler2D samplerInput;\n"
    "uniform vec2 u_ScreenSize; \n"
    "uniform float u_Mult; \n"
    "uniform vec4 u_TextColor; \n"
    "out vec4 vOutputColor;     \n"
    "void main()\n"
    "{\n"
    "   vec4 rgba; \n"
    "   vec4 string = texture(samplerString, v_TexCoordinate) * u_TextColor;        \n"
    "   vec2 v_StringOverlayCoordinate = gl_FragCoord.xy / u_ScreenSize;         \n"
    "   vec4 stringOverlay = texture(samplerInput, v_StringOverlayCoordinate);        \n"
    "   vec4 v1 = (string.a >= stringOverlay.a) ? stringOverlay : string;       \n"
    "   vec4 v2 = (string.a > stringOverlay.a) ? string : stringOverlay;       \n"
    "   rgba.a = max(stringOverlay.a, string.a) * u_Mult;        \n"
    "   rgba.r = min(1.0, v1.r*(1.0 - rgba.a) + v2.r);        \n"
    "   rgba.g = min(1.0, v1.g*(1.0 - rgba.a) + v2.g);        \n"
    "   rgba.b = min(1.0, v1.b*(1.0 - rgba.a) + v2.b);        \n"
    "   vOutputColor = rgba;        \n"
    "}\n"
)

PASS["pStringCompositeVertex"] = (
    "#version 310 es            \n"
    "uniform mat4 uMVPMatrix;   \n"
    "in vec4 vPosition;   \n"
    "void main()                  \n"
    "{                            \n"
    "   gl_Position = uMVPMatrix * vPosition; \n"
    "}                            \n"
)

# Strings over the view, in the order in which the pieces follow each other.

COMPOSITE_1 = "#version 310 es            \n"

COMPOSITE_YUV = "#extension GL_EXT_YUV_target : require \n"

COMPOSITE_2 = (
    "precision mediump float; \n"
    "uniform sampler2D samplerGeometry;\n"
    "uniform sampler2D samplerStringOverlay;\n"
    "uniform vec2 u_ScreenSize; \n"
)

COMPOSITE_OUT = "out vec4 vOutputColor;     \n"

COMPOSITE_OUT_YUV = "layout (yuv) out vec4 vOutputColor; \n"

COMPOSITE_3 = (
    "void main()\n"
    "{\n"
    "   vec4 rgba; \n"
    "   vec2 v_TexCoordinate = gl_FragCoord.xy / u_ScreenSize;         \n"
    "   vec4 string = texture(samplerStringOverlay, v_TexCoordinate);        \n"
)

COMPOSITE_FLIP = "   v_TexCoordinate.y = 1.0 - v_TexCoordinate.y;         \n"

COMPOSITE_4 = (
    "   vec4 geom = texture(samplerGeometry, v_TexCoordinate);        \n"
    "   rgba.r = geom.r*(1.0 - string.a) + string.r * string.a;        \n"
    "   rgba.g = geom.g*(1.0 - string.a) + string.g * string.a;        \n"
    "   rgba.b = geom.b*(1.0 - string.a) + string.b * string.a;        \n"
    "   rgba.a = 1.0;        \n"
    "   vOutputColor = rgba;        \n"
    "}\n"
)

# Views from external YUV images.

YUV_V_BEGIN = (
    "#version 310 es \n"
    "uniform mat4 uMVPMatrix;   \n"
    "in vec4 vPosition;   \n"
    "in vec2 a_TexCoordinate; \n"
    "out vec2 v_TexCoordinate;   \n"
    "void main()                  \n"
    "{                            \n"
    "   v_TexCoordinate = a_TexCoordinate; \n"
    "   gl_Position = uMVPMatrix * vPosition; \n"
)

YUV_V_END = "}                            \n"

YUV_BEGIN = (
    "#version 310 es \n"
    "#extension GL_EXT_YUV_target : require \n"
    "precision mediump float;\n"
    "uniform __samplerExternal2DY2YEXT uTexture;\n"
    "in vec2 v_TexCoordinate;  \n"
)

YUV_OUT = "out vec4 fragColor; \n"

YUV_OUT_YUV = "layout (yuv) out vec4 fragColor; \n"

YUV_OVL_DECL = "uniform sampler2D samplerInputOverlay;\n"

YUV_MAIN = (
    "void main()\n"
    "{\n"
)

YUV_FETCH = "   vec4 yuvTex = texture(uTexture, v_TexCoordinate); \n"

YUV_OVL_BLEND = (
    "   vec4 overlay = texture(samplerInputOverlay, v_TexCoordinate);        \n"
    "   yuvTex.r = yuvTex.r*(1.0 - overlay.a) + overlay.r * overlay.a;        \n"
    "   yuvTex.g = yuvTex.g*(1.0 - overlay.a) + overlay.g * overlay.a;        \n"
    "   yuvTex.b = yuvTex.b*(1.0 - overlay.a) + overlay.b *  overlay.a;        \n"
)

YUV_END = (
    "   fragColor  = yuvTex;        \n"
    "}\n"
)

# Stands for the tests of a view's band in the fragment shaders.
DISCARD = "   if (gl_FragCoord.x<0.0 || gl_FragCoord.x>959.0) discard;        \n"

FORMATS_RGB = (0, 4)
FORMATS_RGBA = (7, 8)
FORMAT_GRAY = 9
FORMATS_NV = (5, 10)
FORMAT_PLANAR = 6
FORMATS_NONE = (-1, 1, 2, 3, 11)
FORMATS = FORMATS_RGB + FORMATS_RGBA + (FORMAT_GRAY,) + FORMATS_NV + (FORMAT_PLANAR,) + FORMATS_NONE


def single(value):
    """Rounds to single precision."""
    return struct.unpack("f", struct.pack("f", value))[0]


def with_point(value):
    text = "%g" % single(value)
    return text if "." in text else text + ".0"


def range_text(levels):
    luma_min, luma_max, chroma_min = levels
    a = single(luma_min / 255)
    b = single(single(luma_max / 255) - a)
    chroma = single(chroma_min / 255)
    c = single(single(1 - chroma) - chroma)
    return RANGE.format(a="%g" % a, b="%g" % b, c="%g" % c)


def fragment(image, gain, overlay, qp, space, yuv_range, levels=(16, 235, 16), gains=(1.1765, 2.0)):
    declaration, blend = (OVL_DECL, OVL_BLEND) if overlay else ("", "")
    gain_text = GAIN.format(luma=with_point(gains[0]), chroma=with_point(gains[1])) if gain else ""
    scaled = (range_text(levels) if yuv_range == 2 else "") + gain_text + CONVERSION[space]
    adjusted = RGB2YUV + gain_text + YUV2RGB_ADJ
    start = declaration + MAIN + DISCARD
    if image in FORMATS_RGB:
        return H_RGB + start + (adjusted if gain else RGB_FETCH) + blend + OUT + END
    if image in FORMATS_RGBA:
        if gain:
            return H_RGB + start + adjusted + blend + OUT + END
        return H_RGB + start + RGB_FETCH + blend + PREMUL_OUT + END
    if image == FORMAT_GRAY:
        return H_RGB + start + RGB_FETCH + blend + OUT_END
    if image in FORMATS_NV:
        return H_NV + start + NV_Y + (NV_UV_RA if image == 5 else NV_UV_AR) + scaled + blend + OUT_END
    if image == FORMAT_PLANAR:
        body = P_YUV + (QP_BODY if qp else "")
        return H_P + (QP_DECL if qp else "") + start + body + scaled + blend + OUT_END
    return ""


def vertex(rotation, horizontal, vertical, upside_down):
    x, y = (horizontal, vertical) if rotation in (0, 180) else (vertical, horizontal)
    lines = (V_X if x else "") + (V_Y if y else "")
    return V_BEGIN + lines + V_POSITION + (V_UPSIDE_DOWN if upside_down else "") + V_END


def composite(to_texture):
    if to_texture:
        return COMPOSITE_1 + COMPOSITE_2 + COMPOSITE_OUT + COMPOSITE_3 + COMPOSITE_4
    return (COMPOSITE_1 + COMPOSITE_YUV + COMPOSITE_2 + COMPOSITE_OUT_YUV + COMPOSITE_3 + COMPOSITE_FLIP +
            COMPOSITE_4)


def yuv_fragment(to_texture, overlay):
    return (YUV_BEGIN + (YUV_OUT if to_texture else YUV_OUT_YUV) + (YUV_OVL_DECL if overlay else "") + YUV_MAIN +
            DISCARD + YUV_FETCH + (YUV_OVL_BLEND if overlay else "") + YUV_END)


def all_cases():
    """Yields (key, text)."""
    for case in itertools.product((0, 90, 180, 270, 45, -90), (0, 1), (0, 1), (0, 1)):
        yield "vertex %d %d %d %d" % case, vertex(*case)
    for case in itertools.product(FORMATS, (0, 1), (0, 1), (0, 1), (1, 2, 3, 4), (1, 2)):
        yield "fragment %d %d %d %d %d %d" % case, fragment(*case)
    for levels in ((16, 235, 16), (0, 255, 0), (0, 235, 16), (16, 255, 0), (16, 16, 16), (1, 254, 127), (-20, 300, 200),
                   (255, 0, 255), (1000000000, 7, 1000000000)):
        for image in (5, 6, 10):
            yield "levels %d %d %d %d" % ((image,) + levels), fragment(image, 0, 0, 0, 1, 2, levels=levels)
    for gains in (("1", "1"), ("1.5", "0.25"), ("0", "-0"), ("-2", "100000"), ("1e+06", "1e-07"), ("123456.789", "0.1")):
        for image in (0, 5, 6, 7, 9):
            yield ("gains %d %s %s" % ((image,) + gains),
                   fragment(image, 1, 0, 0, 1, 1, gains=tuple(float(g) for g in gains)))
    for name, text in PASS.items():
        yield "pass " + name, text
    for to_texture in (0, 1):
        yield "composite %d" % to_texture, composite(to_texture)
        yield "yuvvertex %d" % to_texture, YUV_V_BEGIN + ("" if to_texture else V_UPSIDE_DOWN) + YUV_V_END
        for overlay in (0, 1):
            yield "yuvfragment %d %d" % (to_texture, overlay), yuv_fragment(to_texture, overlay)


def main():
    numbers = {}
    cases = "".join("%s\t%d\n" % (key, numbers.setdefault(text, len(numbers))) for key, text in all_cases())
    texts = "".join("=== %d %d\n%s\n" % (number, len(text), text) for text, number in numbers.items())
    folder = pathlib.Path(__file__).resolve().parent
    status = 0
    for name, contents in (("cases.golden", cases), ("texts.golden", texts)):
        path = folder / name
        if "--check" not in sys.argv[1:]:
            path.write_bytes(contents.encode("ascii"))
        elif path.read_bytes() != contents.encode("ascii"):
            print("%s differs from what make_golden.py writes" % name)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
