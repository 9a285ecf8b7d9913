#pragma once

#include "cli/Context.h"

namespace tovi::cli {

/// Adds every command to `app`, in the order of its help. Both arguments outlive the parsing.
void addCommands(CLI::App& app, Context& context);

void addIndexCommand(CLI::App& app, Context& context);
void addSearchCommand(CLI::App& app, Context& context);
void addAskCommand(CLI::App& app, Context& context);
void addDownloadsCommand(CLI::App& app, Context& context);
void addShowCommand(CLI::App& app, Context& context);
void addStatusCommand(CLI::App& app, Context& context);
void addForgetCommand(CLI::App& app, Context& context);
void addClearCommand(CLI::App& app, Context& context);
void addDuplicatesCommand(CLI::App& app, Context& context);
void addTrashCommand(CLI::App& app, Context& context);
void addRenameCommand(CLI::App& app, Context& context);
void addHistoryCommand(CLI::App& app, Context& context);
void addUndoCommand(CLI::App& app, Context& context);
void addPhotosCommand(CLI::App& app, Context& context);
void addThumbnailCommand(CLI::App& app, Context& context);
void addPrivacyCommand(CLI::App& app, Context& context);
void addVaultCommand(CLI::App& app, Context& context);
void addCleanupCommand(CLI::App& app, Context& context);
void addWatchCommand(CLI::App& app, Context& context);
void addFoldersCommand(CLI::App& app, Context& context);
void addSearchesCommand(CLI::App& app, Context& context);
void addSpacesCommand(CLI::App& app, Context& context);
void addPlanCommand(CLI::App& app, Context& context);
void addGenerateCommand(CLI::App& app, Context& context);

} // namespace tovi::cli
