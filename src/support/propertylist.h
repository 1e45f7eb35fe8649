#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QVariant>

namespace corvanta::support {

// Property lists (XML or binary) read into QVariant trees and written as XML, through the C API
// of libplist. Dictionaries become QVariantMap, arrays QVariantList, integers qint64, reals
// double, booleans bool, strings QString, data QByteArray and dates QDateTime (UTC).
class PropertyList
{
    Q_DECLARE_TR_FUNCTIONS(PropertyList)

public:
    // Files larger than this are refused unread: no property list of this program comes near it.
    static constexpr qint64 kMaxSize = 16 * 1024 * 1024;
    // Deeper nesting than this is refused.
    static constexpr int kMaxDepth = 64;

    // The tree held by `data`, or an invalid QVariant with `error` saying why in words a user
    // can act on ("the file is empty", "it is not well-formed XML (line 3, column 7: ...)").
    static QVariant parse(const QByteArray& data, QString* error);
    // The XML form of `value`. Values of other types are written as their text.
    static QByteArray toXml(const QVariant& value);
    // Whether toXml writes `text` as it is: XML cannot hold most control characters, which are
    // left out.
    static bool isXmlText(const QString& text);
};

} // namespace corvanta::support
