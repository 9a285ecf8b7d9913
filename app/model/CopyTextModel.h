#pragma once

#include "app/model/ModelContext.h"
#include "app/model/Ports.h"

namespace tovi {

/// Puts the stored text of files on the clipboard.
class CopyTextModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isCopyingText READ isCopyingText NOTIFY changed)
    Q_PROPERTY(QString copyTextMessage READ copyTextMessage NOTIFY changed)

  public:
    static constexpr double noticePeriod = 8;            // seconds
    static constexpr std::size_t largestText = 8U << 20; // bytes

    CopyTextModel(ModelContext& context, Clipboard& clipboard)
        : context_(context), clipboard_(clipboard) {}

    bool isCopyingText() const { return isCopyingText_; }
    /// Empty while there is nothing to say.
    QString copyTextMessage() const { return copyTextMessage_; }

    void copy(const std::vector<std::string>& paths);
    Q_INVOKABLE void dismissCopyTextMessage();

  Q_SIGNALS:
    void changed();

  private:
    struct Collected {
        std::string text;
        std::vector<std::string> copied;  // names
        std::vector<std::string> without; // names of files without text
        bool isCut = false;
    };
    static Collected collect(const std::vector<std::string>& paths, IndexStore& store,
                             const std::stop_token& stop);
    static std::string describe(const Collected& collected);
    void finish(const Outcome<Collected>& outcome);
    void scheduleCopyNoticeDismissal();

    ModelContext& context_;
    Clipboard& clipboard_;
    bool isCopyingText_ = false;
    QString copyTextMessage_;
    Generation copyTextGeneration_;
};

} // namespace tovi
