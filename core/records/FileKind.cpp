#include "core/records/FileKind.h"

#include "base/Text.h"

#include <algorithm>
#include <string>

namespace tovi {
namespace {

struct KindTexts {
    std::string_view rawValue;
    std::string_view title;
    std::string_view symbol;
};

constexpr std::array<KindTexts, allFileKinds.size()> kindTexts{{
    {"image", "Image", "photo"},
    {"video", "Video", "film"},
    {"audio", "Audio", "waveform"},
    {"pdf", "Pdf", "doc.richtext"},
    {"document", "Document", "doc.text"},
    {"archive", "Archive", "archivebox"},
    {"application", "Application", "app"},
    {"folder", "Folder", "folder"},
    {"code", "Code", "chevron.left.forwardslash.chevron.right"},
    {"other", "Other", "doc"},
}};

const KindTexts& textsOf(FileKind kind) {
    return kindTexts[static_cast<std::size_t>(kind)];
}

constexpr std::array<std::string_view, 4> codeNames{"README", "LICENSE", "Makefile", "Dockerfile"};

constexpr std::array<std::string_view, 22> codeExtensions{
    "swift", "py", "js",   "jsx",  "ts",  "tsx",  "rs", "go",  "c",    "h",   "cpp",
    "m",     "mm", "json", "yaml", "yml", "toml", "sh", "css", "html", "xml", "sql"};

constexpr std::array<std::string_view, 10> archiveExtensions{"zip", "tar", "gz",  "bz2", "xz",
                                                             "7z",  "rar", "dmg", "pkg", "iso"};

constexpr std::array<std::string_view, 34> imageExtensions{
    "jpg",  "jpeg", "jpe", "jfif", "png",  "apng", "gif", "webp", "heic", "heif", "avif", "tif",
    "tiff", "bmp",  "dib", "ico",  "icns", "svg",  "psd", "xcf",  "jp2",  "jxl",  "tga",  "dng",
    "cr2",  "cr3",  "nef", "arw",  "orf",  "rw2",  "raf", "pef",  "exr",  "pbm"};

constexpr std::array<std::string_view, 18> movieExtensions{
    "mp4", "m4v", "mov", "qt",  "avi", "mkv", "webm", "mpg",  "mpeg",
    "m2v", "3gp", "3g2", "wmv", "flv", "ogv", "mts",  "m2ts", "vob"};

constexpr std::array<std::string_view, 19> audioExtensions{
    "mp3", "m4a", "m4b",  "aac", "wav", "wave", "aif", "aiff", "aifc", "flac",
    "ogg", "oga", "opus", "wma", "mid", "midi", "caf", "au",   "ac3"};

constexpr std::array<std::string_view, 30> textExtensions{
    "txt", "text", "md",  "markdown", "csv", "tsv",  "log",  "rtf", "tex",  "srt",
    "vtt", "vcf",  "ics", "rst",      "org", "adoc", "java", "kt",  "rb",   "php",
    "pl",  "pm",   "lua", "cc",       "cxx", "hpp",  "hh",   "ini", "diff", "patch"};

constexpr std::array<std::string_view, 13> documentExtensions{
    "doc",  "docx", "pages", "xls", "xlsx", "numbers", "ppt",
    "pptx", "key",  "rtf",   "md",  "txt",  "csv"};

template <std::size_t count>
bool contains(const std::array<std::string_view, count>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

std::string_view rawValue(FileKind kind) {
    return textsOf(kind).rawValue;
}
std::string_view title(FileKind kind) {
    return textsOf(kind).title;
}
std::string_view symbol(FileKind kind) {
    return textsOf(kind).symbol;
}

std::optional<FileKind> fileKindFromRawValue(std::string_view text) {
    for (const FileKind kind : allFileKinds) {
        if (rawValue(kind) == text) return kind;
    }
    return std::nullopt;
}

FileKind classify(std::string_view name, bool isDirectory) {
    const std::string extension = lowercasedExtension(name);
    if (isDirectory) return extension == "app" ? FileKind::application : FileKind::folder;
    if (contains(codeNames, name)) return FileKind::code;
    if (extension == "pdf") return FileKind::pdf;
    if (contains(codeExtensions, extension)) return FileKind::code;
    if (contains(archiveExtensions, extension)) return FileKind::archive;
    if (contains(imageExtensions, extension)) return FileKind::image;
    if (contains(movieExtensions, extension)) return FileKind::video;
    if (contains(audioExtensions, extension)) return FileKind::audio;
    if (contains(textExtensions, extension)) return FileKind::document;
    if (contains(documentExtensions, extension)) return FileKind::document;
    return FileKind::other;
}

} // namespace tovi
