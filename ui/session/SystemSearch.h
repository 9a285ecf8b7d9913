#pragma once

#include "app/model/AppModel.h"
#include "ui/session/DesktopSettings.h"

#include <QDBusConnection>

namespace tovi {

/// Answers the search of the desktop from the index, which holds nothing of the vault: GNOME Shell
/// (org.gnome.Shell.SearchProvider2) and KRunner (org.kde.krunner1) ask it on the session bus.
/// While the user has not turned it on, no file is found. Lives on the main thread.
class SystemSearch : public QObject {
    Q_OBJECT

  public:
    static constexpr std::int64_t mostFiles = 15;
    using Answer = std::function<void(const std::vector<FileRecord>& files)>;

    /// To be made before the program's name is on the bus, so that no call finds the name without
    /// the objects.
    explicit SystemSearch(QDBusConnection bus);

    /// To be called once, before the event loop runs; what is given outlives this.
    void answerFrom(Executor& executor, AppModel& model, const DesktopSettings& settings);

    /// Finds files for a phrase, newest first. `answer` is called once, later; with nothing where
    /// another phrase is asked for before the answer.
    void find(const QString& phrase, Answer answer);
    /// The files of these paths that are in the index.
    void describe(const QStringList& paths, Answer answer);

  Q_SIGNALS:
    void asked();
    void openRequested(const QString& path);
    void revealRequested(const QString& path);
    void searchRequested(const QString& phrase);

  private:
    using Work = std::function<std::vector<FileRecord>(IndexStore&, const std::stop_token&)>;
    void run(std::stop_token stop, Work work, Answer answer);

    Executor* executor_ = nullptr;
    AppModel* model_ = nullptr;
    const DesktopSettings* settings_ = nullptr;
    std::vector<std::function<void()>> waiting_; // for the index to be open
    std::stop_source search_;
};

} // namespace tovi
