#pragma once

#include <QList>
#include <QStringList>
#include <QTextStream>

namespace corvanta::cli {

// A table of text with a header line, its columns padded to the widest cell: text to the left,
// amounts and numbers to the right.
class TextTable
{
public:
    enum class Align { Left, Right };
    struct Column
    {
        QString title;
        Align align = Align::Left;
    };

    explicit TextTable(const QList<Column>& columns)
        : m_columns(columns)
    {}

    void addRow(const QStringList& cells) { m_rows << cells; }
    bool isEmpty() const { return m_rows.isEmpty(); }
    // Writes the header (unless `header` is off) and the rows, each line indented by `indent`
    // blanks.
    void write(QTextStream& out, int indent = 0, bool header = true) const;

private:
    QList<Column> m_columns;
    QList<QStringList> m_rows;
};

// Labelled values, one per line, the values lined up after the longest label; empty values are
// left out.
class FieldList
{
public:
    void add(const QString& label, const QString& value)
    {
        if (!value.isEmpty())
            m_table.addRow({label + QLatin1Char(':'), value});
    }
    void write(QTextStream& out) const { m_table.write(out, 0, false); }

private:
    TextTable m_table{{{QString()}, {QString()}}};
};

} // namespace corvanta::cli
