#pragma once

#include <QHash>
#include <QObject>

class QSoundEffect;

namespace corvanta::ui {

// Plays the program's own short sounds (":/sounds/<name>.wav") without waiting for them. A name
// the program has no sound for, or a machine without sound, plays nothing.
class SoundPlayer : public QObject
{
    Q_OBJECT

public:
    explicit SoundPlayer(QObject* parent = nullptr);

    static bool hasSound(const QString& name);

public Q_SLOTS:
    void play(const QString& name);

private:
    QHash<QString, QSoundEffect*> m_effects; // loaded on first use, kept for the next time
};

} // namespace corvanta::ui
