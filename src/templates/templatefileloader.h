#pragma once

#include <QCoreApplication>
#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::templates {

// Reads a template file ("<name>.corvanta": a ZIP archive holding the property list
// "template_elements" and the pictures of its image elements) into a new `Templates` record
// with its `TemplateElements`. Each gets a fresh `identifier`; colours are read from the same
// RGBA text the store keeps them in; pictures are copied into the template files folder under
// names formed with the new element's identifier. The archive is read defensively (see
// TemplateFileCheck: packing, document type, value kinds, pictures) and a file that fails leaves
// nothing behind, neither records nor pictures; nothing is unpacked anywhere else.
class TemplateFileLoader
{
    Q_DECLARE_TR_FUNCTIONS(TemplateFileLoader)

public:
    static constexpr int kMaxEntries = 512;
    static constexpr qint64 kMaxEntrySize = 32 * 1024 * 1024;
    static constexpr qint64 kMaxTotalSize = 128 * 1024 * 1024;

    TemplateFileLoader(store::EditingContext& context, const QString& templateFilesDirectory);

    // The new template, or null with `error` set.
    store::Record* load(const QString& file, QString* error);

private:
    store::EditingContext& m_context;
    QString m_templateFilesDirectory;
};

} // namespace corvanta::templates
