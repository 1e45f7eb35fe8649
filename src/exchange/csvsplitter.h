#pragma once

#include <QCoreApplication>
#include <QList>
#include <QStringList>

namespace corvanta::exchange {

// The plain dialect of the import's delimited text: lines end at every newline character, a line
// is cut at every occurrence of the separator without regard to quotes, and every double quote
// is removed from the fields. A quoted field that holds the separator is therefore cut like any
// other; quoting and escaped quotes are deliberately not honoured.
class CsvSplitter
{
    Q_DECLARE_TR_FUNCTIONS(CsvSplitter)

public:
    struct Separator
    {
        QString title; // as the separator pop-up shows it
        QString text;  // what the lines are cut at
    };

    static inline const QString kDefaultSeparator = QStringLiteral(";");

    // The separators offered on the import windows' pop-up, ";" first.
    static QList<Separator> separators();

    // Whether the character ends a line: LF, VT, FF, CR, NEL (U+0085), LINE SEPARATOR (U+2028)
    // and PARAGRAPH SEPARATOR (U+2029). Each ends a line by itself, so CR LF leaves an empty line
    // between the two.
    static bool isNewline(QChar c);

    // The non-empty lines of the text.
    static QStringList lines(const QString& text);

    // The fields of every non-empty line. Every row has as many fields as the first line: missing
    // ones are empty, further ones dropped. An empty separator leaves each line one field.
    static QList<QStringList> rows(const QString& text, const QString& separator);
};

} // namespace corvanta::exchange
