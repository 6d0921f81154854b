/// \file
/// Whether contenders draw the same picture, before anything is timed.
#pragma once

#include "bench/peers/Peer.h"

#include <string>
#include <utility>
#include <vector>

/// Decibels between the view of the first contender and that of each other one, after a turn and back.
/// Contenders that show another view than the rest are left out; one that should show the same and does not
/// ends the program.
std::vector<std::pair<std::string, double>> ComparePictures(const std::vector<CPeer*>& vPeers);
