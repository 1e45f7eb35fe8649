#pragma once

#include <QString>
#include <QVariant>

namespace corvanta::format {

// A decimal-style number formatter with any separators: digits grouped by three with the
// grouping separator (or not at all), the decimal separator before the fraction, and a
// minimum and maximum count of fraction digits (rounding as RoundedDecimal describes).
// Negative numbers start with "-". It also reads numbers typed in the same style.
class DecimalFormatter
{
public:
    // At most this many fraction digits are ever shown or padded.
    static constexpr int kFractionDigitLimit = 50;

    DecimalFormatter();
    virtual ~DecimalFormatter() = default;

    // Off: the digits are not grouped. An empty grouping separator groups with nothing.
    void setUsesGroupingSeparator(bool on) { m_usesGrouping = on; }
    bool usesGroupingSeparator() const { return m_usesGrouping; }
    void setGroupingSeparator(const QString& separator) { m_groupingSeparator = separator; }
    const QString& groupingSeparator() const { return m_groupingSeparator; }
    // An empty decimal separator falls back to ".", so that the fraction stays readable.
    void setDecimalSeparator(const QString& separator);
    const QString& decimalSeparator() const { return m_decimalSeparator; }
    // Digit counts are kept within 0 ... kFractionDigitLimit.
    void setMinimumFractionDigits(int digits);
    int minimumFractionDigits() const { return m_minimumFractionDigits; }
    void setMaximumFractionDigits(int digits);
    int maximumFractionDigits() const { return m_maximumFractionDigits; }

    // The number in this style; an empty text for NaN or infinity, which are never shown.
    QString stringFromNumber(double number) const;
    // The text of a number value; an empty text for null, anything that is not a number, and
    // numbers that are not finite.
    QString stringForObjectValue(const QVariant& value) const;

    // Reads typed text: an optional sign, digits with grouping separators among them, and
    // optionally the decimal separator and fraction digits; blanks around it are ignored.
    // Empty text gives a null value (an emptied field). Anything else, and numbers too large
    // for a double, are refused: false with a message for the user in `errorDescription`.
    // The value is not rounded to the shown digits.
    bool getObjectValue(QVariant* value, const QString& string, QString* errorDescription = nullptr) const;

private:
    QString groupedDigits(const QString& digits) const;
    bool isGroupingMark(const QString& text, qsizetype at, qsizetype* length) const;

    bool m_usesGrouping = false;
    QString m_groupingSeparator;
    QString m_decimalSeparator = QStringLiteral(".");
    int m_minimumFractionDigits = 0;
    int m_maximumFractionDigits = 3;
};

} // namespace corvanta::format
