#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::templates {

// The template files that come with the program ("invoice1.corvanta" ... in the resources'
// templates folder), loaded into a new company database in a fixed order, each becoming the
// company's default template of its type.
class ShippedTemplates
{
    Q_DECLARE_TR_FUNCTIONS(ShippedTemplates)

public:
    // `shippedFolder` holds the program's template files; pictures go to `templateFilesDirectory`.
    ShippedTemplates(const QString& shippedFolder, const QString& templateFilesDirectory);

    // One shipped file: its name without ".corvanta" and the type key it is the default
    // template for.
    struct File
    {
        QString name;
        QString typeKey;
    };
    // In loading order: "invoice" stands twice, so the later invoice file becomes the default
    // invoice template.
    static const QList<File>& files();

    // Loads every shipped file that is present and returns how many loaded. A file that cannot
    // be read is skipped with a warning: a damaged resource must not keep a new database from
    // starting, and the others still load.
    int install(store::EditingContext& context, store::Record* myCompany);

private:
    QString m_shippedFolder;
    QString m_templateFilesDirectory;
};

} // namespace corvanta::templates
