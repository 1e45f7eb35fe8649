#include "makerlinks.h"

namespace corvanta::app {

QUrl MakerLinks::helpPage()
{
    return QUrl(QStringLiteral(CORVANTA_HELP_URL));
}

QUrl MakerLinks::homePage()
{
    return QUrl(QStringLiteral(CORVANTA_HOME_URL));
}

QString MakerLinks::supportAddress()
{
    return QStringLiteral(CORVANTA_SUPPORT_ADDRESS);
}

} // namespace corvanta::app
