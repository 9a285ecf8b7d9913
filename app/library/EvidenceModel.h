#pragma once

#include "app/background/Background.h"
#include "app/lists/DifferenceListModel.h"
#include "core/library/EvidenceSearch.h"

#include <memory>

namespace tovi {

/// Answers one question at a time with passages from the indexed texts.
class EvidenceModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* passages READ list CONSTANT)
    Q_PROPERTY(QString question READ question NOTIFY changed)
    Q_PROPERTY(bool isAnswering READ isAnswering NOTIFY changed)
    Q_PROPERTY(QString status READ status NOTIFY changed)
    Q_PROPERTY(QString modelStatus READ modelStatus CONSTANT)

  public:
    static constexpr std::int64_t mostPassages = 50;

    explicit EvidenceModel(Executor& executor);

    /// The index to ask from now on; none while it is closed.
    void setIndex(std::shared_ptr<IndexStore> index);

    /// Roles: id, excerpt, path, name, file (the values of a file).
    RowListModel* list() { return &list_; }
    const std::vector<EvidenceCitation>& passages() const { return list_.rows(); }

    /// The question that was asked last.
    QString question() const { return question_; }
    bool isAnswering() const { return isAnswering_; }
    /// What there is to say about the answer; empty where the passages speak.
    QString status() const { return status_; }
    QString modelStatus() const;

    /// The passages shown stay until those of this question arrive. A blank one clears.
    Q_INVOKABLE void ask(const QString& question);
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void clear();

  Q_SIGNALS:
    void changed();

  private:
    void show(Outcome<std::vector<EvidenceCitation>> outcome);

    Executor& executor_;
    std::shared_ptr<IndexStore> index_;
    DifferenceListModel<EvidenceCitation> list_;
    QString question_;
    QString status_;
    bool isAnswering_ = false;
    Generation generation_;
};

} // namespace tovi
