#include "core/records/FileKind.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(FileKind, ClassifiesFilesByName) {
    const std::pair<const char*, FileKind> table[] = {
        {"README", FileKind::code},
        {"readme", FileKind::other},
        {"Dockerfile", FileKind::code},
        {"Scan.PDF", FileKind::pdf},
        {"page.html", FileKind::code},
        {"data.json", FileKind::code},
        {"clip.ts", FileKind::code},
        {"backup.tar.gz", FileKind::archive},
        {"photo.HEIC", FileKind::image},
        {"film.mkv", FileKind::video},
        {"song.opus", FileKind::audio},
        {"notes.md", FileKind::document},
        {"sheet.numbers", FileKind::document},
        {"letter.docx", FileKind::document},
        {"talk.key", FileKind::document},
        {"Tool.app", FileKind::other},
        {"noextension", FileKind::other},
        {".bashrc", FileKind::other},
    };
    for (const auto& [name, kind] : table)
        EXPECT_EQ(classify(name, false), kind) << name;
}

TEST(FileKind, ClassifiesDirectoriesByTheBundleExtensionOnly) {
    EXPECT_EQ(classify("Tool.APP", true), FileKind::application);
    EXPECT_EQ(classify("README", true), FileKind::folder);
    EXPECT_EQ(classify("scan.pdf", true), FileKind::folder);
}

TEST(FileKind, ReadsBackEveryRawValue) {
    for (const FileKind kind : allFileKinds)
        EXPECT_EQ(fileKindFromRawValue(rawValue(kind)), kind);
    EXPECT_FALSE(fileKindFromRawValue("PDF"));
    EXPECT_EQ(title(FileKind::pdf), "Pdf");
    EXPECT_EQ(symbol(FileKind::code), "chevron.left.forwardslash.chevron.right");
}

} // namespace
} // namespace tovi
