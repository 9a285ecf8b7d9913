#include "ui/session/SystemSearchAdaptors.h"

#include "app/lists/QtConversions.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <utility>

Q_DECLARE_METATYPE(tovi::RunnerMatch)
Q_DECLARE_METATYPE(tovi::RunnerAction)

namespace tovi {

QDBusArgument& operator<<(QDBusArgument& to, const RunnerMatch& match) {
    to.beginStructure();
    to << match.path << match.name << match.icon << match.type << match.relevance
       << match.properties;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, RunnerMatch& match) {
    from.beginStructure();
    from >> match.path >> match.name >> match.icon >> match.type >> match.relevance >>
        match.properties;
    from.endStructure();
    return from;
}

QDBusArgument& operator<<(QDBusArgument& to, const RunnerAction& action) {
    to.beginStructure();
    to << action.name << action.text << action.icon;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, RunnerAction& action) {
    from.beginStructure();
    from >> action.name >> action.text >> action.icon;
    from.endStructure();
    return from;
}

namespace {

constexpr int possibleMatch = 30; // of KRunner's types
const QString revealAction = QStringLiteral("reveal");

/// Of the freedesktop.org icon names.
QString iconOf(FileKind kind) {
    switch (kind) {
    case FileKind::image:
        return QStringLiteral("image-x-generic");
    case FileKind::video:
        return QStringLiteral("video-x-generic");
    case FileKind::audio:
        return QStringLiteral("audio-x-generic");
    case FileKind::archive:
        return QStringLiteral("package-x-generic");
    case FileKind::application:
        return QStringLiteral("application-x-executable");
    case FileKind::folder:
        return QStringLiteral("folder");
    case FileKind::code:
        return QStringLiteral("text-x-script");
    case FileKind::pdf:
    case FileKind::document:
        return QStringLiteral("x-office-document");
    case FileKind::other:
        break;
    }
    return QStringLiteral("text-x-generic");
}

QString folderOf(const FileRecord& file) {
    return toQt(file.path.substr(0, file.path.rfind('/')));
}

/// Sends what `make` makes of each file when the files are there.
template <typename Make>
SystemSearch::Answer reply(const QDBusMessage& call, Make make) {
    call.setDelayedReply(true);
    return [bus = QDBusConnection::sessionBus(), call,
            make](const std::vector<FileRecord>& files) mutable {
        QList<std::decay_t<decltype(make(files.front()))>> values;
        for (const FileRecord& file : files)
            values.append(make(file));
        bus.send(call.createReply(QVariant::fromValue(values)));
    };
}

QString pathOf(const FileRecord& file) {
    return toQt(file.path);
}

} // namespace

QStringList ShellSearchAdaptor::GetInitialResultSet(const QStringList& terms,
                                                    const QDBusMessage& call) {
    Q_EMIT search_.asked();
    search_.find(terms.join(QLatin1Char(' ')), reply(call, pathOf));
    return {};
}

QStringList ShellSearchAdaptor::GetSubsearchResultSet(const QStringList&, const QStringList& terms,
                                                      const QDBusMessage& call) {
    return GetInitialResultSet(terms, call);
}

QList<QVariantMap> ShellSearchAdaptor::GetResultMetas(const QStringList& paths,
                                                      const QDBusMessage& call) {
    Q_EMIT search_.asked();
    search_.describe(paths, reply(call, [](const FileRecord& file) {
                         return QVariantMap{{QStringLiteral("id"), toQt(file.path)},
                                            {QStringLiteral("name"), toQt(file.name)},
                                            {QStringLiteral("description"), folderOf(file)},
                                            {QStringLiteral("gicon"), iconOf(file.kind)}};
                     }));
    return {};
}

void ShellSearchAdaptor::ActivateResult(const QString& path, const QStringList&, uint) {
    Q_EMIT search_.asked();
    Q_EMIT search_.openRequested(path);
}

void ShellSearchAdaptor::LaunchSearch(const QStringList& terms, uint) {
    Q_EMIT search_.searchRequested(terms.join(QLatin1Char(' ')));
}

RunnerAdaptor::RunnerAdaptor(QObject* object, SystemSearch& search)
    : QDBusAbstractAdaptor(object), search_(search) {
    qDBusRegisterMetaType<RunnerMatch>();
    qDBusRegisterMetaType<QList<RunnerMatch>>();
    qDBusRegisterMetaType<RunnerAction>();
    qDBusRegisterMetaType<QList<RunnerAction>>();
    qDBusRegisterMetaType<QList<QVariantMap>>();
}

QList<RunnerAction> RunnerAdaptor::Actions() {
    return {{revealAction, tr("Show in folder"), QStringLiteral("folder-open")}};
}

QList<RunnerMatch> RunnerAdaptor::Match(const QString& phrase, const QDBusMessage& call) {
    Q_EMIT search_.asked();
    search_.find(phrase, reply(call, [place = 0](const FileRecord& file) mutable {
                     const double relevance = 0.9 - 0.05 * place++;
                     return RunnerMatch{toQt(file.path),
                                        toQt(file.name),
                                        iconOf(file.kind),
                                        possibleMatch,
                                        relevance,
                                        {{QStringLiteral("subtext"), folderOf(file)},
                                         {QStringLiteral("actions"), QStringList{revealAction}}}};
                 }));
    return {};
}

void RunnerAdaptor::Run(const QString& path, const QString& action) {
    Q_EMIT search_.asked();
    if (action == revealAction) {
        Q_EMIT search_.revealRequested(path);
    } else {
        Q_EMIT search_.openRequested(path);
    }
}

} // namespace tovi
