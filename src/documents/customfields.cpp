#include "customfields.h"

#include "predicate/literal.h"
#include "store/editingcontext.h"

namespace corvanta::documents {

QList<store::Record*> CustomFields::group(store::EditingContext& context, const QString& prefix)
{
    const predicate::Predicate named = predicate::literal("name beginswith[c] %@ && label != ''", {prefix});
    return context.fetch(store::FetchRequest(QStringLiteral("Compose"), named,
                                             {store::SortDescriptor{QStringLiteral("name")}}));
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

QString CustomFields::displayName(const store::Record* field)
{
    if (!field)
        return {};
    const QString label = field->value(QStringLiteral("label")).toString();
    return label.isEmpty() ? readableName(field->value(QStringLiteral("name")).toString()) : label;
}

} // namespace corvanta::documents
