#pragma once

#include "base/Date.h"

#include <string>

namespace tovi {

/// Renames the index at `path` and the files SQLite keeps beside it, so that a new one can take
/// its place; the new name carries the date. Returns the new path. Throws `IntelligenceError` if
/// a program is using the index or a name is taken; nothing is overwritten.
std::string moveIndexAside(const std::string& path, Date date);

} // namespace tovi
