#include "app/library/EvidenceModel.h"

#include "app/lists/QtConversions.h"
#include "app/lists/RecordList.h"

namespace tovi {

EvidenceModel::EvidenceModel(Executor& executor)
    : executor_(executor),
      list_([](const EvidenceCitation& passage) { return passage.id(); },
            {{"id", [](const auto& passage) { return toQt(passage.id()); }},
             {"excerpt", [](const auto& passage) { return toQt(passage.excerpt); }},
             {"path", [](const auto& passage) { return toQt(passage.file.path); }},
             {"name", [](const auto& passage) { return toQt(passage.file.name); }},
             {"file", [](const auto& passage) { return toVariantMap(passage.file); }}}) {}

void EvidenceModel::setIndex(std::shared_ptr<IndexStore> index) {
    cancel();
    index_ = std::move(index);
}

QString EvidenceModel::modelStatus() const {
    return QStringLiteral("Local extraction and lexical retrieval · no generative or embedding "
                          "model installed");
}

void EvidenceModel::ask(const QString& question) {
    if (question.trimmed().isEmpty()) return clear();
    question_ = question;
    if (!index_) {
        status_ = QStringLiteral("The local library is not open.");
        Q_EMIT changed();
        return;
    }
    isAnswering_ = true;
    status_.clear();
    Q_EMIT changed();
    runLatest(
        executor_, this, generation_,
        [index = index_, text = fromQt(question)](const std::stop_token& stop) {
            auto passages = findEvidence(*index, text, mostPassages, stop);
            for (EvidenceCitation& passage : passages)
                passage.file.content.clear();
            return passages;
        },
        [this](auto outcome) { show(std::move(outcome)); });
}

void EvidenceModel::show(Outcome<std::vector<EvidenceCitation>> outcome) {
    isAnswering_ = false;
    if (!outcome) {
        status_ = toQt(outcome.error);
    } else {
        if (outcome.value->empty())
            status_ = QStringLiteral("No indexed text holds a word of this question.");
        list_.replace(*std::move(outcome.value));
    }
    Q_EMIT changed();
}

void EvidenceModel::cancel() {
    generation_.cancel();
    if (std::exchange(isAnswering_, false)) Q_EMIT changed();
}

void EvidenceModel::clear() {
    generation_.cancel();
    isAnswering_ = false;
    question_.clear();
    status_.clear();
    list_.replace({});
    Q_EMIT changed();
}

} // namespace tovi
