#pragma once

#include <QString>
#include <QUrl>

namespace corvanta::app {

// Where the maker can be reached, set when the program is built: the help and home pages and
// the support mailbox.
class MakerLinks
{
public:
    static QUrl helpPage();
    static QUrl homePage();
    static QString supportAddress();
};

} // namespace corvanta::app
