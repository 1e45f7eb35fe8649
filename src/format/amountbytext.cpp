#include "amountbytext.h"

#include "formatlog.h"
#include "roundeddecimal.h"

#include <cmath>

namespace corvanta::format {

namespace {

constexpr int kWholeDigits = 12;

QString word(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

const QStringList& units()
{
    static const QStringList list{word(""),   word("egy"), word("kettő"), word("három"), word("négy"),
                                  word("öt"), word("hat"), word("hét"),   word("nyolc"), word("kilenc")};
    return list;
}

const QStringList& tens()
{
    static const QStringList list{word(""),         word("tíz"),      word("húsz"),   word("harminc"),
                                  word("negyven"),  word("ötven"),    word("hatvan"), word("hetven"),
                                  word("nyolcvan"), word("kilencven")};
    return list;
}

// The names of the four groups of three digits, from the left.
const QStringList& groupNames()
{
    static const QStringList list{word("milliárd"), word("millió"), word("ezer"), word("")};
    return list;
}

int digitAt(const QString& digits, qsizetype i)
{
    return digits.at(i).digitValue();
}

// The whole part (1 ... 999 999 999 999) in words, before the first letter is raised.
QString wholeInWords(const QString& wholeDigits)
{
    const QString padded = wholeDigits.rightJustified(kWholeDigits, QLatin1Char('0'));
    const qint64 whole = wholeDigits.toLongLong();
    QString text;
    for (int group = 0; group < 4; ++group) {
        const int hundreds = digitAt(padded, group * 3);
        const int tensDigit = digitAt(padded, group * 3 + 1);
        const int unitsDigit = digitAt(padded, group * 3 + 2);
        if (hundreds != 0)
            text += units().at(hundreds) + QStringLiteral("száz");
        if (tensDigit != 0) {
            if (tensDigit == 1 && unitsDigit != 0)
                text += QStringLiteral("tizen");
            else if (tensDigit == 2 && unitsDigit != 0)
                text += QStringLiteral("huszon");
            else
                text += tens().at(tensDigit);
        }
        if (unitsDigit != 0)
            text += units().at(unitsDigit);
        if (hundreds * 100 + tensDigit * 10 + unitsDigit > 0)
            text += groupNames().at(group);
        // After the milliárd and millió groups, whether or not they were zero.
        if (group < 2 && whole > 2000)
            text += QLatin1Char('-');
    }
    // Only the ends are trimmed: "egymilliárd--ötezeregy" keeps its inner hyphens.
    if (text.endsWith(QStringLiteral("--")))
        text.chop(2);
    if (text.endsWith(QLatin1Char('-')))
        text.chop(1);
    if (text.startsWith(QStringLiteral("--")))
        text.remove(0, 2);
    if (text.startsWith(QLatin1Char('-')))
        text.remove(0, 1);
    return text;
}

} // namespace

QString amountByText(double number)
{
    if (!std::isfinite(number)) {
        qCWarning(lcFormat) << "amountByText: refused a number that is not finite:" << number;
        return {};
    }
    const RoundedDecimal rounded = RoundedDecimal::fromDouble(number, 2, 2);
    if (rounded.isZero())
        return QStringLiteral("Nulla");

    const QString& whole = rounded.integerDigits();
    const QString cents = rounded.fractionDigits();
    QString text;
    if (whole == QLatin1String("0")) {
        text = QStringLiteral("Nulla %1/100").arg(cents);
    } else if (whole.size() > kWholeDigits) {
        text = QStringLiteral("%1 %2/100").arg(whole, cents);
    } else {
        const QString words = wholeInWords(whole);
        text = QStringLiteral("%1%2 %3/100").arg(words.left(1).toUpper(), words.mid(1), cents);
    }
    return rounded.isNegative() ? QStringLiteral("minusz %1").arg(text) : text;
}

} // namespace corvanta::format
