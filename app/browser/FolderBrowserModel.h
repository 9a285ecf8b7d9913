#pragma once

#include "app/background/Background.h"
#include "app/lists/DifferenceListModel.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tovi {

/// What is in one folder of this machine at a time, for someone who goes from folder to folder to
/// choose one, or files. Hidden files are left out.
class FolderBrowserModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* entries READ entries CONSTANT)
    Q_PROPERTY(QString folder READ folder NOTIFY changed)
    Q_PROPERTY(bool isCut READ isCut NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)

  public:
    struct Entry {
        std::string path;
        QString name;
        bool isFolder = false;
        std::int64_t size = 0; // bytes; of files only

        friend bool operator==(const Entry&, const Entry&) = default;
    };

    /// Of a folder with more than `mostEntries` the first ones are shown.
    explicit FolderBrowserModel(Executor& executor, std::size_t mostEntries = 10'000);

    /// Roles: path, name, isFolder, size. Folders first, then files, by name as the user's language
    /// sorts it; links count as what they lead to.
    RowListModel* entries() { return &entries_; }
    /// The folder whose entries are shown, absolute; empty before the first one.
    QString folder() const { return folder_; }
    /// It has more than are shown.
    bool isCut() const { return isCut_; }
    bool isLoading() const { return isLoading_; }
    /// Why what was to be opened last is not shown; empty if it is. A whole sentence.
    QString error() const { return error_; }

    /// Shows another folder: an absolute path, one from the folder that is shown, or one from the
    /// home folder with "~". With files, or folders only. Where `path` is a file that would be
    /// shown, its folder. What cannot be opened leaves the last folder shown.
    Q_INVOKABLE void open(const QString& path, bool withFiles);

    /// The first row at or after `row` whose name begins so, whatever the case, looked for from the
    /// top again after the last; -1 if there is none.
    Q_INVOKABLE int rowBeginningWith(const QString& text, int row) const;

  Q_SIGNALS:
    void changed();
    /// The entries of another folder are there. `row` is that of the file that was asked for or of
    /// the folder from which one went up, else 0.
    void opened(int row);

  private:
    Executor& executor_;
    std::size_t mostEntries_;
    DifferenceListModel<Entry> entries_;
    QString folder_;
    QString error_;
    bool isCut_ = false;
    bool isLoading_ = false;
    Generation generation_;
};

} // namespace tovi
