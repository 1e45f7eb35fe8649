#include "layering.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace corvanta::layering {

namespace {

QStringList words(const QString& text)
{
    return text.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
}

QString readAll(const QString& file)
{
    QFile in(file);
    return in.open(QIODevice::ReadOnly) ? QString::fromUtf8(in.readAll()) : QString();
}

struct Include
{
    int line = 0;
    QString name;
    bool quoted = false;
};

QList<Include> includesOf(const QString& file)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*#\\s*include\\s*([\"<])([^\">]+)[\">]"));
    QList<Include> found;
    const QStringList lines = readAll(file).split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QRegularExpressionMatch m = pattern.match(lines.at(i));
        if (m.hasMatch())
            found.append({int(i) + 1, m.captured(2), m.captured(1) == QLatin1String("\"")});
    }
    return found;
}

QStringList sourceFiles(const QString& folder)
{
    QStringList files;
    QDirIterator it(folder, {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    files.sort();
    return files;
}

} // namespace

LayerTable LayerTable::parse(const QString& text)
{
    LayerTable table;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const qsizetype colon = line.indexOf(QLatin1Char(':'));
        if (colon < 0) {
            table.problems << line;
            continue;
        }
        const QStringList left = words(line.left(colon));
        const QStringList right = words(line.mid(colon + 1));
        if (left.value(0) == QLatin1String("outside") && left.size() > 1) {
            table.outside.append({left.mid(1), QSet<QString>(right.begin(), right.end())});
        } else if (left.size() == 1) {
            table.uses.insert(left.first(), QSet<QString>(right.begin(), right.end()));
        } else {
            table.problems << line;
        }
    }
    return table;
}

const LayerTable::Outside* LayerTable::outsideRule(const QString& include) const
{
    for (const Outside& rule : outside) {
        for (const QString& pattern : rule.patterns) {
            if (include.startsWith(pattern))
                return &rule;
        }
    }
    return nullptr;
}

IncludeChecker::IncludeChecker(const LayerTable& table, const QString& sourceRoot, const QString& testRoot)
    : m_table(table)
    , m_sourceRoot(QDir(sourceRoot).absolutePath())
    , m_testRoot(testRoot.isEmpty() ? QString() : QDir(testRoot).absolutePath())
{}

QStringList IncludeChecker::libraries() const
{
    QStringList names = QDir(m_sourceRoot).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    names.removeIf([&](const QString& name) {
        return !QFileInfo::exists(m_sourceRoot + u'/' + name + QLatin1String("/CMakeLists.txt"));
    });
    return names;
}

QString IncludeChecker::libraryOf(const QString& include) const
{
    const qsizetype slash = include.indexOf(QLatin1Char('/'));
    if (slash <= 0)
        return {};
    const QString first = include.left(slash);
    return QFileInfo(QDir(m_sourceRoot).filePath(first)).isDir() ? first : QString();
}

QStringList IncludeChecker::violations(const QString& library) const
{
    QStringList found;
    if (!m_table.uses.contains(library))
        found << QStringLiteral("%1: the library has no line in the layering table").arg(library);
    for (const QString& file : sourceFiles(QDir(m_sourceRoot).filePath(library)))
        found << checkFile(library, m_sourceRoot, file, false);
    if (!m_testRoot.isEmpty()) {
        for (const QString& file : sourceFiles(QDir(m_testRoot).filePath(library)))
            found << checkFile(library, m_testRoot, file, true);
    }
    return found;
}

QStringList IncludeChecker::checkFile(const QString& library, const QString& root, const QString& file,
                                      bool isTest) const
{
    QStringList found;
    const QString where = QDir(QFileInfo(root).absolutePath()).relativeFilePath(file);
    const QSet<QString> allowed = m_table.uses.value(library);
    for (const Include& include : includesOf(file)) {
        const auto refuse = [&](const QString& why) {
            found << QStringLiteral("%1:%2: includes \"%3\": %4")
                         .arg(where)
                         .arg(include.line)
                         .arg(include.name, why);
        };
        if (include.quoted) {
            QString used = libraryOf(include.name);
            if (isTest && include.name.startsWith(QLatin1String("../"))) {
                // Another folder's test support counts as a use of that folder's library.
                used = include.name.section(QLatin1Char('/'), 1, 1);
            } else if (isTest && used.isEmpty() && !include.name.endsWith(QLatin1String(".moc")) &&
                       !QFileInfo::exists(QFileInfo(file).dir().filePath(include.name))) {
                // Found through an include path: another folder's support, without saying whose.
                refuse(
                    QStringLiteral("not in this folder: include it as \"../<folder>/%1\"").arg(include.name));
                continue;
            }
            if (!used.isEmpty() && used != library && !allowed.contains(used))
                refuse(QStringLiteral("%1 may not use %2").arg(library, used));
            continue;
        }
        if (isTest)
            continue; // tests may read a database through Qt SQL to check what was stored
        const LayerTable::Outside* rule = m_table.outsideRule(include.name);
        if (rule && !rule->allowed.contains(library)) {
            const QStringList owners(rule->allowed.begin(), rule->allowed.end());
            refuse(QStringLiteral("only %1 may include it")
                       .arg(owners.isEmpty() ? QStringLiteral("the windows")
                                             : owners.join(QLatin1String(", "))));
        }
    }
    return found;
}

QStringList IncludeChecker::outsideHeadersReachedFrom(const QString& header) const
{
    QStringList reached;
    QSet<QString> seen;
    // Depth first through the project's own headers, remembering the chain for the report.
    std::function<void(const QString&, const QStringList&)> visit = [&](const QString& file,
                                                                        const QStringList& chain) {
        if (seen.contains(file))
            return;
        seen.insert(file);
        for (const Include& include : includesOf(QDir(m_sourceRoot).filePath(file))) {
            if (include.quoted) {
                const QString next =
                    libraryOf(include.name).isEmpty()
                        ? QDir::cleanPath(QFileInfo(file).path() + QLatin1Char('/') + include.name)
                        : include.name;
                if (QFileInfo::exists(QDir(m_sourceRoot).filePath(next)))
                    visit(next, chain + QStringList{next});
                continue;
            }
            if (m_table.outsideRule(include.name))
                reached << (chain + QStringList{include.name}).join(QLatin1String(" -> "));
        }
    };
    visit(header, {header});
    return reached;
}

} // namespace corvanta::layering
