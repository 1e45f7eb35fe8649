#include "systemcurrency.h"

#include <QHash>
#include <algorithm>
#include <memory>
#include <string>
#include <unicode/ucurr.h>
#include <unicode/uenum.h>
#include <unicode/uloc.h>
#include <unicode/unum.h>

namespace corvanta::model {

namespace {

QString fromUChars(const UChar* text, int32_t length)
{
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), length);
}

// The current currency of a region ("US" -> "USD"), or empty.
QString currencyOfRegion(const char* region)
{
    const QByteArray locale = QByteArray("und_") + region;
    UChar buffer[8];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucurr_forLocale(locale.constData(), buffer, 8, &status);
    if (U_FAILURE(status) || length != 3)
        return {};
    return fromUChars(buffer, length);
}

QByteArray likelyLocaleOfRegion(const QByteArray& region)
{
    const QByteArray bare = "und_" + region;
    char likely[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = uloc_addLikelySubtags(bare.constData(), likely, sizeof likely, &status);
    if (U_FAILURE(status) || length <= 0)
        return "en";
    return QByteArray(likely, length);
}

QString numberSymbol(UNumberFormat* format, UNumberFormatSymbol symbol)
{
    UChar buffer[16];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = unum_getSymbol(format, symbol, buffer, 16, &status);
    if (U_FAILURE(status) || length <= 0)
        return {};
    return fromUChars(buffer, std::min(length, int32_t(16)));
}

struct EnumerationClose
{
    void operator()(UEnumeration* e) const { uenum_close(e); }
};

struct FormatClose
{
    void operator()(UNumberFormat* f) const { unum_close(f); }
};

} // namespace

QList<SystemCurrency> SystemCurrency::all()
{
    // The first region (in ICU's order) that uses each currency.
    QHash<QString, QByteArray> firstRegion;
    for (const char* const* region = uloc_getISOCountries(); *region; ++region) {
        const QString code = currencyOfRegion(*region);
        if (!code.isEmpty() && !firstRegion.contains(code))
            firstRegion.insert(code, QByteArray(*region));
    }

    QList<SystemCurrency> currencies;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UEnumeration, EnumerationClose> codes(
        ucurr_openISOCurrencies(UCURR_COMMON | UCURR_NON_DEPRECATED, &status));
    if (U_FAILURE(status))
        return currencies;
    for (;;) {
        int32_t length = 0;
        const char* raw = uenum_next(codes.get(), &length, &status);
        if (U_FAILURE(status) || !raw)
            break;
        SystemCurrency currency;
        currency.code = QString::fromLatin1(raw, length);

        QByteArray region = QByteArray(raw, std::min(length, int32_t(2)));
        if (currencyOfRegion(region.constData()) != currency.code)
            region = firstRegion.value(currency.code);
        const QByteArray locale = region.isEmpty() ? QByteArray("en") : likelyLocaleOfRegion(region);
        currency.locale = QString::fromLatin1(locale);

        const std::u16string code16 = currency.code.toStdU16String();
        UBool isChoiceFormat = false;
        int32_t symbolLength = 0;
        UErrorCode symbolStatus = U_ZERO_ERROR;
        const UChar* symbol =
            ucurr_getName(reinterpret_cast<const UChar*>(code16.c_str()), locale.constData(),
                          UCURR_SYMBOL_NAME, &isChoiceFormat, &symbolLength, &symbolStatus);
        currency.symbol =
            U_SUCCESS(symbolStatus) && symbol ? fromUChars(symbol, symbolLength) : currency.code;

        UErrorCode formatStatus = U_ZERO_ERROR;
        const std::unique_ptr<UNumberFormat, FormatClose> format(
            unum_open(UNUM_CURRENCY, nullptr, 0, locale.constData(), nullptr, &formatStatus));
        if (U_SUCCESS(formatStatus)) {
            currency.groupingSeparator = numberSymbol(format.get(), UNUM_MONETARY_GROUPING_SEPARATOR_SYMBOL);
            currency.decimalSeparator = numberSymbol(format.get(), UNUM_MONETARY_SEPARATOR_SYMBOL);
        }
        if (currency.decimalSeparator.isEmpty())
            currency.decimalSeparator = QStringLiteral(".");
        if (currency.groupingSeparator.isEmpty())
            currency.groupingSeparator = QStringLiteral(",");
        currencies.append(currency);
    }
    return currencies;
}

} // namespace corvanta::model
