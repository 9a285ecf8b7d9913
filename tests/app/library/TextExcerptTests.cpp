#include "app/library/TextExcerpt.h"
#include "app/lists/QtConversions.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(TextExcerpt, MarksWordsWhereTheyBeginAndEscapesTheRest) {
    const struct {
        QString text;
        QStringList words;
        QString html;
    } cases[] = {
        {toQt("plain"), {}, toQt("plain")},
        {toQt("Rent <b>& Miete\nRENTAL parent"),
         {toQt("rent")},
         toQt("<b>Rent</b> &lt;b&gt;&amp; Miete<br><b>RENT</b>AL parent")},
        {toQt("a+b (x) c++"), {toQt("c++"), toQt("(x"), {}}, toQt("a+b <b>(x</b>) <b>c++</b>")},
        {toQt("Übung macht"), {toQt("übung")}, toQt("<b>Übung</b> macht")},
    };
    for (const auto& [text, words, html] : cases)
        EXPECT_EQ(markedExcerpt(text, words, 100), html);

    EXPECT_EQ(markedExcerpt(toQt("one two threefour"), {}, 10), toQt("one two …"));

    EXPECT_TRUE(passages({}).isEmpty());
    EXPECT_EQ(passages(toQt("a<br>b")), QStringList(toQt("a<br>b")));
    for (const char* word : {"<b>x</b> ", "&amp;", "😀", "<b>x</b>"}) {
        const QStringList parts = passages(toQt(word).repeated(900));
        EXPECT_EQ(parts.join(QString()), toQt(word).repeated(900)) << "nothing is left out";
        for (const QString& part : parts)
            EXPECT_TRUE(part.size() <= 1'001 && !part.startsWith(u'a') && part.isValidUtf16());
    }

    const QString pair = toQt("😀");
    const QString excerpt =
        markedExcerpt(pair.repeated(200) + toQt(" hit ") + pair.repeated(200), {toQt("hit")}, 300);
    EXPECT_TRUE(excerpt.startsWith(toQt("… 😀")) && excerpt.endsWith(toQt("😀 …"))) << "no halves";
    EXPECT_TRUE(excerpt.contains(toQt(" <b>hit</b> ")));
}

} // namespace
} // namespace tovi
