#pragma once

#include "base/Text.h"
#include "base/Uuid.h"
#include "cli/Context.h"
#include "cli/Format.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace tovi::cli {

/// Tells what an execution did. `undo` is the command that takes a receipt back.
template <typename Receipt>
void reportExecution(const Receipt& receipt, const std::string& undo, Context& context) {
    if (context.json) {
        context.print({{"receipt", toJson(receipt)}});
    } else {
        for (const auto& entry : receipt.entries) {
            fmt::print("{}\n  is now {}\n", printable(entry.originalPath),
                       printable(entry.currentPath));
        }
        if (!receipt.entries.empty()) {
            fmt::print("To take this back: {} {}\n", undo, receipt.id.string());
        }
    }
    if (!receipt.error) return;
    fmt::print(stderr, "{}\n", printable(*receipt.error));
    context.exitCode = receipt.entries.empty() ? ExitCode::failed : ExitCode::needsAttention;
}

/// Lists receipts, the newest first, or says `none`.
template <typename Receipt>
void printHistory(const std::vector<Receipt>& receipts, const std::string& none,
                  const Context& context) {
    if (context.json) {
        Json list = Json::array();
        for (const Receipt& receipt : receipts)
            list.push_back(toJson(receipt));
        context.print({{"receipts", std::move(list)}});
        return;
    }
    if (receipts.empty()) fmt::print("{}\n", none);
    for (const Receipt& receipt : receipts) {
        std::size_t restored = 0;
        for (const auto& entry : receipt.entries)
            restored += entry.restored ? 1 : 0;
        fmt::print("{}  {}  {}", receipt.id.string(), formatDate(receipt.date),
                   bold(printable(receipt.title)));
        fmt::print("  {} done", receipt.entries.size());
        if (restored > 0) fmt::print(", {} restored", restored);
        fmt::print("\n");
        if (receipt.error) fmt::print("  {}\n", printable(*receipt.error));
    }
}

/// What became of each file of a receipt.
template <typename Receipt>
void printRestored(const Receipt& receipt, const Context& context) {
    if (context.json) {
        context.print({{"receipt", toJson(receipt)}});
        return;
    }
    for (const auto& entry : receipt.entries) {
        fmt::print("{}  {}\n", entry.restored ? "restored    " : "not restored",
                   printable(entry.originalPath));
    }
}

/// Takes a receipt back with `undo(id)` and tells what became of its files, also where one could
/// not be restored: what was done before then is in the `history()`.
template <typename Undo, typename History>
void undoAndPrint(const std::string& text, Undo undo, History history, const Context& context) {
    const auto id = Uuid::parse(text);
    if (!id) throw std::runtime_error("This is not the identifier of a receipt: " + text);
    try {
        printRestored(undo(*id), context);
    } catch (const std::runtime_error&) {
        for (const auto& receipt : history()) {
            if (receipt.id == *id) printRestored(receipt, context);
        }
        throw;
    }
}

} // namespace tovi::cli
