/// \file
/// Graphic buffers as this platform brings them to the driver.
#pragma once

#include "platform/EGLExtensions.h"

/// The entry points as this platform offers them: the driver's own on Android; elsewhere those around the
/// stand-in of android::GraphicBuffer, where eglCreateImageKHR takes such a buffer and eglClientWaitSyncKHR
/// also brings the drawn picture into it. Thread: any.
/// Fails: entry by entry, with null.
SEGLExtensions LoadEGLExtensions();

/// Waits until everything is drawn and the output buffer holds it, without a fence. Thread: GL thread.
void FinishBufferImages();

/// True when images of buffers of this pixel format are YUV to the driver, so that drawing into them takes
/// YUV outputs; false when they are plain colours. Thread: any.
bool IsYUVImage(int nPixelFormat);

/// Lets go of what images of buffers keep in a context between frames. The context is about to be destroyed;
/// where it is current its names are deleted, else they die with it. Thread: GL thread.
void ReleaseBufferImages(EGLContext pContext);
