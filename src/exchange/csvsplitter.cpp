#include "csvsplitter.h"

namespace corvanta::exchange {

QList<CsvSplitter::Separator> CsvSplitter::separators()
{
    return {
        {QStringLiteral(";"), QStringLiteral(";")}, {QStringLiteral(","), QStringLiteral(",")},
        {tr("Tab"), QStringLiteral("\t")},          {QStringLiteral("|"), QStringLiteral("|")},
        {QStringLiteral(":"), QStringLiteral(":")}, {tr("Space"), QStringLiteral(" ")},
    };
}

bool CsvSplitter::isNewline(QChar c)
{
    switch (c.unicode()) {
    case 0x000A:
    case 0x000B:
    case 0x000C:
    case 0x000D:
    case 0x0085:
    case 0x2028:
    case 0x2029:
        return true;
    default:
        return false;
    }
}

QStringList CsvSplitter::lines(const QString& text)
{
    QStringList result;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !isNewline(text.at(i)))
            continue;
        if (i > start)
            result << text.mid(start, i - start);
        start = i + 1;
    }
    return result;
}

QList<QStringList> CsvSplitter::rows(const QString& text, const QString& separator)
{
    QList<QStringList> result;
    qsizetype columns = -1;
    for (const QString& line : lines(text)) {
        QStringList fields = separator.isEmpty() ? QStringList{line} : line.split(separator);
        if (columns < 0)
            columns = fields.size();
        fields.resize(columns);
        for (QString& field : fields)
            field.remove(QLatin1Char('"'));
        result << fields;
    }
    return result;
}

} // namespace corvanta::exchange
