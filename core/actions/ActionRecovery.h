#pragma once

#include "core/actions/ActionLog.h"
#include "platform/ExclusiveMove.h"
#include "platform/Trash.h"

namespace tovi {

/// Completes the receipt of a run that a crash or a power cut ended, from the note of its last
/// step: where the file is tells whether that step was made. Moves no file, but for the old name
/// of one that was left with both. The caller holds the lock. Throws `ActionError`.
void recoverInterruptedRun(ActionLog& log, platform::Trash& trash, platform::ExclusiveMove& move);

} // namespace tovi
