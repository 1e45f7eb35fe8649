#include "numberinput.h"

#include <cmath>

namespace corvanta::format {

std::optional<double> NumberInput::finiteNumber(const QVariant& value, QString* error)
{
    if (value.isNull())
        return std::nullopt;
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok) {
        if (error)
            *error = notANumberMessage(value.toString());
        return std::nullopt;
    }
    if (!std::isfinite(number)) {
        if (error)
            *error = notFiniteMessage();
        return std::nullopt;
    }
    return number;
}

QString NumberInput::alertTitle()
{
    return tr("Invalid number");
}

QString NumberInput::notFiniteMessage()
{
    return tr("Only finite numbers can be entered: NaN and infinity are not amounts.");
}

QString NumberInput::notANumberMessage(const QString& text)
{
    return tr("\u201c%1\u201d is not a valid number.").arg(text);
}

QString NumberInput::tooLargeMessage(const QString& text)
{
    return tr("\u201c%1\u201d is too large to be used as a number.").arg(text);
}

} // namespace corvanta::format
