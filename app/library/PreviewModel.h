#pragma once

#include "app/background/Background.h"
#include "core/store/IndexStore.h"

#include <QObject>
#include <memory>

namespace tovi {

/// The indexed text of the file that is looked at, with the words that were searched for marked.
class PreviewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString path READ path NOTIFY changed)
    Q_PROPERTY(QString excerpt READ excerpt NOTIFY changed)
    Q_PROPERTY(QStringList passages READ passages NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)

  public:
    static constexpr qsizetype longestExcerpt = 1'500; // UTF-16 units
    static constexpr qsizetype longestText = 200'000;

    explicit PreviewModel(Executor& executor) : executor_(executor) {}

    /// The index to read from now on; none while it is closed.
    void setIndex(std::shared_ptr<IndexStore> index);

    QString path() const { return path_; }
    /// HTML as `markedExcerpt` makes it; empty without text, and while it is read.
    QString excerpt() const { return excerpt_; }
    /// The same with more of the file, in parts for a large view.
    QStringList passages() const { return passages_; }
    bool isLoading() const { return isLoading_; }

    /// `phrase` is what was searched for; may be empty.
    Q_INVOKABLE void show(const QString& path, const QString& phrase);
    /// A short text of a file of this kind that is at hand, marked with the words of a question.
    Q_INVOKABLE QString marked(const QString& text, const QString& question,
                               const QString& kind) const;

  Q_SIGNALS:
    void changed();

  private:
    Executor& executor_;
    std::shared_ptr<IndexStore> index_;
    QString path_;
    QString excerpt_;
    QStringList passages_;
    bool isLoading_ = false;
    Generation generation_;
};

} // namespace tovi
