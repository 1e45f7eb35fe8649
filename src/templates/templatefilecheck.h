#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QVariantMap>

namespace corvanta::store {
class EntityDescription;
}

namespace corvanta::templates {

// The checks a template file passes before anything of it is used. Each gives the reason a
// part is refused, in a sentence, or an empty text when the part is acceptable.
class TemplateFileCheck
{
    Q_DECLARE_TR_FUNCTIONS(TemplateFileCheck)

public:
    // An entry of at least this size unpacks to at most kMaxCompressionRatio times its packed
    // size: ordinary pictures and property lists stay far below, archive bombs far above.
    static constexpr qint64 kRatioCheckedFrom = 1024 * 1024;
    static constexpr qint64 kMaxCompressionRatio = 200;

    static QString compression(const QString& entry, qint64 size, qint64 compressedSize);

    // An XML property list may carry the standard property-list document type, nothing else: no
    // other document type, no internal subset and so no entity declarations. Binary lists pass.
    static QString documentType(const QByteArray& propertyList);

    // Every attribute of `entity` that `values` holds must have the attribute's type (numbers
    // for numbers, text for text, a colour's text or data for colours); keys the entity does
    // not know are not judged.
    static QString valueTypes(const store::EntityDescription& entity, const QVariantMap& values);
    // A template's `type` must be a known template type.
    static QString templateValues(const QVariantMap& values);
    // An element's `type` must be a known kind and its `page_side` one of the three.
    static QString elementValues(const QVariantMap& values);

    // More pixels than this are refused undecoded: far more than any logo needs.
    static constexpr qint64 kMaxPicturePixels = 40'000'000;

    // A picture must be of a raster format Qt reads, of a sensible size, and decode. Vector
    // pictures are refused: they may refer to other files.
    static QString picture(const QString& name, const QByteArray& data);
};

} // namespace corvanta::templates
