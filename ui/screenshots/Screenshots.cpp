#include "ui/desktop/Application.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QQuickWindow>
#include <QTimer>
#include <cstdio>
#include <functional>

namespace tovi {
namespace {

class NoOpener final : public FileOpener {
  public:
    bool open(const std::string&) override { return true; }
    bool reveal(const std::string&) override { return true; }
};

/// Runs the event loop until the condition holds.
void waitFor(const std::function<bool()>& condition) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (!condition()) {
        if (elapsed.hasExpired(120'000)) throw std::runtime_error("The window did not get ready.");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
}

/// Lets what has begun, such as a fade, come to its end.
void settle() {
    bool isOver = false;
    QTimer::singleShot(400, [&] { isOver = true; });
    waitFor([&] { return isOver; });
}

class Photographer {
  public:
    Photographer(Application& application, QString outDirectory, QString suffix)
        : application_(application), out_(std::move(outDirectory)), suffix_(std::move(suffix)) {}

    VaultModel& vault() { return application_.vault(); }
    CleanupModel& cleanup() { return application_.cleanup(); }
    AppModel& model() { return application_.model(); }

    void connect(const QString& folder) {
        model().folders()->grantFolders({folder});
        waitFor([&] { return model().scan()->isIndexing(); });
        waitFor([&] {
            return !model().scan()->isIndexing() && model().library()->files()->count() > 0;
        });
    }

    void press(Qt::Key key, int times = 1) {
        for (int at = 0; at < times; ++at) {
            for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
                QKeyEvent event(type, key, Qt::NoModifier);
                QCoreApplication::sendEvent(application_.window(), &event);
            }
        }
    }

    void take(const QString& name) {
        settle();
        const QImage image = application_.window()->grabWindow();
        if (isContactSheet_)
            tiles_.append(image.scaledToWidth(tileWidth, Qt::SmoothTransformation));
        else
            save(image, name);
    }

    /// Keeps what is taken from now on for one picture of them all.
    void beginContactSheet() { isContactSheet_ = true; }

    void saveContactSheet(const QString& name) {
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

    void show(const QString& section) { model().setSection(section); }

  private:
    static constexpr int tileWidth = 394;
    static constexpr int columns = 4;
    static constexpr int gap = 8;

    void save(const QImage& image, const QString& name) {
        const QString file = out_ + u'/' + name + suffix_ + QStringLiteral(".png");
        if (!image.convertToFormat(QImage::Format_RGB888).save(file, "PNG", 0))
            throw std::runtime_error("Could not write " + file.toStdString());
    }

    Application& application_;
    QString out_;
    QString suffix_;
    bool isContactSheet_ = false;
    QList<QImage> tiles_;
};

/// What is done before a picture, by its name; a name that is not here is a section.
const std::map<QString, std::function<void(Photographer&)>>& scenes() {
    static const std::map<QString, std::function<void(Photographer&)>> all{
        {QStringLiteral("files"),
         [](Photographer& at) {
             at.show(QStringLiteral("files"));
             settle();
             at.press(Qt::Key_Down);
             for (int wait = 0; wait < 4; ++wait) // for the preview
                 settle();
         }},
        {QStringLiteral("preview"),
         [](Photographer& at) {
             at.show(QStringLiteral("files"));
             settle();
             at.press(Qt::Key_Down);
             at.press(Qt::Key_Space);
             for (int wait = 0; wait < 4; ++wait)
                 settle();
         }},
        {QStringLiteral("search"),
         [](Photographer& at) {
             const QString phrase = QStringLiteral("pdfs privacy committee");
             at.model().search()->setQuery(phrase);
             at.show(QStringLiteral("search"));
             waitFor([&] { return at.model().search()->results()->count() > 0; });
             settle(); // the excerpts
         }},
        {QStringLiteral("spaces"),
         [](Photographer& at) {
             QStringList paths;
             for (const FileRecord& file : at.model().library()->records()) {
                 if (file.path.find("Kitchen Rebuild/") != std::string::npos)
                     paths.append(QString::fromStdString(file.path));
             }
             if (at.model().spaces()->spaces().empty())
                 at.model().spaces()->createSpace(QStringLiteral("Kitchen"), paths);
             at.show(QStringLiteral("spaces"));
         }},
        {QStringLiteral("duplicates"),
         [](Photographer& at) {
             at.show(QStringLiteral("duplicates"));
             at.model().duplicates()->findDuplicates();
             waitFor([&] { return !at.model().duplicates()->isFindingDuplicates(); });
         }},
        {QStringLiteral("review"),
         [](Photographer& at) {
             at.show(QStringLiteral("files"));
             QStringList paths;
             for (const FileRecord& file : at.model().library()->records()) {
                 if (paths.size() < 4) paths.append(QString::fromStdString(file.path));
             }
             at.model().plans()->proposeTrash(paths);
             waitFor([&] { return at.model().plans()->proposedPlan().has_value(); });
         }},
        {QStringLiteral("activity"),
         [](Photographer& at) {
             PlansModel& plans = *at.model().plans();
             if (plans.receipts().empty()) scenes().at(QStringLiteral("review"))(at);
             const auto before = plans.receipts().size();
             if (plans.proposedPlan()) {
                 plans.confirmPlan(
                     plans.proposedPlanValues().value(QStringLiteral("id")).toString());
                 waitFor([&] { return plans.receipts().size() > before && !plans.isExecuting(); });
             }
             at.show(QStringLiteral("activity"));
         }},
        {QStringLiteral("storage"),
         [](Photographer& at) {
             at.show(QStringLiteral("storage"));
             at.cleanup().scan();
             waitFor([&] { return !at.cleanup().isScanning() && at.cleanup().hasReport(); });
         }},
        {QStringLiteral("vault-open"),
         [](Photographer& at) {
             VaultModel& vault = at.vault();
             std::vector<std::string> paths;
             for (const FileRecord& file : at.model().library()->records()) {
                 if (file.path.find("Lease") != std::string::npos && paths.size() < 4)
                     paths.push_back(file.path);
             }
             at.show(QStringLiteral("vault"));
             waitFor([&] { return vault.phase() != VaultModel::Phase::loading; });
             const bool isNew = vault.phase() == VaultModel::Phase::notCreated;
             vault.authenticate(QStringLiteral("a password for the pictures"), isNew);
             waitFor(
                 [&] { return vault.phase() == VaultModel::Phase::unlocked && !vault.isBusy(); });
             if (isNew) vault.importFiles(paths);
             waitFor([&] { return !vault.isBusy(); });
         }},
        {QStringLiteral("vault-locked"),
         [](Photographer& at) {
             at.vault().lock();
             waitFor([&] { return !at.vault().isBusy(); });
         }},
        {QStringLiteral("offer"), [](Photographer& at) { at.model().folders()->addHomeFolder(); }},
        {QStringLiteral("palette"),
         [](Photographer& at) { at.model().setShowCommandPalette(true); }},
    };
    return all;
}

void run(const QCommandLineParser& line) {
    NoOpener opener;
    Application application(
        {.dataDirectory = QFile::encodeName(line.value(QStringLiteral("data-dir"))).toStdString(),
         .isDataDirectoryGiven = true,
         .decoderProgram =
             (QCoreApplication::applicationDirPath() + QStringLiteral("/tovi-decoder"))
                 .toStdString(),
         .section = {}},
        opener);
    if (!application.window()) throw std::runtime_error("The screens could not be loaded.");
    Photographer photographer(application, line.value(QStringLiteral("out")),
                              line.value(QStringLiteral("suffix")));
    const QStringList size = line.value(QStringLiteral("size")).split(u'x');
    if (size.size() == 2) application.window()->resize(size[0].toInt(), size[1].toInt());
    AppModel& model = application.model();
    waitFor([&] { return model.isLoaded(); });
    const QString theme = line.value(QStringLiteral("theme"));
    if (!theme.isEmpty()) model.settings()->setThemeChoice(theme);
    const QString folder = line.value(QStringLiteral("folder"));
    if (!folder.isEmpty() && model.folders()->roots().empty()) photographer.connect(folder);
    waitFor([&] {
        return !model.scan()->isIndexing() &&
               (folder.isEmpty() || model.library()->files()->count() > 0);
    });
    const QString contactSheet = line.value(QStringLiteral("contact-sheet"));
    if (!contactSheet.isEmpty()) photographer.beginContactSheet();
    for (const QString& name : line.positionalArguments()) {
        const auto scene = scenes().find(name);
        scene == scenes().end() || (folder.isEmpty() && name != QStringLiteral("offer"))
            ? photographer.show(name)
            : scene->second(photographer);
        photographer.take(name);
        model.setShowCommandPalette(false);
        if (model.plans()->proposedPlan()) model.plans()->cancelPlan();
        photographer.press(Qt::Key_Escape);
    }
    if (!contactSheet.isEmpty()) photographer.saveContactSheet(contactSheet);
    waitFor([&] { return model.isSaved(); });
}

} // namespace
} // namespace tovi

/// Draws screens of the program into PNG files, or all into one: the names of sections or scenes,
/// in this order.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    QCommandLineParser line;
    for (const char* option :
         {"contact-sheet", "data-dir", "folder", "out", "size", "suffix", "theme"})
        line.addOption({QString::fromLatin1(option), QString(), QStringLiteral("value")});
    line.addOption({QStringLiteral("mirrored"), QString()});
    line.process(application);
    if (line.isSet(QStringLiteral("mirrored")))
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    try {
        tovi::run(line);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
