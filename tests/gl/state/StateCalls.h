/// \file
/// Bytes to calls of every control operation, with arguments that are accepted and others.
#pragma once

#include "tests/fuzz/FuzzBytes.h"
#include "tests/gl/state/StatePlayer.h"

#include <functional>
#include <utility>

/// A call made of words and anything that can be called with a player.
template <class F>
SStateCall MakeCall(std::string strWords, F fCall)
{
    SStateCall sCall;
    sCall.strWords = std::move(strWords);
    sCall.pArguments = std::make_shared<const F>(std::move(fCall));
    sCall.fCall = [](CStatePlayer& rPlayer, const std::shared_ptr<const void>& pArguments) {
        (*static_cast<const F*>(pArguments.get()))(rPlayer);
    };
    return sCall;
}

/// The number as it can be written into a test.
std::string NumberWords(float fNumber);

/// Reads calls until the bytes or nMost calls are used up. A frame stands at the beginning, a frame that is
/// compared at the end.
std::vector<SStateCall> ReadStateCalls(CFuzzBytes& rBytes, int nMost);

// The kinds of calls.
SStateCall FrameCall(CFuzzBytes& rBytes);
SStateCall BadFrameCall(CFuzzBytes& rBytes);
SStateCall DrawCall(CFuzzBytes& rBytes);
SStateCall TargetCall(CFuzzBytes& rBytes);
SStateCall RestartCall(CFuzzBytes& rBytes);
SStateCall FreeCall(CFuzzBytes& rBytes);
SStateCall ViewCall(CFuzzBytes& rBytes);
SStateCall MountCall(CFuzzBytes& rBytes);
SStateCall LensCall(CFuzzBytes& rBytes);
SStateCall ColourCall(CFuzzBytes& rBytes);
SStateCall OrientationCall(CFuzzBytes& rBytes);
SStateCall WallCall(CFuzzBytes& rBytes);
SStateCall MoveCall(CFuzzBytes& rBytes);
SStateCall MouseCall(CFuzzBytes& rBytes);
SStateCall InputOverlayCall(CFuzzBytes& rBytes);
SStateCall OutputOverlayCall(CFuzzBytes& rBytes);
SStateCall MaskCall(CFuzzBytes& rBytes);
SStateCall StringCall(CFuzzBytes& rBytes);
