#include "soundplayer.h"

#include <QFile>
#include <QSoundEffect>
#include <QUrl>

namespace corvanta::ui {

namespace {

QString resourcePath(const QString& name)
{
    return QStringLiteral(":/sounds/%1.wav").arg(name);
}

} // namespace

SoundPlayer::SoundPlayer(QObject* parent)
    : QObject(parent)
{}

bool SoundPlayer::hasSound(const QString& name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) && QFile::exists(resourcePath(name));
}

void SoundPlayer::play(const QString& name)
{
    if (!hasSound(name))
        return;
    QSoundEffect* effect = m_effects.value(name);
    if (!effect) {
        effect = new QSoundEffect(this);
        effect->setSource(QUrl(QStringLiteral("qrc") + resourcePath(name)));
        effect->setVolume(0.6f);
        m_effects.insert(name, effect);
    }
    // Loading is asynchronous: a sound asked for before it has loaded plays once it is ready.
    if (effect->isLoaded()) {
        effect->play();
    } else {
        connect(
            effect, &QSoundEffect::loadedChanged, effect,
            [effect] {
                if (effect->isLoaded())
                    effect->play();
            },
            Qt::SingleShotConnection);
    }
}

} // namespace corvanta::ui
