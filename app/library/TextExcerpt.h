#pragma once

#include <QString>
#include <QStringList>

namespace tovi {

/// The part of a text around the first of the words, at most `limit` UTF-16 units long, as HTML:
/// every place where one of the words begins a word is in `<b>`, everything else is escaped, and
/// `…` stands for what was left out.
QString markedExcerpt(const QString& text, const QStringList& words, qsizetype limit);

} // namespace tovi
