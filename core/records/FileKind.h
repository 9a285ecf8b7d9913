#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tovi {

/// The coarse kind of a file, chosen from its name.
enum class FileKind {
    image,
    video,
    audio,
    pdf,
    document,
    archive,
    application,
    folder,
    code,
    other,
};

inline constexpr std::array allFileKinds{
    FileKind::image,   FileKind::video,       FileKind::audio,  FileKind::pdf,  FileKind::document,
    FileKind::archive, FileKind::application, FileKind::folder, FileKind::code, FileKind::other};

/// The form in the database and in JSON, for instance "pdf".
std::string_view rawValue(FileKind kind);
std::optional<FileKind> fileKindFromRawValue(std::string_view text);

/// The raw value with its first letter capitalised, for instance "Pdf".
std::string_view title(FileKind kind);

/// The name of the kind's icon, for instance "doc.richtext".
std::string_view symbol(FileKind kind);

/// `name` is the last path component.
FileKind classify(std::string_view name, bool isDirectory);

} // namespace tovi
