#include "app/library/TextExcerpt.h"

#include <QRegularExpression>
#include <algorithm>

namespace tovi {
namespace {

constexpr qsizetype mostBefore = 160; // the first word
constexpr qsizetype longestWord = 24;
constexpr qsizetype longPassage = 600;
constexpr qsizetype longestLine = 1'000;

/// Matches nothing without words.
QRegularExpression patternOf(const QStringList& words) {
    QStringList escaped;
    for (const QString& word : words) {
        if (!word.isEmpty()) escaped.append(QRegularExpression::escape(word));
    }
    const QString any = escaped.isEmpty() ? QStringLiteral("(?!)") : escaped.join(u'|');
    return QRegularExpression(QStringLiteral("(?<![\\p{L}\\p{N}])(?:%1)").arg(any),
                              QRegularExpression::CaseInsensitiveOption |
                                  QRegularExpression::UseUnicodePropertiesOption);
}

/// The start of the next word, if it is near; else of the next character.
qsizetype nextWord(const QString& text, qsizetype at) {
    const qsizetype end = std::min(text.size(), at + longestWord);
    const auto space = std::find_if(text.begin() + at, text.begin() + end,
                                    [](QChar letter) { return letter.isSpace(); });
    if (space != text.begin() + end) return space - text.begin() + 1;
    return text[at].isLowSurrogate() ? at + 1 : at;
}

/// The end of the last word that is whole before `at`, if it is near; else of the last character.
qsizetype wordEnd(const QString& text, qsizetype at) {
    for (qsizetype end = at; end > std::max<qsizetype>(0, at - longestWord); --end) {
        if (text[end].isSpace()) return end;
    }
    return text[at].isLowSurrogate() ? at - 1 : at;
}

/// A place at or just before `at` that is in no tag, escaped letter or surrogate pair.
qsizetype wholeBefore(const QString& html, qsizetype at) {
    constexpr qsizetype longest = 6; // "&quot;"
    for (qsizetype begin = at; begin > at - longest; --begin) {
        if (html[begin] == u'<' || html[begin] == u'&') return begin;
    }
    return html[at].isLowSurrogate() ? at - 1 : at;
}

QString escaped(QStringView part) {
    return part.toString().toHtmlEscaped().replace(u'\n', QStringLiteral("<br>"));
}

} // namespace

QString markedExcerpt(const QString& text, const QStringList& words, qsizetype limit) {
    const QRegularExpression pattern = patternOf(words);
    const qsizetype before = std::min(mostBefore, limit / 4);
    const qsizetype first = text.size() <= limit ? 0 : pattern.match(text).capturedStart();
    qsizetype begin = std::max<qsizetype>(0, first - before);
    if (begin > 0) begin = nextWord(text, begin);
    qsizetype end = std::min(text.size(), begin + limit);
    if (end < text.size()) end = std::max(begin, wordEnd(text, end));
    const QString shown = text.mid(begin, end - begin);

    QString html = begin > 0 ? QStringLiteral("… ") : QString();
    qsizetype done = 0;
    for (auto found = pattern.globalMatch(shown); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        html += escaped(QStringView(shown).mid(done, match.capturedStart() - done));
        html += QStringLiteral("<b>") + escaped(match.capturedView()) + QStringLiteral("</b>");
        done = match.capturedEnd();
    }
    html += escaped(QStringView(shown).mid(done));
    if (end < text.size()) html += QStringLiteral(" …");
    return html;
}

QStringList passages(const QString& excerpt) {
    static const QString lineEnd = QStringLiteral("<br>");
    QStringList made;
    if (excerpt.isEmpty()) return made;
    for (const QString& line : excerpt.split(lineEnd)) {
        if (!made.isEmpty() && made.last().size() + line.size() < longPassage) {
            made.last() += lineEnd + line;
            continue;
        }
        qsizetype begin = 0;
        while (line.size() - begin > longestLine) {
            const qsizetype space = line.lastIndexOf(u' ', begin + longestLine);
            const qsizetype end =
                space > begin ? space + 1 : wholeBefore(line, begin + longestLine);
            made.append(line.mid(begin, end - begin));
            begin = end;
        }
        made.append(line.mid(begin));
    }
    return made;
}

} // namespace tovi
