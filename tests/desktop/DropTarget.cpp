#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QRasterWindow>
#include <cstdio>

/// A window of another program, at the right of the screen, that takes whatever is dropped on it. A
/// line of standard output tells of each move over it, another of the addresses that were dropped.
class DropTarget final : public QRasterWindow {
  public:
    DropTarget() {
        setTitle(QStringLiteral("Drop here"));
        setGeometry(1000, 100, 200, 200);
    }

  protected:
    bool event(QEvent* event) override {
        switch (event->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove:
            std::puts("over");
            static_cast<QDropEvent*>(event)->setDropAction(Qt::CopyAction);
            break;
        case QEvent::Drop:
            std::puts(
                static_cast<QDropEvent*>(event)->mimeData()->data(QStringLiteral("text/uri-list")));
            break;
        default:
            return QRasterWindow::event(event);
        }
        std::fflush(stdout);
        event->accept();
        return true;
    }
};

int main(int count, char** arguments) {
    const QGuiApplication application(count, arguments);
    DropTarget target;
    target.show();
    return QGuiApplication::exec();
}
