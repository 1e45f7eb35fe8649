#pragma once

#include <QString>
#include <functional>

class QPixmap;
class QWidget;

namespace corvanta::store {
class Store;
}
namespace corvanta::ui {
class MainWindow;
}

namespace corvanta::uipictures {

QString s(const char* text);

// The folder the next pictures go to (made when missing).
void setFolder(const QString& folder);
// Writes the widget as it is drawn now to `name`.png in the folder.
void save(QWidget* widget, const char* name);
void save(const QPixmap& picture, const char* name);
// Pictures the next modal window when it shows (no picture for a null name), then answers a
// message box with `button` (its Escape button when it has none of that name) or rejects any
// other dialog; `then` runs once the window is answered.
void pictureNextDialog(const char* name, const QString& button = {}, std::function<void()> then = {});

// The editor windows of the program on the company `store` holds, with their sheets, popovers
// and questions, filled as a user fills them.
void takeEditorPictures(store::Store& store, ui::MainWindow& mainWindow);

} // namespace corvanta::uipictures
