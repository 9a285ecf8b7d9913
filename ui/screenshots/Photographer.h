#pragma once

#include "ui/desktop/Application.h"

#include <QImage>
#include <functional>

namespace tovi {

/// Uses the window like someone who wants a picture of it. Every wait ends with
/// std::runtime_error after two minutes.
class Photographer {
  public:
    /// Pictures are written into the directory as NAME, suffix, ".png".
    Photographer(Application& application, QString outDirectory, QString suffix);

    AppModel& model() { return application_.model(); }
    VaultModel& vault() { return application_.vault(); }
    CleanupModel& cleanup() { return application_.cleanup(); }

    void connect(const QString& folder);
    void show(const QString& section);
    void showQuickSearch(const QString& query);
    void press(Qt::Key key, int times = 1);
    void type(const QString& text);
    /// What assistive technology is told by this name, once it is there.
    void click(const QString& name);
    void waitFor(const std::function<bool()>& condition);
    bool isTold(const QString& name);
    void waitUntilTold(const QString& name);
    /// Lets what has begun, such as a fade or a preview, come to its end.
    void settle(int milliseconds = 400);

    void take(const QString& name);
    /// Keeps what is taken from now on for one picture of them all.
    void beginContactSheet() { isContactSheet_ = true; }
    void saveContactSheet(const QString& name);

  private:
    /// The quick search panel if it is shown, else the window.
    QQuickWindow* shown();
    void save(const QImage& image, const QString& name);

    Application& application_;
    QString out_;
    QString suffix_;
    bool isContactSheet_ = false;
    QList<QImage> tiles_;
};

} // namespace tovi
