#pragma once

#include <QCoreApplication>
#include <QList>
#include <QStringList>
#include <QVariantMap>

namespace corvanta::support {
class Prompter;
}

namespace corvanta::exchange {

// What an import window shows of its file: the file read in the chosen encoding and cut into
// rows at the chosen separator. It is read again whenever the file, the encoding or the
// separator changes; a file that cannot be read keeps the rows read before.
class CsvPreview
{
    Q_DECLARE_TR_FUNCTIONS(CsvPreview)

public:
    explicit CsvPreview(support::Prompter& prompter);

    const QString& path() const { return m_path; }
    const QString& separator() const { return m_separator; }
    const QString& encoding() const { return m_encoding; }

    // Each setter reads the file again with the new setting (once a file is chosen); false when
    // that failed, which the user was told with the "Warning" alert, and the previous rows stay.
    bool setPath(const QString& path);
    bool setSeparator(const QString& separator);
    bool setEncoding(const QString& encoding);
    // Reads the file with the current settings.
    bool read();

    const QList<QStringList>& rows() const { return m_rows; }
    // The number of fields of the first line; 0 for a file without lines.
    qsizetype columnCount() const { return m_rows.isEmpty() ? 0 : m_rows.first().size(); }
    // One row as the preview table binds it: "column0", "column1" ... to the row's texts.
    QVariantMap row(qsizetype index) const;

    // The key of a preview column (0-based).
    static QString columnKey(qsizetype column);

private:
    support::Prompter& m_prompter;
    QString m_path;
    QString m_separator;
    QString m_encoding;
    QList<QStringList> m_rows;
};

} // namespace corvanta::exchange
