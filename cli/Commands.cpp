#include "cli/Commands.h"

namespace tovi::cli {

void addCommands(CLI::App& app, Context& context) {
    addIndexCommand(app, context);
    addSearchCommand(app, context);
    addAskCommand(app, context);
    addDownloadsCommand(app, context);
    addShowCommand(app, context);
    addStatusCommand(app, context);
    addForgetCommand(app, context);
    addClearCommand(app, context);
    addDuplicatesCommand(app, context);
    addTrashCommand(app, context);
    addRenameCommand(app, context);
    addHistoryCommand(app, context);
    addUndoCommand(app, context);
    addPhotosCommand(app, context);
    addThumbnailCommand(app, context);
    addPrivacyCommand(app, context);
    addVaultCommand(app, context);
    addCleanupCommand(app, context);
    addWatchCommand(app, context);
    addFoldersCommand(app, context);
    addSearchesCommand(app, context);
    addSpacesCommand(app, context);
    addPlanCommand(app, context);
    addGenerateCommand(app, context);
}

} // namespace tovi::cli
