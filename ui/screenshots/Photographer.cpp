#include "ui/screenshots/Photographer.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QQuickWindow>
#include <QTimer>

namespace tovi {
namespace {

constexpr int tileWidth = 394;
constexpr int columns = 4;
constexpr int gap = 8;

/// None if nothing visible below `at` is told by this name.
QAccessibleInterface* find(QAccessibleInterface* at, const QString& name) {
    for (int child = 0; child < at->childCount(); ++child) {
        QAccessibleInterface* next = at->child(child);
        if (!next || next->state().invisible) continue;
        if (next->text(QAccessible::Name) == name) return next;
        if (QAccessibleInterface* found = find(next, name)) return found;
    }
    return nullptr;
}

} // namespace

Photographer::Photographer(Application& application, QString outDirectory, QString suffix)
    : application_(application), out_(std::move(outDirectory)), suffix_(std::move(suffix)) {
    QAccessible::setActive(true);
}

void Photographer::connect(const QString& folder) {
    model().folders()->grantFolders({folder});
    waitFor([&] { return model().scan()->isIndexing(); });
    waitFor(
        [&] { return !model().scan()->isIndexing() && model().library()->files()->count() > 0; });
}

void Photographer::show(const QString& section) {
    model().setSection(section);
    settle();
}

void Photographer::showQuickSearch(const QString& query) {
    QuickSearchState& state = application_.integration().quickSearch();
    state.setQuery(query);
    application_.integration().showQuickSearch({});
    settle();
    waitFor([&] { return !state.isSearching(); });
}

void Photographer::press(Qt::Key key, int times) {
    for (int at = 0; at < times; ++at) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QCoreApplication::sendEvent(shown(), &event);
        }
    }
}

void Photographer::type(const QString& text) {
    for (const QChar letter : text) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, letter);
        QCoreApplication::sendEvent(shown(), &event);
    }
}

void Photographer::click(const QString& name) {
    waitUntilTold(name);
    QAccessibleInterface* told =
        find(QAccessible::queryAccessibleInterface(application_.window()), name);
    told->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    settle();
}

void Photographer::waitFor(const std::function<bool()>& condition) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.hasExpired(120'000)) throw std::runtime_error("The window did not get ready.");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
}

bool Photographer::isTold(const QString& name) {
    return find(QAccessible::queryAccessibleInterface(application_.window()), name) != nullptr;
}

void Photographer::waitUntilTold(const QString& name) {
    waitFor([&] { return isTold(name); });
}

void Photographer::settle(int milliseconds) {
    bool isOver = false;
    QTimer::singleShot(milliseconds, [&] { isOver = true; });
    waitFor([&] { return isOver; });
}

void Photographer::take(const QString& name) {
    settle();
    const QImage image = shown()->grabWindow();
    if (isContactSheet_)
        tiles_.append(image.scaledToWidth(tileWidth, Qt::SmoothTransformation));
    else
        save(image, name);
}

void Photographer::saveContactSheet(const QString& name) {
    const QSize tile = tiles_.front().size();
    const int rows = (static_cast<int>(tiles_.size()) + columns - 1) / columns;
    QImage sheet(columns * (tile.width() + gap) + gap, rows * (tile.height() + gap) + gap,
                 QImage::Format_RGB888);
    sheet.fill(Qt::gray);
    QPainter painter(&sheet);
    for (int at = 0; at < tiles_.size(); ++at) {
        painter.drawImage(gap + at % columns * (tile.width() + gap),
                          gap + at / columns * (tile.height() + gap), tiles_[at]);
    }
    painter.end();
    save(sheet, name);
}

QQuickWindow* Photographer::shown() {
    for (QWindow* each : QGuiApplication::topLevelWindows()) {
        if (each != application_.window() && each->isVisible())
            return qobject_cast<QQuickWindow*>(each);
    }
    return application_.window();
}

void Photographer::save(const QImage& image, const QString& name) {
    const QString file = out_ + u'/' + name + suffix_ + QStringLiteral(".png");
    if (!image.convertToFormat(QImage::Format_RGB888).save(file, "PNG", 0))
        throw std::runtime_error("Could not write " + file.toStdString());
}

} // namespace tovi
