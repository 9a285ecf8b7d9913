#include "platform/Sandbox.h"
#include "tests/ui/UiTestMain.h"
#include "ui/desktop/Application.h"

#include <QAccessible>
#include <QFile>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <filesystem>
#include <set>

#include <gmock/gmock.h>

namespace tovi {
namespace {

using test::uiProcess;
using testing::IsEmpty;

QStringList& warnings() {
    static QStringList list;
    return list;
}

void noteWarning(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg) warnings().append(text);
}

bool needsName(QAccessible::Role role) {
    static const std::set<QAccessible::Role> roles{
        QAccessible::Button,       QAccessible::CheckBox,   QAccessible::RadioButton,
        QAccessible::EditableText, QAccessible::ListItem,   QAccessible::List,
        QAccessible::Table,        QAccessible::ComboBox,   QAccessible::Slider,
        QAccessible::Dialog,       QAccessible::ProgressBar};
    return roles.contains(role);
}

bool isControl(QAccessible::Role role) {
    return role == QAccessible::Button || role == QAccessible::CheckBox ||
           role == QAccessible::RadioButton || role == QAccessible::EditableText;
}

/// The real window on a data directory of its own, used like someone without a mouse or a screen:
/// keys go in, and what assistive technology is told comes out. One window a process.
class Window : public testing::Test {
  protected:
    Window() {
        qInstallMessageHandler(noteWarning);
        QAccessible::setActive(true);
    }

    ~Window() override {
        EXPECT_THAT(warnings(), IsEmpty()) << warnings().join(u'\n').toStdString();
    }

    void open() {
        application_.emplace(Application::Options{.dataDirectory = uiProcess().home.path("index"),
                                                  .isDataDirectoryGiven = true,
                                                  .decoderProgram = TOVI_DECODER,
                                                  .section = {}},
                             opener_);
        ASSERT_TRUE(QTest::qWaitFor([&] { return window() != nullptr; }));
        window()->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window()));
        ASSERT_TRUE(QTest::qWaitFor([&] { return model().isLoaded(); }));
    }

    AppModel& model() { return application_->model(); }
    QQuickWindow* window() { return application_->window(); }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window(), key, modifiers);
    }

    void type(const QString& text) {
        for (const QChar letter : text)
            QTest::keyClick(window(), letter.toLatin1());
    }

    static QString nameOf(QAccessibleInterface* told) {
        return told->text(told->state().passwordEdit ? QAccessible::Description
                                                     : QAccessible::Name);
    }

    static QString nameOf(const QQuickItem* item) {
        auto* told = QAccessible::queryAccessibleInterface(const_cast<QQuickItem*>(item));
        return told ? nameOf(told) : QString();
    }

    /// The name of what has the keyboard, or of the control that it is a part of.
    QString focused() {
        const QQuickItem* item = window()->activeFocusItem();
        while (item->parentItem() && nameOf(item).isEmpty())
            item = item->parentItem();
        return nameOf(item);
    }

    /// Everything that is told of what is visible.
    std::vector<QAccessibleInterface*> told() {
        std::vector<QAccessibleInterface*> found;
        const std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* at) {
            for (int child = 0; child < at->childCount(); ++child) {
                QAccessibleInterface* next = at->child(child);
                if (!next || next->state().invisible) continue;
                found.push_back(next);
                walk(next);
            }
        };
        walk(QAccessible::queryAccessibleInterface(window()));
        return found;
    }

    bool isTold(const QString& text) {
        const auto all = told();
        return std::any_of(all.begin(), all.end(), [&](QAccessibleInterface* each) {
            return (each->text(QAccessible::Name) + each->text(QAccessible::Value) +
                    each->text(QAccessible::Description))
                .contains(text);
        });
    }

    /// What is told by this name; null with a failed test if there is none.
    QAccessibleInterface* find(const QString& name) {
        for (QAccessibleInterface* each : told()) {
            if (nameOf(each) == name) return each;
        }
        ADD_FAILURE() << "not there: " << name.toStdString();
        return nullptr;
    }

    void press(const QString& name) {
        ASSERT_TRUE(waitUntilTold(name));
        find(name)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }

    bool waitUntilTold(const QString& text) {
        return QTest::qWaitFor([&] { return isTold(text); }, 20'000);
    }

    bool waitForFocus(const QString& name) {
        return QTest::qWaitFor([&] { return focused() == name; });
    }

    /// Tabs until the control has the keyboard.
    void tabTo(const QString& name) {
        for (int step = 0; step < 150 && focused() != name; ++step)
            key(Qt::Key_Tab);
        ASSERT_EQ(focused(), name);
    }

    void connectFolder(const std::string& folder) {
        tabTo(QStringLiteral("Add folder"));
        key(Qt::Key_Space);
        const QString path = QString::fromStdString(folder);
        ASSERT_TRUE(waitUntilTold(QStringLiteral("In ~")));
        tabTo(QStringLiteral("Path of a folder"));
        type(path);
        key(Qt::Key_Return);
        ASSERT_TRUE(waitUntilTold(QStringLiteral("In ") + path));
        tabTo(QStringLiteral("Choose this folder"));
        key(Qt::Key_Space);
        ASSERT_TRUE(waitForFocus(QStringLiteral("Allow this folder")));
        key(Qt::Key_Return);
        ASSERT_TRUE(QTest::qWaitFor([&] { return model().folders()->roots().size() == 1; }));
    }

    void waitForFiles(int count) {
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                return !model().scan()->isIndexing() &&
                       model().library()->files()->count() == count;
            },
            20'000))
            << model().notices()->statusMessage().toStdString();
    }

    /// Every control has a name, and Tab reaches every one that can be used.
    void checkScreen(const QString& section) {
        SCOPED_TRACE(section.toStdString());
        std::multiset<QString> unreached;
        for (QAccessibleInterface* each : told()) {
            const QString name = nameOf(each);
            EXPECT_FALSE(needsName(each->role()) && name.isEmpty())
                << "no name: " << each->role() << " " << each->object()->metaObject()->className();
            if (isControl(each->role()) && each->object()->property("enabled").toBool())
                unreached.insert(name);
        }
        key(Qt::Key_Tab);
        const QQuickItem* first = window()->activeFocusItem();
        int rounds = 0; // the second for what the first missed where a screen took the keyboard
        for (int step = 0; step < 150 && rounds < 2; ++step) {
            const QQuickItem* item = window()->activeFocusItem();
            EXPECT_TRUE(item->isVisible() && !focused().isEmpty())
                << "the keyboard is nowhere: " << item->metaObject()->className();
            unreached.erase(focused());
            key(Qt::Key_Tab);
            if (window()->activeFocusItem() == first) ++rounds;
        }
        QStringList names; // without those of controls that what was loaded meanwhile replaced
        for (QAccessibleInterface* each : told()) {
            if (isControl(each->role()) && unreached.contains(nameOf(each)))
                names.append(nameOf(each));
        }
        EXPECT_TRUE(names.isEmpty()) << "not reached with Tab: " << names.join(u", ").toStdString();
    }

    void show(const QString& section) {
        model().setSection(section);
        const auto* stage = window()->findChild<QObject*>(QStringLiteral("stage"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return stage->property("isSettled").toBool(); }));
    }

    void checkAllScreens() {
        for (const QVariant& each : window()->property("sections").toList()) {
            const QString section = each.toMap().value(QStringLiteral("id")).toString();
            show(section);
            EXPECT_TRUE(isTold(each.toMap().value(QStringLiteral("text")).toString()));
            checkScreen(section);
        }
    }

    test::TemporaryTree files_;
    SystemFileOpener opener_{uiProcess().launcher};
    std::optional<Application> application_;
};

