#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::templates {

// The operations of the template library on the templates of one company database: new,
// rename, duplicate, delete with its guards, the default per type, and export and import of
// template files. Each operation saves the context at once; a save that fails is rolled back
// (every unsaved change of the context is forgotten) and reported through the prompter, as
// every refusal is.
//
// Export writes the file straight from the template files folder with the file writer, and
// import reads it with the file loader: no working folder is unpacked anywhere.
class TemplateLibrary
{
    Q_DECLARE_TR_FUNCTIONS(TemplateLibrary)

public:
    // The tag of duplicateRow for a copy of the same type.
    static constexpr int kPlainCopy = -1;

    TemplateLibrary(store::EditingContext& context, support::Prompter& prompter,
                    const QString& templateFilesDirectory);

    // Every template, by type and then by name.
    QList<store::Record*> templates();

    // A new template " New " of `type` with the type's section heights; null for an unknown
    // type or a failed save.
    store::Record* addRow(int type);
    bool rename(store::Record* templ, const QString& name);
    // A copy "<name> Copy" with copies of its elements and pictures, of the same type for
    // kPlainCopy or of the document type `tag`. A report template is refused as a document
    // type; a tag that is neither kPlainCopy nor a document type gives null unasked.
    store::Record* duplicateRow(store::Record* templ, int tag);
    // Deletes a template that no document uses, that is not the last of its type and not a
    // default, with its elements and their pictures.
    bool deleteRow(store::Record* templ);

    // Makes `templ` the company's default template of its type.
    bool defaultChanged(store::Record* templ);
    bool isDefault(store::Record* templ) const;

    // Writes "<folder>/<name>.corvanta" and reports it; the path written, or empty when it cannot
    // be written (a picture missing, the folder not writable), which is reported too.
    // The message names the desktop when `folder` is the desktop, and the folder otherwise: on
    // this system the user chooses where the file goes.
    QString exportTemplate(store::Record* templ, const QString& folder);
    // Imports each file as a new template "Import <name>", stopping at the first that cannot
    // be read; the ones before it stay. The templates imported.
    QList<store::Record*> importFiles(const QStringList& files);

    // The file name an exported template gets: its name with path separators replaced, and
    // the extension.
    static QString exportFileName(const QString& templateName);

private:
    bool save();
    void removePictures(const QStringList& names) const;
    QStringList pictureNames(store::Record* templ) const;
    QString deleteRefusal(store::Record* templ);

    store::EditingContext& m_context;
    support::Prompter& m_prompter;
    QString m_templateFilesDirectory;
};

} // namespace corvanta::templates
