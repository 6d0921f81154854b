/// \file
/// What a process spends in the driver, by kind of call. Programs that are built with StageClock.cpp define
/// some GL and EGL entry points themselves, which pass every call on and take its time.
#pragma once

enum EStage : int
{
    STAGE_CONTEXT, ///< display, context, making it current
    STAGE_SHADERS, ///< compiling and linking
    STAGE_UPLOAD,  ///< textures and buffers
    STAGE_DRAW,    ///< draw calls and waiting for them; a software driver translates shaders here
    STAGE_READ,    ///< read-back
    STAGE_COUNT
};

const char* StageName(EStage eStage);
/// Milliseconds in calls of that kind since the program began. One thread only.
double StageMilliseconds(EStage eStage);
