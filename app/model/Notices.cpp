#include "app/model/Notices.h"

#include "app/lists/QtConversions.h"

namespace tovi {

void Notices::setStatus(const std::string& text) {
    if (toQt(text) == statusMessage_) return;
    statusMessage_ = toQt(text);
    Q_EMIT statusMessageChanged();
}

void Notices::setError(const std::string& text) {
    if (toQt(text) == errorMessage_) return;
    errorMessage_ = toQt(text);
    Q_EMIT errorMessageChanged();
}

void Notices::dismissError() {
    setError({});
}

} // namespace tovi
