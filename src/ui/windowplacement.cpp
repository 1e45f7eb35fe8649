#include "windowplacement.h"

#include <QWidget>

namespace corvanta::ui {

namespace {

QString keyOf(const QWidget* window, const QString& part)
{
    Q_ASSERT(!window->objectName().isEmpty());
    return window->objectName() + QLatin1Char('/') + part;
}

} // namespace

QSettings WindowPlacement::settings()
{
    return QSettings(QStringLiteral("corvanta"), QStringLiteral("desktop"));
}

bool WindowPlacement::restore(QWidget* window)
{
    const QByteArray geometry = partState(window, QStringLiteral("geometry"));
    return !geometry.isEmpty() && window->restoreGeometry(geometry);
}

void WindowPlacement::save(const QWidget* window)
{
    savePartState(window, QStringLiteral("geometry"), window->saveGeometry());
}

QWidget* WindowPlacement::bringToFront(QWidget* window)
{
    if (!window)
        return nullptr;
    if (window->isMinimized())
        window->showNormal();
    else
        window->show();
    window->raise();
    window->activateWindow();
    return window;
}

QByteArray WindowPlacement::partState(const QWidget* window, const QString& part)
{
    return settings().value(keyOf(window, part)).toByteArray();
}

void WindowPlacement::savePartState(const QWidget* window, const QString& part, const QByteArray& state)
{
    settings().setValue(keyOf(window, part), state);
}

} // namespace corvanta::ui
