/// \file
/// GL's error flags.
#pragma once

/// Takes every error that waits in the current context. nLast becomes the last one and stays as it is when
/// there is none. Returns true when one of them was a lack of memory. Thread: GL thread. Fails: never; a
/// context that is lost answers errors without end and is asked a few times only.
bool TakeDriverErrors(unsigned int& nLast);
