#include "decimalformatter.h"

#include "numberinput.h"
#include "roundeddecimal.h"

#include <algorithm>
#include <cmath>

namespace corvanta::format {

namespace {

const QChar kMinusSign(0x2212);
const QChar kNoBreakSpace(0x00a0);
const QChar kNarrowNoBreakSpace(0x202f);

int clampDigits(int digits)
{
    return std::clamp(digits, 0, DecimalFormatter::kFractionDigitLimit);
}

} // namespace

DecimalFormatter::DecimalFormatter() = default;

void DecimalFormatter::setDecimalSeparator(const QString& separator)
{
    m_decimalSeparator = separator.isEmpty() ? QStringLiteral(".") : separator;
}

void DecimalFormatter::setMinimumFractionDigits(int digits)
{
    m_minimumFractionDigits = clampDigits(digits);
}

void DecimalFormatter::setMaximumFractionDigits(int digits)
{
    m_maximumFractionDigits = clampDigits(digits);
}

QString DecimalFormatter::groupedDigits(const QString& digits) const
{
    if (!m_usesGrouping || m_groupingSeparator.isEmpty() || digits.size() <= 3)
        return digits;
    QString grouped;
    const qsizetype head = digits.size() % 3 == 0 ? 3 : digits.size() % 3;
    grouped += digits.left(head);
    for (qsizetype i = head; i < digits.size(); i += 3)
        grouped += m_groupingSeparator + digits.mid(i, 3);
    return grouped;
}

QString DecimalFormatter::stringFromNumber(double number) const
{
    if (!std::isfinite(number))
        return {};
    const RoundedDecimal rounded =
        RoundedDecimal::fromDouble(number, m_minimumFractionDigits, m_maximumFractionDigits);
    QString text = groupedDigits(rounded.integerDigits());
    if (!rounded.fractionDigits().isEmpty())
        text += m_decimalSeparator + rounded.fractionDigits();
    if (rounded.isNegative())
        text.prepend(QLatin1Char('-'));
    return text;
}

QString DecimalFormatter::stringForObjectValue(const QVariant& value) const
{
    const std::optional<double> number = NumberInput::finiteNumber(value);
    if (!number || value.typeId() == QMetaType::QString)
        return {};
    return stringFromNumber(*number);
}

bool DecimalFormatter::isGroupingMark(const QString& text, qsizetype at, qsizetype* length) const
{
    if (!m_usesGrouping || m_groupingSeparator.isEmpty() || m_groupingSeparator == m_decimalSeparator)
        return false;
    if (text.mid(at).startsWith(m_groupingSeparator)) {
        *length = m_groupingSeparator.size();
        return true;
    }
    // Typed or pasted text often carries a no-break space where the separator is a blank.
    if (m_groupingSeparator == QStringLiteral(" ") &&
        (text.at(at) == kNoBreakSpace || text.at(at) == kNarrowNoBreakSpace)) {
        *length = 1;
        return true;
    }
    return false;
}

bool DecimalFormatter::getObjectValue(QVariant* value, const QString& string, QString* errorDescription) const
{
    const QString text = string.trimmed();
    if (text.isEmpty()) {
        if (value)
            *value = QVariant();
        return true;
    }
    const auto refuse = [&](const QString& message) {
        if (errorDescription)
            *errorDescription = message;
        return false;
    };

    qsizetype at = 0;
    QString plain;
    if (text.at(0) == QLatin1Char('-') || text.at(0) == kMinusSign) {
        plain = QStringLiteral("-");
        ++at;
    } else if (text.at(0) == QLatin1Char('+')) {
        ++at;
    }
    bool digitSeen = false;
    bool inFraction = false;
    while (at < text.size()) {
        const QChar c = text.at(at);
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            plain += c;
            digitSeen = true;
            ++at;
            continue;
        }
        qsizetype length = 0;
        if (!inFraction && text.mid(at).startsWith(m_decimalSeparator)) {
            plain += QLatin1Char('.');
            inFraction = true;
            at += m_decimalSeparator.size();
            continue;
        }
        if (!inFraction && digitSeen && isGroupingMark(text, at, &length)) {
            at += length;
            continue;
        }
        return refuse(NumberInput::notANumberMessage(text));
    }
    if (!digitSeen)
        return refuse(NumberInput::notANumberMessage(text));

    bool ok = false;
    const double number = plain.toDouble(&ok);
    if (!ok || !std::isfinite(number))
        return refuse(NumberInput::tooLargeMessage(text));
    if (value)
        *value = number;
    return true;
}

} // namespace corvanta::format