TEST_F(Window, NamesEveryControlAndReachesItByKeyboardWithoutFiles) {
    open();
    checkAllScreens();
    show(QStringLiteral("files"));
    tabTo(QStringLiteral("Connect your personal files"));
    key(Qt::Key_Space);
    ASSERT_TRUE(waitForFocus(QStringLiteral("Connect this folder")));
    key(Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return model().folders()->roots().size() == 1; }));
    EXPECT_EQ(model().folders()->roots().front().path, uiProcess().home.path());
}

TEST_F(Window, NamesEveryControlAndReachesItByKeyboardWithFiles) {
    for (int at = 0; at < 40; ++at)
        files_.write("note " + std::to_string(at) + ".txt", "same words");
    files_.write(std::string(240, 'w') + ".md", "a long name");
    files_.write("a\nb <b>c</b>.txt", "an odd name");
    open();
    connectFolder(files_.path());
    waitForFiles(42);
    model().spaces()->createSpace(QStringLiteral("Trip"),
                                  {QString::fromStdString(files_.path("note 1.txt"))});
    model().duplicates()->findDuplicates();
    ASSERT_TRUE(QTest::qWaitFor([&] { return model().duplicates()->hasSearched(); }));
    checkAllScreens();
}

TEST_F(Window, ObeysThePressOfAssistiveTechnology) {
    files_.write("one.txt", "twice");
    files_.write("two.txt", "twice");
    open();
    connectFolder(files_.path());
    waitForFiles(2);
    for (const char* name : {"Pause indexing", "Duplicates", "Find duplicates"})
        press(QString::fromLatin1(name));
    EXPECT_TRUE(model().scan()->isPaused());
    EXPECT_TRUE(QTest::qWaitFor([&] { return model().duplicates()->groupCount() == 1; }));
    for (const char* name :
         {"Look-alikes", "Settings", "Search text inside source code and configuration files"})
        press(QString::fromLatin1(name));
    EXPECT_TRUE(model().settings()->developerMode());
    press(QStringLiteral("Search"));
    press(QStringLiteral("Ask"));
    EXPECT_TRUE(waitForFocus(QStringLiteral("Ask your files")));
}

