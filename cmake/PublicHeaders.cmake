# The headers that are installed; all others are the library's own business. They are what
# dewarp/LumorDewarp.h reaches, and what hosts include beside it, each with its reason.
set(LUMOR_PUBLIC_HEADERS
    dewarp/CustomGPUDewarper.h
    dewarp/CustomGPUGeometry.h
    dewarp/Dewarper.h
    dewarp/DewarperState.h
    dewarp/LumorDewarp.h
    dewarp/cpu/CustomCPUDewarper.h
    dewarp/geometry/CustomGPUGeometry.h
    dewarp/geometry/Matrix.h
    dewarp/geometry/MeshKey.h
    dewarp/gl/GPUObjBase.h
    dewarp/gl/GPUObjFisheye.h
    dewarp/gl/GPUObjPanorama.h
    dewarp/gl/GPUObjPanoramaMulti.h
    dewarp/gl/GPUObjPanoramaWall.h
    dewarp/gl/GPUObjPolygon.h
    dewarp/gl/GPUObjString.h
    dewarp/gl/GPUObjVCAM.h
    dewarp/gl/GPUObjView.h
    dewarp/gl/SGOverlay.h
    dewarp/gl/SShaderProperties.h
    dewarp/lenses/LensSizes.h
    dewarp/lenses/SLens.h
    dewarp/offscreen/CustomGPUDewarperOffscreen.h
    dewarp/overlays/MaskPolygonFormat.h
    dewarp/overlays/SGPUString.h
    dewarp/overlays/StringFormat.h
    dewarp/records/Enumerations.h
    dewarp/records/SDewarpMatrices.h
    dewarp/records/SDewarpParams.h
    dewarp/records/SDirection.h
    dewarp/records/SFramePlanes.h
    dewarp/records/SFrameTarget.h
    dewarp/records/SGRect.h
    dewarp/records/SImageProperties.h
    dewarp/records/SPTZLimits.h
    dewarp/records/SPane.h
    dewarp/records/SPointD.h
    dewarp/records/SQPInfo.h
    dewarp/records/SViewShape.h
    dewarp/records/SYUV2RGBConversionParams.h
    dewarp/tables/GPUFont.h
    dewarp/tables/LensDistortion.h
    platform/Export.h

    dewarp/android/CustomGPUDewarperVela.h # the dewarper of graphic buffers
    dewarp/lenses/CircleFinder.h # finds the image circle of a frame before a dewarper is set up
    dewarp/records/YUVColour.h # colours for pictures of graphic buffers
    platform/Assert.h # the assertion that a program may replace
    platform/CurrentContext.h # a member of the dewarper of graphic buffers
    platform/EGLExtensions.h # a member of the dewarper of graphic buffers
    platform/LogSink.h # where log lines go
    platform/ShaderDialect.h # the switch of the adaption of precision
)

# Graphic buffers under Android's name, for hosts of their dewarper where the system has none.
set(LUMOR_STAND_IN_HEADERS ui/GraphicBuffer.h)
