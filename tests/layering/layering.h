#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace corvanta::layering {

// The table of src/layers.txt: which library may use which, and which headers of outside
// libraries only some libraries may include.
struct LayerTable
{
    struct Outside
    {
        QStringList patterns;  // an include matches when its name starts with one of them
        QSet<QString> allowed; // the libraries that may include it
    };

    QHash<QString, QSet<QString>> uses;
    QList<Outside> outside;
    QStringList problems; // lines that could not be read

    static LayerTable parse(const QString& text);
    // The rule an outside header falls under; null when any library may include it.
    const Outside* outsideRule(const QString& include) const;
};

// Checks the includes of the files under `sourceRoot` (the src/ folder, one library per folder)
// and, when given, `testRoot` (tests/, one folder per library) against the table. Each
// violation is one line: "store/store.h:7: includes "model/x.h": store may not use model".
class IncludeChecker
{
public:
    IncludeChecker(const LayerTable& table, const QString& sourceRoot, const QString& testRoot = {});

    // The library folders under the source root.
    QStringList libraries() const;
    // Every violation in src/<library> (and tests/<library> when a test root was given).
    QStringList violations(const QString& library) const;
    // The outside headers named in the table that `header` reaches through the project's own
    // includes, with the chain that leads there.
    QStringList outsideHeadersReachedFrom(const QString& header) const;

private:
    QStringList checkFile(const QString& library, const QString& root, const QString& file,
                          bool isTest) const;
    // The library folder an include names, or empty when it names none ("x.h", <QString>).
    QString libraryOf(const QString& include) const;

    const LayerTable& m_table;
    QString m_sourceRoot;
    QString m_testRoot;
};

} // namespace corvanta::layering