TEST_F(Window, FindsOpensAndKeepsWithoutAMouse) {
    const std::string lease = files_.write("home/lease.txt", "the notice period is three months");
    files_.write("home/recipe.txt", "rye bread");
    open();
    connectFolder(files_.path());
    waitForFiles(2);

    key(Qt::Key_F, Qt::ControlModifier);
    type(QStringLiteral("notice pdfs period"));
    ASSERT_TRUE(waitUntilTold(QStringLiteral("Remove Type: Pdf")));
    tabTo(QStringLiteral("Remove Type: Pdf"));
    key(Qt::Key_Delete);
    ASSERT_TRUE(QTest::qWaitFor([&] { return model().search()->results()->count() == 1; }));
    EXPECT_EQ(model().search()->query(), QStringLiteral("notice period"));
    key(Qt::Key_Down);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isTold(QStringLiteral("lease.txt")); }));

    key(Qt::Key_Return);
    const std::string opened = uiProcess().home.path("opened");
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(opened); }));
    EXPECT_EQ(test::readFile(opened), lease + "\nonline");
    EXPECT_FALSE(platform::canMakeInternetSocket());

    key(Qt::Key_Delete);
    ASSERT_TRUE(waitForFocus(QStringLiteral("Cancel")))
        << focused().toStdString() << model().notices()->errorMessage().toStdString();
    key(Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model().plans()->proposedPlan(); }));
    EXPECT_TRUE(std::filesystem::exists(lease));
    ASSERT_TRUE(waitForFocus(QStringLiteral("lease.txt")));
}

TEST_F(Window, SortsPreviewsAndRenamesFiles) {
    files_.write("home/a long.txt", std::string(900, 'x') + " the notice period");
    files_.write("home/b & c.txt", "the notice");
    open();
    connectFolder(files_.path());
    waitForFiles(2);
    tabTo(QStringLiteral("Size"));
    for (const auto& [order, first] :
         {std::pair("sorted, descending", "a long.txt"), {"sorted, ascending", "b & c.txt"}}) {
        key(Qt::Key_Space);
        ASSERT_TRUE(waitUntilTold(QString::fromLatin1(order)));
        const RowListModel* files = model().library()->files();
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return files->value(0, QStringLiteral("name")) == QLatin1String(first); }));
    }
    tabTo(QStringLiteral("b & c.txt"));
    model().library()->sortBy(QStringLiteral("name"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return model().library()->files()->value(0, QStringLiteral("name")) ==
               QStringLiteral("a long.txt");
    }));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        const auto* row = QAccessible::queryAccessibleInterface(window()->activeFocusItem());
        return row && row->text(QAccessible::Name) == QStringLiteral("b & c.txt") &&
               row->text(QAccessible::Description).contains(QStringLiteral("row 2 of 2"));
    })) << "the same file";

    key(Qt::Key_Space);
    ASSERT_TRUE(waitForFocus(QStringLiteral("Preview of b & c.txt")));
    key(Qt::Key_Up);
    ASSERT_TRUE(waitForFocus(QStringLiteral("Preview of a long.txt")));
    EXPECT_TRUE(waitUntilTold(QStringLiteral("the notice period")));
    key(Qt::Key_Escape);
    ASSERT_TRUE(waitForFocus(QStringLiteral("a long.txt")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !isTold(QStringLiteral("Preview of")); }));

    key(Qt::Key_F2);
    ASSERT_TRUE(waitForFocus(QStringLiteral("New name")));
    type(QStringLiteral("kept"));
    key(Qt::Key_Return);
    ASSERT_TRUE(waitForFocus(QStringLiteral("Cancel")));
    key(Qt::Key_Tab);
    key(Qt::Key_Return);
    ASSERT_TRUE(waitForFocus(QStringLiteral("kept.txt"))) << "the same file under its new name";
}

