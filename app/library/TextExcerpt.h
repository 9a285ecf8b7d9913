#pragma once

#include <QString>
#include <QStringList>

namespace tovi {

/// The part of a text around the first of the words, at most `limit` UTF-16 units long, as HTML:
/// every place where one of the words begins a word is in `<b>`, everything else is escaped, and
/// `…` stands for what was left out.
QString markedExcerpt(const QString& text, const QStringList& words, qsizetype limit);

/// An excerpt cut at ends of lines, and within very long lines at spaces if there are any, into
/// parts of about a thousand UTF-16 units, each of which is laid out in a moment.
QStringList passages(const QString& excerpt);

} // namespace tovi
