#pragma once

#include "base/Date.h"

#include <cstdint>
#include <string>

namespace tovi::cli {

/// With thousands separators, for instance "6,051".
std::string formatCount(std::int64_t count);

/// The count with its noun, for instance "1 file" or "6,051 files".
std::string formatCount(std::int64_t count, const char* noun);

/// In decimal units, for instance "1.5 MB".
std::string formatSize(std::int64_t bytes);

/// Local time to the minute, for instance "2026-11-21 03:39".
std::string formatDate(Date date);

/// Whether people read the stream on a terminal.
bool isTerminal(int descriptor);

/// The text in bold or dim where standard output is a terminal that wants colours.
std::string bold(const std::string& text);
std::string dim(const std::string& text);

} // namespace tovi::cli
