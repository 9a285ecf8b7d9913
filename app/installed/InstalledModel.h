#pragma once

#include "app/background/Background.h"
#include "app/lists/DifferenceListModel.h"

#include <QStringList>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tovi {

/// What the program reads texts and pictures with, all of it on this machine: the languages of
/// text recognition, and how the process that decodes is confined.
class InstalledModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* languages READ languages CONSTANT)
    Q_PROPERTY(QString languageFolder READ languageFolder CONSTANT)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(bool hasLoaded READ hasLoaded NOTIFY changed)
    Q_PROPERTY(bool isConfined READ isConfined NOTIFY changed)
    Q_PROPERTY(QStringList confinement READ confinement NOTIFY changed)
    Q_PROPERTY(QString confinementError READ confinementError NOTIFY changed)

  public:
    /// A file of trained data.
    struct Language {
        std::string code; // such as "eng"
        std::int64_t bytes = 0;
        bool isUsed = false; // only so many are used at a time

        friend bool operator==(const Language&, const Language&) = default;
    };
    /// Sentences on how the decoder is confined, and whether everything is as it should be.
    struct Confinement {
        std::vector<std::string> sentences;
        bool isComplete = false;
    };
    /// Called away from the main thread.
    using AskConfinement = std::function<Confinement(const std::stop_token&)>;

    /// `languageFolder` holds files named after their language and ".traineddata".
    InstalledModel(Executor& executor, std::string languageFolder, AskConfinement askConfinement);

    /// Roles: id (code), name (in words), bytes, isUsed.
    RowListModel* languages() { return &languages_; }
    const std::vector<Language>& languageRows() const { return languages_.rows(); }
    QString languageFolder() const;

    /// Why the languages could not be listed; empty if they were.
    QString error() const { return error_; }
    bool isLoading() const { return isLoading_; }
    bool hasLoaded() const { return hasLoaded_; }

    /// Whether the decoder is confined as completely as it can be.
    bool isConfined() const { return isConfined_; }
    QStringList confinement() const { return confinement_; }
    /// Why nothing is known of it; empty if something is.
    QString confinementError() const { return confinementError_; }

    Q_INVOKABLE void refresh();

  Q_SIGNALS:
    void changed();

  private:
    Executor& executor_;
    std::string languageFolder_;
    AskConfinement askConfinement_;
    DifferenceListModel<Language> languages_;
    QString error_;
    QStringList confinement_;
    QString confinementError_;
    bool isLoading_ = false;
    bool hasLoaded_ = false;
    bool isConfined_ = false;
    Generation languagesGeneration_;
    Generation confinementGeneration_;
};

} // namespace tovi
