// Numbers and dates typed by the user: the command line's quantities, prices and dates
// (ValueText), values given to a field as they are (NumberInput) and text typed into a number
// column of a list editor, read in the style of the company's default currency (NumberFormatter).
// The first byte chooses the reader and, for the editors, the currency's style; the rest is the
// text. Whatever is accepted as an amount must be a finite number that is written back as text
// that reads again.
#include "cli/valuetext.h"
#include "format/numberformatter.h"
#include "format/numberinput.h"
#include "predicate/keypathsource.h"

#include <QVariantMap>
#include <cmath>
#include <cstdint>

using namespace corvanta;

namespace {

// A Currencies record reduced to the attributes of its number format.
class CurrencyStub : public predicate::KeyPathSource
{
public:
    explicit CurrencyStub(QVariantMap values)
        : m_values(std::move(values))
    {}
    QVariant valueForKeyPath(const QString& keyPath) const override { return m_values.value(keyPath); }
    predicate::RecordRef selfRef() const override { return {QStringLiteral("Currencies"), 1}; }

private:
    QVariantMap m_values;
};

void requireFinite(const char* reader, const QString& text, double value)
{
    if (!std::isfinite(value))
        qFatal("%s accepted \"%s\" as %g, which is no amount", reader, qUtf8Printable(text), value);
}

void commandLine(const QString& text)
{
    if (const std::optional<double> number = cli::ValueText::number(text)) {
        requireFinite("ValueText::number", text, *number);
        const QString written = cli::ValueText::plain(*number);
        const std::optional<double> again = cli::ValueText::number(written);
        if (!again || *again != *number)
            qFatal("ValueText::plain wrote %g as \"%s\", which does not read back", *number,
                   qUtf8Printable(written));
    }
    if (const std::optional<QDate> date = cli::ValueText::date(text))
        (void)cli::ValueText::midday(*date);
}

void fieldValue(const QString& text)
{
    QString error;
    if (const std::optional<double> number = format::NumberInput::finiteNumber(QVariant(text), &error))
        requireFinite("NumberInput::finiteNumber", text, *number);
}

void listEditor(uint8_t style, const QString& text)
{
    static const char* const groupings[] = {",", ".", " ", "'", "none", ""};
    static const char* const decimals[] = {".", ",", "", "'"};
    const QString grouping = QString::fromLatin1(groupings[style % 6]);
    const QString decimal = QString::fromLatin1(decimals[(style / 6) % 4]);
    const CurrencyStub currency(QVariantMap{{QStringLiteral("grouping_separator"), grouping},
                                            {QStringLiteral("decimal_separator"), decimal},
                                            {QStringLiteral("digits"), (style / 24) % 4},
                                            {QStringLiteral("show_fixed_digits"), (style & 0x80) != 0}});
    const format::NumberFormatter formatter(&currency);
    QVariant value;
    QString error;
    if (!formatter.getObjectValue(&value, text, &error) || value.isNull())
        return;
    requireFinite("NumberFormatter::getObjectValue", text, value.toDouble());
    // What a number column shows of it must read again, unless the currency's separators are
    // the same mark and cannot tell grouping from fraction.
    if (formatter.usesGroupingSeparator() && formatter.groupingSeparator() == formatter.decimalSeparator())
        return;
    const QString shown = formatter.stringForObjectValue(value);
    QVariant again;
    if (!formatter.getObjectValue(&again, shown, &error))
        qFatal("\"%s\" was shown as \"%s\", which does not read again: %s", qUtf8Printable(text),
               qUtf8Printable(shown), qUtf8Printable(error));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const uint8_t selector = data[0];
    const uint8_t style = data[1];
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data + 2), qsizetype(size - 2));
    switch (selector % 3) {
    case 0:
        commandLine(text);
        break;
    case 1:
        fieldValue(text);
        break;
    default:
        listEditor(style, text);
        break;
    }
    return 0;
}
