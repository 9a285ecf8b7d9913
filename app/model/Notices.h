#pragma once

#include <QObject>

namespace tovi {

/// The one line of status and the one error banner of the application.
class Notices : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)

  public:
    using QObject::QObject;

    QString statusMessage() const { return statusMessage_; }

    /// Empty while there is no error to show.
    QString errorMessage() const { return errorMessage_; }

    void setStatus(const std::string& text);
    void setError(const std::string& text);
    Q_INVOKABLE void dismissError();

  Q_SIGNALS:
    void statusMessageChanged();
    void errorMessageChanged();

  private:
    QString statusMessage_;
    QString errorMessage_;
};

} // namespace tovi
