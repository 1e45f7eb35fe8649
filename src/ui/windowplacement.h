#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>

class QWidget;

namespace corvanta::ui {

// Where the program's windows were when they last closed, and the state of their parts
// (splitters), kept between runs in the desktop settings under each window's object name.
class WindowPlacement
{
public:
    // The desktop program's own settings.
    static QSettings settings();

    // Puts the window where it was; false when nothing was kept, and the window is left alone
    // to choose its first size.
    static bool restore(QWidget* window);
    static void save(const QWidget* window);

    // Shows the window in front of the others, restored when it was minimised; null stays null.
    static QWidget* bringToFront(QWidget* window);

    // The kept state of a part of the window ("splitter"), empty when none was kept.
    static QByteArray partState(const QWidget* window, const QString& part);
    static void savePartState(const QWidget* window, const QString& part, const QByteArray& state);
};

} // namespace corvanta::ui
