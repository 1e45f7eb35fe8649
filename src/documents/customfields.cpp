#include "customfields.h"

#include "model/editingcontext.h"
#include "predicate/parser.h"

#include <QDebug>

namespace corvanta::documents {

QList<model::Record*> CustomFields::group(model::EditingContext& context, const QString& prefix)
{
    const std::optional<predicate::Predicate> predicate =
        predicate::Parser::parse(QStringLiteral("name beginswith[c] %@ && label != ''"), {prefix});
    if (!predicate) {
        qWarning() << "CustomFields: the group predicate does not parse";
        return {};
    }
    return context.fetch(model::FetchRequest(QStringLiteral("Compose"), *predicate,
                                             {model::SortDescriptor{QStringLiteral("name")}}));
}

QString CustomFields::readableName(const QString& key)
{
    QString name = key;
    name.remove(QStringLiteral("item_"));
    name.remove(QStringLiteral("client_"));
    name.remove(QStringLiteral("my_"));
    name.replace(QLatin1Char('_'), QLatin1Char(' '));
    name.chop(2);
    bool wordStart = true;
    for (QChar& c : name) {
        if (wordStart && c.isLetter())
            c = c.toUpper();
        wordStart = c.isSpace();
    }
    const qint64 index = key.right(2).toLongLong();
    return QStringLiteral("%1 %2").arg(name.trimmed()).arg(index);
}

QString CustomFields::displayName(const model::Record* field)
{
    if (!field)
        return {};
    const QString label = field->value(QStringLiteral("label")).toString();
    return label.isEmpty() ? readableName(field->value(QStringLiteral("name")).toString()) : label;
}

} // namespace corvanta::documents
