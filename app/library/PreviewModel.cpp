#include "app/library/PreviewModel.h"

#include "app/library/TextExcerpt.h"
#include "app/lists/QtConversions.h"
#include "core/library/EvidenceSearch.h"
#include "core/search/QueryParser.h"

#include <QRegularExpression>

namespace tovi {
namespace {

QStringList toQt(const std::vector<std::string>& words) {
    QStringList list;
    for (const std::string& word : words)
        list.append(tovi::toQt(word));
    return list;
}

/// The lines of a PDF are as long as its page is wide, which is no line of the preview's.
QString readable(QString text, bool isPDF) {
    static const QRegularExpression lineEnd(QStringLiteral("(?<!\\n)\\n(?!\\n)"));
    return isPDF ? text.replace(lineEnd, QStringLiteral(" ")) : text;
}

} // namespace

void PreviewModel::setIndex(std::shared_ptr<IndexStore> index) {
    index_ = std::move(index);
    show({}, {});
}

void PreviewModel::show(const QString& path, const QString& phrase) {
    using Excerpts = std::pair<QString, QStringList>;
    generation_.cancel();
    path_ = path;
    excerpt_.clear();
    passages_.clear();
    isLoading_ = index_ && !path.isEmpty();
    Q_EMIT changed();
    if (!isLoading_) return;
    runLatest(
        executor_, this, generation_,
        [index = index_, path = fromQt(path), phrase = fromQt(phrase)](const std::stop_token&) {
            const auto file = index->record(path);
            if (!file) return Excerpts();
            const std::string text = QueryParser().parse(phrase, Date::now()).text;
            const QStringList words = toQt(EvidenceRetriever::words(text));
            const QString content =
                readable(tovi::toQt(file->content).trimmed(), file->kind == FileKind::pdf);
            return Excerpts(markedExcerpt(content, words, longestExcerpt),
                            tovi::passages(markedExcerpt(content, words, longestText)));
        },
        [this](const Outcome<Excerpts>& outcome) {
            isLoading_ = false;
            std::tie(excerpt_, passages_) = outcome.value.value_or(Excerpts());
            Q_EMIT changed();
        });
}

QString PreviewModel::marked(const QString& text, const QString& question,
                             const QString& kind) const {
    const bool isPDF = fromQt(kind) == rawValue(FileKind::pdf);
    return markedExcerpt(readable(text, isPDF), toQt(contentWords(fromQt(question))), text.size());
}

} // namespace tovi
