// corvanta-templatepack: builds a template file ("<name>.corvanta") from its JSON source.
//
//   corvanta-templatepack SOURCE.json OUTPUT.corvanta

#include "templates/templatefilewriter.h"
#include "templatesource.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("Usage: corvanta-templatepack SOURCE.json OUTPUT.corvanta\n", stderr);
        return 2;
    }
    const QString sourcePath = arguments.at(1);
    const auto refuse = [&](const QString& why) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(sourcePath), qPrintable(why));
        return 1;
    };

    QFile sourceFile(sourcePath);
    if (!sourceFile.open(QIODevice::ReadOnly))
        return refuse(sourceFile.errorString());
    corvanta::templatepack::TemplateSource source;
    QString error;
    if (!source.read(sourceFile.readAll(), QFileInfo(sourcePath).absolutePath(), &error))
        return refuse(error);
    if (!corvanta::templates::TemplateFileWriter::write(source.dictionary(), source.pictures(),
                                                        arguments.at(2), &error))
        return refuse(error);
    return 0;
}