TEST_F(Window, ShowsTheWholeRowThatTheKeysComeTo) {
    constexpr int count = 200;
    for (int at = 0; at < count; ++at)
        files_.write("note " + std::to_string(at) + ".txt",
                     std::string(1, static_cast<char>('a' + at % 20)));
    open();
    connectFolder(files_.path());
    waitForFiles(count);
    const auto isAtRow = [&](int row) {
        const QQuickItem* item = window()->activeFocusItem();
        while (item->parentItem() && !item->property("index").isValid())
            item = item->parentItem();
        if (item->property("index") != row || item->property("visualFocus") == false) return false;
        const QQuickItem* all = item->parentItem();
        const QRectF place = item->mapRectToItem(all, item->boundingRect());
        EXPECT_TRUE(place.isValid());
        QQuickItem* list = all->parentItem();
        const auto covers = [&](const QQuickItem* other) {
            QQuickItem* shown = nullptr; // others wait to be used again
            QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem*, shown),
                                      Q_ARG(int, other->property("index").toInt()));
            return other != item && other == shown &&
                   other->mapRectToItem(all, other->boundingRect()).intersects(place);
        };
        const QList<QQuickItem*> others = all->childItems();
        return list->boundingRect().contains(all->mapRectToItem(list, place)) &&
               std::none_of(others.begin(), others.end(), covers);
    };
    const auto checkKeys = [&] {
        while (!window()->activeFocusItem()->property("index").isValid() ||
               !focused().contains(QStringLiteral("note ")))
            key(Qt::Key_Tab);
        key(Qt::Key_End);
        ASSERT_TRUE(QTest::qWaitFor([&] { return isAtRow(count - 1); }));
        key(Qt::Key_PageUp);
        const int page = count - 1 - window()->activeFocusItem()->property("index").toInt();
        ASSERT_GT(page, 1);
        ASSERT_TRUE(QTest::qWaitFor([&] { return isAtRow(count - 1 - page); }));
        key(Qt::Key_PageUp);
        ASSERT_TRUE(QTest::qWaitFor([&] { return isAtRow(count - 1 - 2 * page); }));
        key(Qt::Key_Home);
        ASSERT_TRUE(QTest::qWaitFor([&] { return isAtRow(0); }));
    };
    for (const char* section : {"timeline", "files"}) {
        SCOPED_TRACE(section);
        show(QString::fromLatin1(section));
        ASSERT_TRUE(QTest::qWaitFor([&] { return isTold(QStringLiteral("row 1 of 200")); }));
        checkKeys();
    }
    {
        SCOPED_TRACE("a plan");
        key(Qt::Key_A, Qt::ControlModifier);
        key(Qt::Key_Delete);
        ASSERT_TRUE(waitForFocus(QStringLiteral("Cancel")));
        checkKeys();
        key(Qt::Key_Escape);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !model().plans()->proposedPlan(); }));
    }
    SCOPED_TRACE("groups of the same files");
    show(QStringLiteral("duplicates"));
    model().duplicates()->findDuplicates();
    const auto waitForRow = [&](int row) {
        return waitUntilTold(QStringLiteral("row %1 of 20").arg(row + 1));
    };
    ASSERT_TRUE(waitForRow(0));
    tabTo(QStringLiteral("Review all…"));
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), QStringLiteral("10 copies, 9 bytes reclaimable"));
    for (int row = 0; row < 20; ++row) {
        key(Qt::Key_Tab);
        ASSERT_EQ(focused(), QStringLiteral("Review 10 copies, 9 bytes reclaimable")) << row;
        ASSERT_TRUE(waitForRow(std::min(row + 1, 19)));
    }
    key(Qt::Key_Up);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isAtRow(18); }));
    key(Qt::Key_Home);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isAtRow(0); }));
    key(Qt::Key_Backtab);
    EXPECT_EQ(focused(), QStringLiteral("Review all…"));

    SCOPED_TRACE("a receipt");
    PlansModel& plans = *model().plans();
    plans.proposeTrash(model().library()->files()->texts(QStringLiteral("path")));
    ASSERT_TRUE(waitForFocus(QStringLiteral("Cancel")));
    key(Qt::Key_Tab);
    key(Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return plans.actions()->count() == 1; }));
    show(QStringLiteral("activity"));
    tabTo(QStringLiteral("Show all"));
    key(Qt::Key_Return);
    ASSERT_TRUE(waitForFocus(QStringLiteral("Close")));
    checkKeys();
    key(Qt::Key_Escape);
    EXPECT_TRUE(waitForFocus(QStringLiteral("Show all")));
}

TEST_F(Window, FindsPassagesAndShowsWhereTheWordsStand) {
    files_.write("home/lease.txt", "The notice period is three months. Rent is due on the first.");
    open();
    connectFolder(files_.path());
    waitForFiles(1);
    key(Qt::Key_F, Qt::ControlModifier);
    type(QStringLiteral("notice"));
    EXPECT_TRUE(waitUntilTold(QStringLiteral("The notice period is three months.")));
    tabTo(QStringLiteral("Ask"));
    key(Qt::Key_Space);
    ASSERT_TRUE(waitForFocus(QStringLiteral("Ask your files")));
    type(QStringLiteral("when is the rent due"));
    key(Qt::Key_Return);
    ASSERT_TRUE(waitUntilTold(QStringLiteral("1 passage from your files")));
    EXPECT_TRUE(waitUntilTold(QStringLiteral("Rent is due on the first.")));
    checkScreen(QStringLiteral("ask"));
}

} // namespace
} // namespace tovi
