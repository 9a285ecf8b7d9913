#include "tests/support/TemporaryTree.h"
#include "ui/desktop/PreviewImages.h"

#include <QImage>
#include <QSignalSpy>
#include <QUrl>

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(PreviewImages, GivesPicturesOfAnyNameAndAPixelForTheRest) {
    const test::TemporaryTree tree;
    decoder::DecoderPool decoders({.program = TOVI_DECODER, .processes = 1});
    const platform::SystemAvailability availability;
    PreviewImages images(decoders, availability);
    const auto sizeOf = [&](const QString& path, int side) {
        const QString id =
            QString::fromLatin1(QUrl::toPercentEncoding(path)) + QStringLiteral("?1");
        const std::unique_ptr<QQuickImageResponse> response(
            images.requestImageResponse(id, {side, side}));
        QSignalSpy finished(response.get(), &QQuickImageResponse::finished);
        EXPECT_TRUE(finished.wait(60'000));
        const std::unique_ptr<QQuickTextureFactory> made(response->textureFactory());
        return made->image().size();
    };
    QImage picture(300, 200, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString path =
        QString::fromStdString(tree.path()) + QStringLiteral("/100% a?b#c\nd ü.png");
    ASSERT_TRUE(picture.save(path));
    EXPECT_EQ(sizeOf(path, 150), QSize(150, 100));
    EXPECT_EQ(sizeOf(path, 9'999), QSize(300, 200));

    picture.fill(Qt::white);
    const QString white = QString::fromStdString(tree.path("white.png"));
    ASSERT_TRUE(picture.save(white));
    EXPECT_EQ(sizeOf(white, 150), QSize(150, 100));
    for (const QString& none :
         {QString::fromStdString(tree.write("text.png", "no picture")),
          QString::fromStdString(tree.path("gone.png")), QString::fromStdString(tree.path())}) {
        EXPECT_EQ(sizeOf(none, 150), QSize(1, 1)) << none.toStdString();
    }
}

} // namespace
} // namespace tovi
