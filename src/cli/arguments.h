#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QList>
#include <QStringList>
#include <optional>

namespace corvanta::cli {

// One option a command accepts: "--name", with or without a value, once or several times.
struct OptionSpec
{
    QString name; // without the leading "--"
    bool takesValue = false;
    bool repeatable = false;
    int valueCount = 1; // how many values follow an option that takes values ("--colors FG BG")
};

// The options and words after a command's name. Options are "--name", "--name VALUE" (a one-letter
// one also "-n VALUE") or
// "--name=VALUE"; a value may begin with "-" (a negative amount); "--" ends the options.
class Arguments
{
    Q_DECLARE_TR_FUNCTIONS(Arguments)

public:
    // The arguments read by `specs`; nothing, with `error` set, for an unknown option, a missing
    // value, a value given to a flag or an option given twice that may be given once.
    static std::optional<Arguments> parse(const QStringList& arguments, const QList<OptionSpec>& specs,
                                          QString* error);

    bool has(const QString& name) const { return m_values.contains(name); }
    // The option's value (the last one given), or `fallback` when it was not given. An option of
    // several values gives them all in values(), in their order.
    QString value(const QString& name, const QString& fallback = {}) const;
    QStringList values(const QString& name) const { return m_values.value(name); }
    const QStringList& words() const { return m_words; }

private:
    QHash<QString, QStringList> m_values;
    QStringList m_words;
};

} // namespace corvanta::cli
