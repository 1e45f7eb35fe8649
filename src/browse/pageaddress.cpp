#include "browse/pageaddress.h"

#include <QRegularExpression>
#include <QUrl>

namespace corvanta::browse {

QString PageAddress::pageName(ListKind kind)
{
    switch (kind) {
    case ListKind::Clients:
        return QStringLiteral("client.html");
    case ListKind::Items:
        return QStringLiteral("item.html");
    case ListKind::Documents:
        return QStringLiteral("document.html");
    case ListKind::ToDos:
        return QStringLiteral("todo.html");
    case ListKind::None:
        break;
    }
    return QStringLiteral("no_selected.html");
}

QString PageAddress::of(const QString& path, ListKind kind, const QString& identifier)
{
    if (kind == ListKind::None)
        return path;
    // A UUID stays as it is; any other character an identifier may hold (an imported address
    // book's UID) is percent-encoded, so that it cannot end the query or the address.
    return QStringLiteral("%1?%2&%3")
        .arg(path, QString::number(int(kind)), QString::fromLatin1(QUrl::toPercentEncoding(identifier)));
}

std::optional<PageAddress> PageAddress::parse(const QString& address)
{
    const qsizetype question = address.indexOf(QLatin1Char('?'));
    if (question < 0)
        return std::nullopt;
    const QStringList parts = address.mid(question + 1).split(QLatin1Char('&'));
    if (parts.size() != 2 || parts[0].size() != 1)
        return std::nullopt;
    const char16_t digit = parts[0].at(0).unicode();
    if (digit < u'1' || digit > u'4')
        return std::nullopt;
    const ListKind kind = ListKind(digit - u'0');
    static const QRegularExpression encodedForm(QStringLiteral("^[A-Za-z0-9._~%-]+$"));
    if (!encodedForm.match(parts[1]).hasMatch())
        return std::nullopt;
    const QString identifier = QUrl::fromPercentEncoding(parts[1].toLatin1());
    static const QRegularExpression controlCharacter(QStringLiteral("[\\x00-\\x1f\\x7f]"));
    if (identifier.trimmed().isEmpty() || identifier.contains(controlCharacter))
        return std::nullopt;
    const QString path = address.left(question);
    const QString page = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    if (page != pageName(kind))
        return std::nullopt;
    return PageAddress{kind, identifier};
}

} // namespace corvanta::browse
