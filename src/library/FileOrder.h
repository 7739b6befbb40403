// The order of audio files: that of their paths, as a file manager shows them. No state; any thread.
#pragma once

#include "library/LibraryScan.h"

#include <vector>

namespace FileOrder {

/// Quick where most are in order already, as those of one folder are, and a library that comes back, save for what was
/// added last. Returns whether they were, and none can be there twice.
bool sort(std::vector<AudioFile> &files);

} // namespace FileOrder
