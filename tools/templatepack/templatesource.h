#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariantMap>

namespace corvanta::templatepack {

// A template written as JSON, the readable source of a shipped template, turned into the
// dictionary of a template file. The JSON holds the template's attributes ("type" as a key such
// as "invoice" or as its number), optional named "styles" and the "elements" in drawing order.
// An element takes, from weakest to strongest: the defaults of a new element, the template's
// style "default", the styles it names in "style" (a name or a list), and its own keys. Colours
// are written "#rrggbb" or "#rrggbbaa"; "font_name" follows from family and member when left
// out ("Helvetica" with "Bold" draws with "Helvetica-Bold"). Unknown keys, values of the wrong
// kind, a section the type has not and an element outside its section are refused, so that a
// slip in a source stops the build instead of shipping a broken template.
class TemplateSource
{
public:
    // Reads `json`; `folder` is where the pictures of image elements are found. False with
    // `error` set when the source is refused.
    bool read(const QByteArray& json, const QString& folder, QString* error);

    // The template file's dictionary, elements under "template_elements".
    const QVariantMap& dictionary() const { return m_dictionary; }
    // The picture files to pack: their name in the archive -> the file.
    const QMap<QString, QString>& pictures() const { return m_pictures; }

private:
    QVariantMap m_dictionary;
    QMap<QString, QString> m_pictures;
};

} // namespace corvanta::templatepack
