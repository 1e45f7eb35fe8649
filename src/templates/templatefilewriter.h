#pragma once

#include <QCoreApplication>
#include <QMap>
#include <QString>
#include <QVariantMap>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// Writes template files ("<name>.corvanta"): a ZIP archive of one folder holding the XML
// property list "template_elements" (the template's attributes and, under the same key, one
// dictionary per element) and the picture of every image element. Colours are written as data
// whose bytes are the store's colour text. The file appears whole or not at all.
class TemplateFileWriter
{
    Q_DECLARE_TR_FUNCTIONS(TemplateFileWriter)

public:
    // The dictionary of `templateRecord` as a template file holds it.
    static QVariantMap dictionaryOf(store::Record* templateRecord);

    // Writes `dictionary` with `pictures` (the picture's name in the archive -> the file to
    // copy) to `path`. False with `error` set when it cannot be written.
    static bool write(const QVariantMap& dictionary, const QMap<QString, QString>& pictures,
                      const QString& path, QString* error);

    // The template of `templateRecord` with its pictures from `templateFilesDirectory`.
    static bool write(store::Record* templateRecord, const QString& templateFilesDirectory,
                      const QString& path, QString* error);
};

} // namespace corvanta::templates
