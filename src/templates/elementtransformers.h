#pragma once

#include <QCoreApplication>
#include <QVariant>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// The design editor's and the template list's value transformers. Each maps a stored value to
// what a field or list column shows, with the shape of the editors' transformers
// (`transformedValue(value)`), so that a window can wrap it. The element transformers take an
// element's `type` text.

// Whether the height field is shown: not for texts and horizontal lines, which size themselves
// or have no height.
class PositionHeightValueTransformer
{
public:
    QVariant transformedValue(const QVariant& type) const;
};

// Whether the height field can be edited: always. Its condition (not a text, or not a
// horizontal line) holds for every type; the editor relies on that, so it stays.
class PositionHeightEditableValueTransformer
{
public:
    QVariant transformedValue(const QVariant& type) const;
};

// Whether the width field is shown: for everything but vertical lines.
class PositionWidthValueTransformer
{
public:
    QVariant transformedValue(const QVariant& type) const;
};

// Whether the width field can be edited in its place of the height: only for vertical lines.
class PositionWidthEditableValueTransformer
{
public:
    QVariant transformedValue(const QVariant& type) const;
};

// The caption of a selected element: "Horizontal Line", "Vertical Line", "Image", "Box", or
// "Text" for a text and anything else.
class MultipleNameValueTransformer
{
    Q_DECLARE_TR_FUNCTIONS(MultipleNameValueTransformer)

public:
    QVariant transformedValue(const QVariant& type) const;
};

// A template's `type` as its display name ("Invoice" ... "Item Report"); null for an unknown
// code.
class TemplateTypeValueTransformer
{
public:
    QVariant transformedValue(const QVariant& type) const;
};

// The template list's default mark: true when the company of the template's editing context
// names it as the default of its type (a store::Record* value), false when not, null for a
// value that is no record.
class DefaultTemplateValueTransformer
{
public:
    QVariant transformedValue(const QVariant& templateRecord) const;

    static bool transformedValue(store::Record* templateRecord);
    // Whether any of the company's twelve default templates is this one, whatever its type.
    static bool isDefaultOfAnyType(store::Record* templateRecord);
};

} // namespace corvanta::templates
