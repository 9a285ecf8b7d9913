#pragma once

#include "app/background/Background.h"
#include "core/store/IndexStore.h"

#include <QHash>
#include <QObject>
#include <QStringList>
#include <memory>

namespace tovi {

/// Where the words that were searched for stand in the texts of the files that are in sight.
class ExcerptsModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(int revision READ revision NOTIFY changed)

  public:
    static constexpr qsizetype longestExcerpt = 180; // UTF-16 units

    explicit ExcerptsModel(Executor& executor) : executor_(executor) {}

    /// The index to read from now on; none while it is closed.
    void setIndex(std::shared_ptr<IndexStore> index);

    /// Moves when more excerpts were read.
    int revision() const { return revision_; }

    /// One line of a file as `markedExcerpt` makes it, with the words marked; empty where
    /// they are in the name only, and until it is read, which asking for it begins. Only excerpts
    /// of the words asked for last are kept.
    Q_INVOKABLE QString of(const QString& path, const QString& words);

    /// A whole name as `markedExcerpt` makes it, with the words marked.
    Q_INVOKABLE QString marked(const QString& name, const QString& words) const;

  Q_SIGNALS:
    void changed();

  private:
    void forget();
    void read();

    Executor& executor_;
    std::shared_ptr<IndexStore> index_;
    QString words_;
    QHash<QString, QString> excerpts_;
    QStringList wanted_;
    bool isReading_ = false;
    int revision_ = 0;
    Generation generation_;
};

} // namespace tovi
