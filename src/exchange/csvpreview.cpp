#include "csvpreview.h"

#include "csvsplitter.h"
#include "support/prompter.h"
#include "textdecoder.h"

#include <QFile>

namespace corvanta::exchange {

CsvPreview::CsvPreview(support::Prompter& prompter)
    : m_prompter(prompter)
    , m_separator(CsvSplitter::kDefaultSeparator)
    , m_encoding(TextDecoder::kDefaultEncoding)
{}

bool CsvPreview::setPath(const QString& path)
{
    m_path = path;
    return read();
}

bool CsvPreview::setSeparator(const QString& separator)
{
    m_separator = separator;
    return read();
}

bool CsvPreview::setEncoding(const QString& encoding)
{
    m_encoding = encoding;
    return read();
}

bool CsvPreview::read()
{
    // Before a file is chosen the pop-ups only keep their settings.
    if (m_path.isEmpty())
        return true;
    QString error;
    QFile file(m_path);
    std::optional<QString> text;
    if (!file.open(QIODevice::ReadOnly))
        error = tr("The file \"%1\" couldn't be opened: %2").arg(m_path, file.errorString());
    else if (const QByteArray bytes = file.readAll(); file.error() != QFileDevice::NoError)
        error = tr("The file \"%1\" couldn't be read: %2").arg(m_path, file.errorString());
    else
        text = TextDecoder::decode(bytes, m_encoding, &error);
    if (!text) {
        m_prompter.alert(tr("Warning"), error, {tr("OK")});
        return false;
    }
    m_rows = CsvSplitter::rows(*text, m_separator);
    return true;
}

QVariantMap CsvPreview::row(qsizetype index) const
{
    QVariantMap values;
    const QStringList& fields = m_rows.at(index);
    for (qsizetype column = 0; column < fields.size(); ++column)
        values.insert(columnKey(column), fields.at(column));
    return values;
}

QString CsvPreview::columnKey(qsizetype column)
{
    return QStringLiteral("column%1").arg(column);
}

} // namespace corvanta::exchange
