#include "ui/screenshots/Scenes.h"

namespace tovi {
namespace {

/// The paths of at most `most` files whose path holds the text.
QStringList filesWith(Photographer& at, const char* text, qsizetype most) {
    QStringList paths;
    for (const FileRecord& file : at.model().library()->records()) {
        if (paths.size() < most && file.path.find(text) != std::string::npos)
            paths.append(QString::fromStdString(file.path));
    }
    return paths;
}

void chooseFirstFile(Photographer& at) {
    at.show(QStringLiteral("files"));
    at.press(Qt::Key_Down);
}

void review(Photographer& at) {
    at.show(QStringLiteral("files"));
    at.model().plans()->proposeTrash(filesWith(at, "", 4));
    at.waitFor([&] { return at.model().plans()->proposedPlan().has_value(); });
}

void activity(Photographer& at) {
    PlansModel& plans = *at.model().plans();
    if (plans.receipts().empty()) {
        review(at);
        plans.confirmPlan(plans.proposedPlanValues().value(QStringLiteral("id")).toString());
        at.waitFor([&] { return !plans.receipts().empty() && !plans.isExecuting(); });
    }
    at.show(QStringLiteral("activity"));
}

void cleanup(Photographer& at) {
    at.show(QStringLiteral("storage"));
    at.cleanup().scan();
    at.waitFor([&] { return !at.cleanup().isScanning() && at.cleanup().hasReport(); });
}

void lookAlikes(Photographer& at) {
    at.show(QStringLiteral("duplicates"));
    at.click(QStringLiteral("Look-alikes"));
    if (at.isTold(QStringLiteral("Compare photos"))) at.click(QStringLiteral("Compare photos"));
    at.waitUntilTold(QStringLiteral("Compare again"));
    at.settle(1'500); // the thumbnails
}

void openVault(Photographer& at) {
    VaultModel& vault = at.vault();
    at.show(QStringLiteral("vault"));
    at.waitFor([&] { return vault.phase() != VaultModel::Phase::loading; });
    const bool isNew = vault.phase() == VaultModel::Phase::notCreated;
    vault.authenticate(QStringLiteral("a password for the pictures"), isNew);
    at.waitFor([&] { return vault.phase() == VaultModel::Phase::unlocked && !vault.isBusy(); });
    if (!isNew) return;
    std::vector<std::string> paths;
    for (const QString& path : filesWith(at, "Lease", 4))
        paths.push_back(path.toStdString());
    vault.importFiles(paths);
    at.waitFor([&] { return !vault.isBusy(); });
}

} // namespace

const std::map<QString, std::function<void(Photographer&)>>& scenes() {
    static const std::map<QString, std::function<void(Photographer&)>> all{
        {QStringLiteral("files"),
         [](Photographer& at) {
             chooseFirstFile(at);
             at.settle(1'500); // the preview
         }},
        {QStringLiteral("preview"),
         [](Photographer& at) {
             chooseFirstFile(at);
             at.press(Qt::Key_Space);
             at.settle(1'500);
         }},
        {QStringLiteral("menu"),
         [](Photographer& at) {
             chooseFirstFile(at);
             at.press(Qt::Key_Menu);
         }},
        {QStringLiteral("rename"),
         [](Photographer& at) {
             chooseFirstFile(at);
             at.press(Qt::Key_F2);
         }},
        {QStringLiteral("search"),
         [](Photographer& at) {
             at.model().search()->setQuery(QStringLiteral("pdfs privacy committee"));
             at.show(QStringLiteral("search"));
             at.waitFor([&] { return at.model().search()->results()->count() > 0; });
             at.settle(); // the excerpts
         }},
        {QStringLiteral("ask"),
         [](Photographer& at) {
             at.show(QStringLiteral("search"));
             at.click(QStringLiteral("Ask"));
             at.type(QStringLiteral("when is the payment due?"));
             at.press(Qt::Key_Return);
             at.waitUntilTold(QStringLiteral("Passages"));
         }},
        {QStringLiteral("spaces"),
         [](Photographer& at) {
             if (at.model().spaces()->spaces().empty()) {
                 at.model().spaces()->createSpace(QStringLiteral("Kitchen"),
                                                  filesWith(at, "Kitchen Rebuild/", 100));
             }
             at.show(QStringLiteral("spaces"));
         }},
        {QStringLiteral("duplicates"),
         [](Photographer& at) {
             at.show(QStringLiteral("duplicates"));
             at.click(QStringLiteral("Exact copies"));
             at.model().duplicates()->findDuplicates();
             at.waitFor([&] { return !at.model().duplicates()->isFindingDuplicates(); });
         }},
        {QStringLiteral("look-alikes"), lookAlikes},
        {QStringLiteral("comparison"),
         [](Photographer& at) {
             lookAlikes(at);
             at.click(QStringLiteral("Compare…"));
             at.settle(1'500);
         }},
        {QStringLiteral("review"), review},
        {QStringLiteral("activity"), activity},
        {QStringLiteral("receipt"),
         [](Photographer& at) {
             activity(at);
             at.click(QStringLiteral("Show all"));
         }},
        {QStringLiteral("storage"), cleanup},
        {QStringLiteral("storage-items"),
         [](Photographer& at) {
             cleanup(at);
             at.click(at.cleanup()
                          .candidates()
                          ->categories()
                          ->value(0, QStringLiteral("title"))
                          .toString());
             at.click(QStringLiteral("Choose all"));
         }},
        {QStringLiteral("storage-settings"),
         [](Photographer& at) {
             cleanup(at);
             at.click(QStringLiteral("When and where"));
         }},
        {QStringLiteral("vault-open"), openVault},
        {QStringLiteral("vault-export"),
         [](Photographer& at) {
             openVault(at);
             const QString name = at.vault().items()->value(0, QStringLiteral("name")).toString();
             at.click(QStringLiteral("Export %1").arg(name));
         }},
        {QStringLiteral("vault-locked"),
         [](Photographer& at) {
             at.show(QStringLiteral("vault"));
             at.vault().lock();
             at.waitFor([&] { return !at.vault().isBusy(); });
         }},
        {QStringLiteral("offer"), [](Photographer& at) { at.model().folders()->addHomeFolder(); }},
        {QStringLiteral("chooser"),
         [](Photographer& at) { at.model().folders()->presentFolderPicker(); }},
        {QStringLiteral("quick-search"),
         [](Photographer& at) { at.showQuickSearch(QStringLiteral("lease")); }},
        {QStringLiteral("keys"), [](Photographer& at) { at.press(Qt::Key_F1); }},
        {QStringLiteral("palette"),
         [](Photographer& at) { at.model().setShowCommandPalette(true); }},
    };
    return all;
}

void leaveScene(Photographer& at) {
    at.model().setShowCommandPalette(false);
    if (at.model().plans()->proposedPlan()) at.model().plans()->cancelPlan();
    at.press(Qt::Key_Escape, 2);
    at.settle();
}

} // namespace tovi
