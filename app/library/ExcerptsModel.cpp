#include "app/library/ExcerptsModel.h"

#include "app/library/TextExcerpt.h"
#include "app/lists/QtConversions.h"
#include "core/library/EvidenceSearch.h"

#include <utility>

namespace tovi {
namespace {

constexpr qsizetype mostKept = 2'000; // of which few are in sight

QStringList wordsOf(const QString& text) {
    QStringList words;
    for (const std::string& word : EvidenceRetriever::words(fromQt(text)))
        words.append(toQt(word));
    return words;
}

bool hasMarks(const QString& excerpt) {
    return excerpt.contains(QLatin1String("<b>"));
}

QString markedName(const QString& name, const QStringList& words) {
    return markedExcerpt(name, words, name.size());
}

using Excerpts = std::vector<std::pair<QString, QString>>;

Excerpts readExcerpts(IndexStore& index, const QStringList& paths, const QString& text,
                      const std::stop_token& stop) {
    const QStringList words = wordsOf(text);
    Excerpts excerpts;
    for (const QString& path : paths) {
        throwIfCancelled(stop);
        const auto file = index.record(fromQt(path));
        const QString content = file ? toQt(file->content).simplified() : QString();
        QString excerpt = markedExcerpt(content, words, ExcerptsModel::longestExcerpt);
        // The beginning of a text says nothing of why the file was found by its name.
        if (file && !hasMarks(excerpt) && hasMarks(markedName(toQt(file->name), words)))
            excerpt.clear();
        excerpts.emplace_back(path, std::move(excerpt));
    }
    return excerpts;
}

} // namespace

void ExcerptsModel::setIndex(std::shared_ptr<IndexStore> index) {
    index_ = std::move(index);
    forget();
    ++revision_;
    Q_EMIT changed();
}

void ExcerptsModel::forget() {
    generation_.cancel();
    isReading_ = false;
    excerpts_.clear();
    wanted_.clear();
}

QString ExcerptsModel::of(const QString& path, const QString& words) {
    if (words != words_ || excerpts_.size() > mostKept) {
        forget();
        words_ = words;
    }
    const auto known = excerpts_.constFind(path);
    if (known != excerpts_.cend()) return *known;
    if (wanted_.isEmpty() && !isReading_) // once the other rows in sight have asked
        QMetaObject::invokeMethod(this, &ExcerptsModel::read, Qt::QueuedConnection);
    if (!wanted_.contains(path)) wanted_.append(path);
    return {};
}

QString ExcerptsModel::marked(const QString& name, const QString& words) const {
    return markedName(name, wordsOf(words));
}

void ExcerptsModel::read() {
    if (!index_ || isReading_ || wanted_.isEmpty()) return;
    isReading_ = true;
    for (const QString& path : std::as_const(wanted_))
        excerpts_.insert(path, QString());
    runLatest(
        executor_, this, generation_,
        [index = index_, paths = std::exchange(wanted_, {}), words = words_](
            const std::stop_token& stop) { return readExcerpts(*index, paths, words, stop); },
        [this](const Outcome<Excerpts>& outcome) {
            isReading_ = false;
            if (outcome) {
                for (const auto& [path, excerpt] : *outcome.value)
                    excerpts_.insert(path, excerpt);
            }
            ++revision_;
            Q_EMIT changed();
            read();
        });
}

} // namespace tovi
