#pragma once

#include "core/store/Database.h"

#include <memory>
#include <string>

namespace tovi {

/// The version of the schema, kept in `user_version`.
inline constexpr int indexSchemaVersion = 2;

/// Opens the index at `path` for writing: creates its directory (mode 0700) and the file (0600)
/// where missing, brings the schema up to date and registers `tovi_source_group`. A database of a
/// newer version is refused and left as it is. Throws `IntelligenceError`, or `std::system_error`
/// where the directory cannot be made.
std::unique_ptr<Database> openIndexForWriting(const std::string& path);

/// Opens an existing index without writing to it. Throws `IntelligenceError`.
std::unique_ptr<Database> openIndexForReading(const std::string& path);

} // namespace tovi
