// The import's delimited text files: bytes decoded in one of the offered encodings (chosen by the
// first byte), then cut into rows at one of a few separators (chosen by the second byte). Every
// row must have the first line's number of fields, and no field may keep a line break or a
// double quote.
#include "exchange/csvsplitter.h"
#include "exchange/textdecoder.h"

#include <algorithm>
#include <cstdint>

using namespace corvanta::exchange;

namespace {

void check(bool condition, const char* what, const QString& text)
{
    if (!condition)
        qFatal("%s in the rows of \"%s\"", what, qUtf8Printable(text));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    static const QList<TextDecoder::Encoding> encodings = TextDecoder::encodings();
    static const QStringList separators{QStringLiteral(";"),  QStringLiteral(","),  QStringLiteral("\t"),
                                        QStringLiteral("::"), QStringLiteral("\""), QString()};
    const QString encoding = encodings.at(data[0] % encodings.size()).name;
    const QString separator = separators.at(data[1] % separators.size());
    const QByteArray bytes(reinterpret_cast<const char*>(data + 2), qsizetype(size - 2));

    QString error;
    const std::optional<QString> text = TextDecoder::decode(bytes, encoding, &error);
    if (encoding == QLatin1String("ISO-8859-1"))
        check(text && text->size() == bytes.size(), "Latin-1 did not read every byte as one character",
              QString::fromLatin1(bytes));
    if (!text) {
        check(!error.isEmpty(), "a refusal without a reason", QString::fromLatin1(bytes));
        return 0;
    }

    const QList<QStringList> rows = CsvSplitter::rows(*text, separator);
    check(rows.size() <= CsvSplitter::lines(*text).size(), "more rows than lines", *text);
    for (const QStringList& row : rows) {
        check(row.size() == rows.first().size(), "a row of another width", *text);
        for (const QString& field : row) {
            check(!field.contains(QLatin1Char('"')), "a quote left in a field", *text);
            check(std::none_of(field.begin(), field.end(), CsvSplitter::isNewline), "a line break in a field",
                  *text);
            if (separator.size() == 1)
                check(!field.contains(separator), "a separator left in a field", *text);
        }
    }
    return 0;
}
