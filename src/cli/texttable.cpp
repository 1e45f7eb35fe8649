#include "texttable.h"

namespace corvanta::cli {

void TextTable::write(QTextStream& out, int indent, bool header) const
{
    QList<qsizetype> widths;
    for (const Column& column : m_columns)
        widths << column.title.size();
    for (const QStringList& row : m_rows) {
        for (qsizetype i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths.at(i), row.value(i).size());
    }
    const auto line = [&](const QStringList& cells) {
        QString text(indent, QLatin1Char(' '));
        for (qsizetype i = 0; i < m_columns.size(); ++i) {
            const int width = int(widths.at(i));
            const QString cell = cells.value(i);
            if (i > 0)
                text += QStringLiteral("  ");
            text += m_columns.at(i).align == Align::Right ? cell.rightJustified(width)
                                                          : cell.leftJustified(width);
        }
        // No blanks are left at the end of a line.
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        out << text << '\n';
    };
    QStringList titles;
    for (const Column& column : m_columns)
        titles << column.title;
    if (header)
        line(titles);
    for (const QStringList& row : m_rows)
        line(row);
}

} // namespace corvanta::cli
