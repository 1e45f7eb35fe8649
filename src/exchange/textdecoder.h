#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QString>
#include <optional>

namespace corvanta::exchange {

// Turns the bytes of a file into text in a chosen encoding, through ICU's converters. A byte
// sequence that is not valid in the encoding is an error: nothing is replaced silently.
class TextDecoder
{
    Q_DECLARE_TR_FUNCTIONS(TextDecoder)

public:
    struct Encoding
    {
        QString title; // as the encoding pop-up shows it
        QString name;  // ICU's name, which ucnv_open takes
    };

    static inline const QString kDefaultEncoding = QStringLiteral("UTF-8");

    // The encodings offered on the import windows' pop-up, UTF-8 first.
    static QList<Encoding> encodings();

    // The text of `bytes` read in `encoding` (an ICU name or alias). A leading byte order mark
    // is not part of the text. Nothing, with `error` set to a sentence for the user, when the
    // encoding is unknown or the bytes are not valid in it.
    static std::optional<QString> decode(const QByteArray& bytes, const QString& encoding, QString* error);
};

} // namespace corvanta::exchange
