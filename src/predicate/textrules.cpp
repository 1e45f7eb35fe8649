#include "textrules.h"

#include <QCollator>
#include <algorithm>

namespace corvanta::predicate::textrules {

QString fold(const QString& text, Predicate::Options options)
{
    QString result = text;
    if (options.testFlag(Predicate::DiacriticInsensitive)) {
        const QString decomposed = result.normalized(QString::NormalizationForm_D);
        result.clear();
        result.reserve(decomposed.size());
        for (const QChar c : decomposed) {
            const auto category = c.category();
            if (category != QChar::Mark_NonSpacing && category != QChar::Mark_SpacingCombining &&
                category != QChar::Mark_Enclosing)
                result.append(c);
        }
        result = result.normalized(QString::NormalizationForm_C);
    }
    if (options.testFlag(Predicate::CaseInsensitive))
        result = result.toCaseFolded();
    return result;
}

int localizedCaseInsensitiveCompare(const QString& a, const QString& b)
{
    // QCollator is backed by ICU; one collator per thread keeps sorting cheap.
    thread_local QCollator collator = [] {
        QCollator c;
        c.setCaseSensitivity(Qt::CaseInsensitive);
        return c;
    }();
    return collator.compare(a, b);
}

int compareCodePoints(const QString& a, const QString& b)
{
    const QList<uint> x = a.toUcs4();
    const QList<uint> y = b.toUcs4();
    const auto [ix, iy] = std::mismatch(x.begin(), x.end(), y.begin(), y.end());
    if (ix == x.end())
        return iy == y.end() ? 0 : -1;
    if (iy == y.end())
        return 1;
    return *ix < *iy ? -1 : 1;
}

QString likePatternToGlob(const QString& pattern)
{
    QString glob;
    glob.reserve(pattern.size() + 8);
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern.at(i);
        if (c == QLatin1Char('\\') && i + 1 < pattern.size()) {
            const QChar next = pattern.at(++i);
            if (next == QLatin1Char('*') || next == QLatin1Char('?') || next == QLatin1Char('['))
                glob += QLatin1Char('[') + next + QLatin1Char(']');
            else
                glob += next;
        } else if (c == QLatin1Char('[')) {
            glob += QLatin1String("[[]");
        } else {
            glob += c;
        }
    }
    return glob;
}

namespace {

// Works on code points, as SQLite's GLOB does: `?` stands for one character, whatever its size.
bool likeMatchesFrom(const QList<uint>& text, qsizetype ti, const QList<uint>& pattern, qsizetype pi)
{
    while (pi < pattern.size()) {
        uint p = pattern.at(pi);
        if (p == '*') {
            while (pi < pattern.size() && pattern.at(pi) == '*')
                ++pi;
            if (pi == pattern.size())
                return true;
            for (qsizetype start = ti; start <= text.size(); ++start) {
                if (likeMatchesFrom(text, start, pattern, pi))
                    return true;
            }
            return false;
        }
        if (ti >= text.size())
            return false;
        if (p == '?') {
            ++pi;
            ++ti;
            continue;
        }
        if (p == '\\' && pi + 1 < pattern.size())
            p = pattern.at(++pi);
        if (text.at(ti) != p)
            return false;
        ++pi;
        ++ti;
    }
    return ti == text.size();
}

} // namespace

bool likeMatches(const QString& text, const QString& pattern)
{
    return likeMatchesFrom(text.toUcs4(), 0, pattern.toUcs4(), 0);
}

} // namespace corvanta::predicate::textrules
