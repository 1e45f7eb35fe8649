#include "parser.h"

#include <QDateTime>
#include <algorithm>
#include <cmath>

namespace corvanta::predicate {

QString ParseError::message() const
{
    if (found.isEmpty())
        return Parser::tr("The condition is malformed at position %1: expected %2 but the text ends.")
            .arg(position)
            .arg(expected);
    return Parser::tr("The condition is malformed at position %1: expected %2 but found \"%3\".")
        .arg(position)
        .arg(expected, found);
}

namespace {

using Op = Predicate::Operator;

struct Failure
{
    int position;
    QString expected;
};

bool isIdentifierStart(QChar c)
{
    return c.isLetter() || c == QLatin1Char('_');
}

bool isIdentifierPart(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

class Reader
{
public:
    Reader(const QString& text, const QVariantList& arguments)
        : m_text(text)
        , m_arguments(arguments)
    {}

    Predicate parseAll()
    {
        Predicate p = parseOr();
        skipSpaces();
        if (m_pos < m_text.size())
            fail(Parser::tr("AND, OR or the end of the condition"));
        if (depthOf(p) > kMaxDepth)
            fail(tooDeep(), 0);
        return p;
    }

    QString foundAt(int position) const
    {
        if (position >= m_text.size())
            return {};
        QString rest = m_text.mid(position, 20);
        const qsizetype space = rest.indexOf(QLatin1Char(' '), 1);
        if (space > 0)
            rest.truncate(space);
        return rest;
    }

private:
    // How deeply a condition may nest: NOT, AND and OR inside each other at most kMaxDepth
    // levels, values (lists, CAST) at most kMaxValueNesting. The reader recurses once per level
    // of the text, and text nested thousands deep, which no person writes, would overflow the
    // stack. The text may nest twice as deep as the tree, as NOT and parentheses: that is how
    // the formatter writes a nested compound, and what it writes must read again.
    static constexpr int kMaxDepth = 100;
    static constexpr int kMaxTextNesting = 2 * kMaxDepth;
    static constexpr int kMaxValueNesting = 100;

    static QString tooDeep() { return Parser::tr("a condition that is nested less deeply"); }

    // One level of nesting, held while the nested part is read.
    class Level
    {
    public:
        Level(const Reader& reader, int& nesting, int limit, int position)
            : m_nesting(nesting)
        {
            if (m_nesting >= limit)
                reader.fail(tooDeep(), position);
            ++m_nesting;
        }
        ~Level() { --m_nesting; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        int& m_nesting;
    };

    static int depthOf(const Predicate& predicate)
    {
        int deepest = 0;
        for (const Predicate& child : predicate.children())
            deepest = std::max(deepest, depthOf(child));
        return predicate.children().empty() ? 0 : deepest + 1;
    }

    [[noreturn]] void fail(const QString& expected, int position = -1) const
    {
        throw Failure{position >= 0 ? position : int(m_pos), expected};
    }

    void skipSpaces()
    {
        while (m_pos < m_text.size() && m_text.at(m_pos).isSpace())
            ++m_pos;
    }

    bool atEnd()
    {
        skipSpaces();
        return m_pos >= m_text.size();
    }

    bool lookingAt(QLatin1String symbol)
    {
        skipSpaces();
        return QStringView(m_text).mid(m_pos).startsWith(symbol);
    }

    bool acceptSymbol(QLatin1String symbol)
    {
        if (!lookingAt(symbol))
            return false;
        m_pos += symbol.size();
        return true;
    }

    // A keyword is matched whole and without regard to case.
    bool lookingAtKeyword(QLatin1String word)
    {
        skipSpaces();
        const QStringView rest = QStringView(m_text).mid(m_pos);
        if (!rest.startsWith(word, Qt::CaseInsensitive))
            return false;
        return rest.size() == word.size() || !isIdentifierPart(rest.at(word.size()));
    }

    bool acceptKeyword(QLatin1String word)
    {
        if (!lookingAtKeyword(word))
            return false;
        m_pos += word.size();
        return true;
    }

    Predicate parseOr()
    {
        std::vector<Predicate> parts{parseAnd()};
        while (acceptKeyword(QLatin1String("OR")) || acceptSymbol(QLatin1String("||")))
            parts.push_back(parseAnd());
        return parts.size() == 1 ? parts.front() : Predicate::orOf(std::move(parts));
    }

    Predicate parseAnd()
    {
        std::vector<Predicate> parts{parseNot()};
        while (acceptKeyword(QLatin1String("AND")) || acceptSymbol(QLatin1String("&&")))
            parts.push_back(parseNot());
        return parts.size() == 1 ? parts.front() : Predicate::andOf(std::move(parts));
    }

    Predicate parseNot()
    {
        skipSpaces();
        const int start = int(m_pos);
        if (acceptKeyword(QLatin1String("NOT"))) {
            const Level level(*this, m_nesting, kMaxTextNesting, start);
            return Predicate::notOf(parseNot());
        }
        if (!lookingAt(QLatin1String("!=")) && acceptSymbol(QLatin1String("!"))) {
            const Level level(*this, m_nesting, kMaxTextNesting, start);
            return Predicate::notOf(parseNot());
        }
        if (acceptSymbol(QLatin1String("("))) {
            const Level level(*this, m_nesting, kMaxTextNesting, start);
            Predicate inner = parseOr();
            if (!acceptSymbol(QLatin1String(")")))
                fail(Parser::tr("\")\""));
            return inner;
        }
        if (acceptKeyword(QLatin1String("TRUEPREDICATE")))
            return Predicate::truePredicate();
        if (acceptKeyword(QLatin1String("FALSEPREDICATE")))
            return Predicate::falsePredicate();
        return parseComparison();
    }

    Predicate parseComparison()
    {
        auto modifier = Predicate::Modifier::Direct;
        if (acceptKeyword(QLatin1String("ANY")) || acceptKeyword(QLatin1String("SOME")))
            modifier = Predicate::Modifier::Any;
        else if (acceptKeyword(QLatin1String("ALL")))
            modifier = Predicate::Modifier::All;
        if (atEnd())
            fail(Parser::tr("a condition"));
        const Expression lhs = parseExpression();
        const Op op = parseOperator();
        const Predicate::Options options = parseOptions();
        const Expression rhs = parseExpression();
        return Predicate::comparison(lhs, op, rhs, options, modifier);
    }

    Op parseOperator()
    {
        skipSpaces();
        static const struct
        {
            const char* symbol;
            Op op;
        } symbols[] = {{"==", Op::Equal},          {"!=", Op::NotEqual},    {"<>", Op::NotEqual},
                       {"<=", Op::LessOrEqual},    {"=<", Op::LessOrEqual}, {">=", Op::GreaterOrEqual},
                       {"=>", Op::GreaterOrEqual}, {"=", Op::Equal},        {"<", Op::Less},
                       {">", Op::Greater}};
        for (const auto& s : symbols) {
            if (acceptSymbol(QLatin1String(s.symbol)))
                return s.op;
        }
        static const struct
        {
            const char* word;
            Op op;
        } words[] = {{"CONTAINS", Op::Contains},
                     {"BEGINSWITH", Op::BeginsWith},
                     {"ENDSWITH", Op::EndsWith},
                     {"LIKE", Op::Like},
                     {"IN", Op::In}};
        for (const auto& w : words) {
            if (acceptKeyword(QLatin1String(w.word)))
                return w.op;
        }
        fail(Parser::tr("an operator (==, !=, <, <=, >, >=, CONTAINS, BEGINSWITH, ENDSWITH, LIKE or IN)"));
    }

    Predicate::Options parseOptions()
    {
        // The options follow the operator directly: CONTAINS[cd].
        if (m_pos >= m_text.size() || m_text.at(m_pos) != QLatin1Char('['))
            return {};
        const int start = int(m_pos);
        ++m_pos;
        Predicate::Options options;
        while (m_pos < m_text.size() && m_text.at(m_pos) != QLatin1Char(']')) {
            const QChar c = m_text.at(m_pos).toLower();
            if (c == QLatin1Char('c'))
                options |= Predicate::CaseInsensitive;
            else if (c == QLatin1Char('d'))
                options |= Predicate::DiacriticInsensitive;
            else if (c != QLatin1Char('n'))
                fail(Parser::tr("the options c, d or cd"));
            ++m_pos;
        }
        if (m_pos >= m_text.size())
            fail(Parser::tr("\"]\" closing the options opened at position %1").arg(start));
        ++m_pos;
        return options;
    }

    Expression parseExpression()
    {
        skipSpaces();
        if (m_pos >= m_text.size())
            fail(Parser::tr("a key path or a value"));
        const QChar c = m_text.at(m_pos);
        if (c == QLatin1Char('"') || c == QLatin1Char('\''))
            return Expression::constant(parseString());
        if (c.isDigit() || ((c == QLatin1Char('-') || c == QLatin1Char('+') || c == QLatin1Char('.')) &&
                            m_pos + 1 < m_text.size() &&
                            (m_text.at(m_pos + 1).isDigit() || m_text.at(m_pos + 1) == QLatin1Char('.'))))
            return Expression::constant(parseNumber());
        if (c == QLatin1Char('{'))
            return Expression::constant(parseList());
        if (c == QLatin1Char('%') && !lookingAt(QLatin1String("%K")))
            return Expression::constant(takeArgument());
        if (acceptKeyword(QLatin1String("NULL")) || acceptKeyword(QLatin1String("NIL")))
            return Expression::constant(QVariant());
        if (acceptKeyword(QLatin1String("YES")) || acceptKeyword(QLatin1String("TRUE")))
            return Expression::constant(true);
        if (acceptKeyword(QLatin1String("NO")) || acceptKeyword(QLatin1String("FALSE")))
            return Expression::constant(false);
        if (lookingAtKeyword(QLatin1String("SELF"))) {
            const qsizetype save = m_pos;
            acceptKeyword(QLatin1String("SELF"));
            if (m_pos >= m_text.size() || m_text.at(m_pos) != QLatin1Char('.'))
                return Expression::self();
            m_pos = save; // SELF.name is the key path "self.name"
        }
        if (lookingAtKeyword(QLatin1String("CAST"))) {
            const Level level(*this, m_valueNesting, kMaxValueNesting, int(m_pos));
            acceptKeyword(QLatin1String("CAST"));
            return Expression::constant(parseCast());
        }
        if (isIdentifierStart(c) || c == QLatin1Char('@') || c == QLatin1Char('%'))
            return Expression::keyPath(parseKeyPath());
        fail(Parser::tr("a key path or a value"));
    }

    QString parseString()
    {
        const QChar quote = m_text.at(m_pos);
        const int start = int(m_pos);
        ++m_pos;
        QString value(QLatin1String("")); // an empty text is a text, not a missing value
        while (m_pos < m_text.size()) {
            QChar c = m_text.at(m_pos++);
            if (c == quote)
                return value;
            if (c == QLatin1Char('\\') && m_pos < m_text.size()) {
                c = m_text.at(m_pos++);
                switch (c.unicode()) {
                case 'n':
                    c = QLatin1Char('\n');
                    break;
                case 't':
                    c = QLatin1Char('\t');
                    break;
                case 'r':
                    c = QLatin1Char('\r');
                    break;
                case '0':
                    c = QChar(0);
                    break;
                default:
                    break; // \" \' \\ and any other character stand for themselves
                }
            }
            value += c;
        }
        fail(Parser::tr("the closing %1 of the text that starts at position %2").arg(quote).arg(start),
             int(m_text.size()));
    }

    QVariant parseNumber()
    {
        const int start = int(m_pos);
        if (m_text.at(m_pos) == QLatin1Char('-') || m_text.at(m_pos) == QLatin1Char('+'))
            ++m_pos;
        bool isInteger = true;
        while (m_pos < m_text.size()) {
            const QChar c = m_text.at(m_pos);
            if (c.isDigit()) {
                ++m_pos;
            } else if (c == QLatin1Char('.')) {
                isInteger = false;
                ++m_pos;
            } else if ((c == QLatin1Char('e') || c == QLatin1Char('E')) && m_pos + 1 < m_text.size()) {
                isInteger = false;
                ++m_pos;
                if (m_text.at(m_pos) == QLatin1Char('-') || m_text.at(m_pos) == QLatin1Char('+'))
                    ++m_pos;
            } else {
                break;
            }
        }
        const QString literal = m_text.mid(start, m_pos - start);
        bool ok = false;
        if (isInteger) {
            const qint64 n = literal.toLongLong(&ok);
            if (ok)
                return n;
        }
        const double d = literal.toDouble(&ok);
        if (!ok || !std::isfinite(d))
            fail(Parser::tr("a number"), start);
        return d;
    }

    QVariant parseList()
    {
        const Level level(*this, m_valueNesting, kMaxValueNesting, int(m_pos));
        ++m_pos; // {
        QVariantList items;
        if (acceptSymbol(QLatin1String("}")))
            return items;
        do {
            const int start = int(m_pos);
            const Expression e = parseExpression();
            if (!e.isConstant())
                fail(Parser::tr("a value in the list"), start);
            items << e.value();
        } while (acceptSymbol(QLatin1String(",")));
        if (!acceptSymbol(QLatin1String("}")))
            fail(Parser::tr("\",\" or \"}\""));
        return items;
    }

    QVariant parseCast()
    {
        if (!acceptSymbol(QLatin1String("(")))
            fail(Parser::tr("\"(\" after CAST"));
        const int valueStart = int(m_pos);
        const Expression value = parseExpression();
        if (!value.isConstant())
            fail(Parser::tr("a value to cast"), valueStart);
        if (!acceptSymbol(QLatin1String(",")))
            fail(Parser::tr("\",\" and the type to cast to"));
        skipSpaces();
        const int typeStart = int(m_pos);
        if (m_pos >= m_text.size() ||
            (m_text.at(m_pos) != QLatin1Char('"') && m_text.at(m_pos) != QLatin1Char('\'')))
            fail(Parser::tr("the quoted name of a type (\"NSDate\", \"NSNumber\" or \"NSString\")"));
        const QString type = parseString();
        if (!acceptSymbol(QLatin1String(")")))
            fail(Parser::tr("\")\" closing CAST"));
        if (type == QLatin1String("NSDate")) {
            bool ok = false;
            const double seconds = value.value().toDouble(&ok);
            if (!ok || !std::isfinite(seconds))
                fail(Parser::tr("a number of seconds to cast to a date"), valueStart);
            static const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
            return reference.addMSecs(qint64(std::llround(seconds * 1000.0)));
        }
        if (type == QLatin1String("NSNumber")) {
            bool ok = false;
            const double number = value.value().toDouble(&ok);
            if (!ok)
                fail(Parser::tr("a value that is a number"), valueStart);
            return number;
        }
        if (type == QLatin1String("NSString"))
            return value.value().toString();
        fail(Parser::tr("the type \"NSDate\", \"NSNumber\" or \"NSString\""), typeStart);
    }

    QString parseKeyPath()
    {
        QStringList segments{parseKeySegment()};
        while (m_pos < m_text.size() && m_text.at(m_pos) == QLatin1Char('.')) {
            ++m_pos;
            segments << parseKeySegment();
        }
        return segments.join(QLatin1Char('.'));
    }

    // One name of a key path: a key, an aggregate such as @sum, or a %K argument.
    QString parseKeySegment()
    {
        const int start = int(m_pos);
        if (QStringView(m_text).mid(m_pos).startsWith(QLatin1String("%K"))) {
            m_pos += 2;
            const QVariant argument = nextArgument(start);
            const QString path = argument.toString();
            if (path.isEmpty() || argument.typeId() != QMetaType::QString)
                fail(Parser::tr("a key path as the argument for %K"), start);
            return path;
        }
        if (m_pos < m_text.size() && m_text.at(m_pos) == QLatin1Char('@'))
            ++m_pos;
        if (m_pos >= m_text.size() || !isIdentifierStart(m_text.at(m_pos)))
            fail(Parser::tr("a key name"));
        while (m_pos < m_text.size() && isIdentifierPart(m_text.at(m_pos)))
            ++m_pos;
        const QString segment = m_text.mid(start, m_pos - start);
        return segment.compare(QLatin1String("self"), Qt::CaseInsensitive) == 0 ? QStringLiteral("self")
                                                                                : segment;
    }

    QVariant nextArgument(int position)
    {
        if (m_argument >= m_arguments.size())
            fail(Parser::tr("an argument for the format at position %1 (only %2 given)")
                     .arg(position)
                     .arg(m_arguments.size()),
                 position);
        return m_arguments.at(m_argument++);
    }

    QVariant takeArgument()
    {
        const int start = int(m_pos);
        static const char* const formats[] = {"%@", "%lld", "%llu", "%ld", "%lu",
                                              "%d", "%i",   "%u",   "%lf", "%f"};
        for (const char* format : formats) {
            if (!acceptSymbol(QLatin1String(format)))
                continue;
            const QVariant argument = nextArgument(start);
            const QLatin1String f(format);
            if (f == QLatin1String("%@"))
                return argument;
            bool ok = false;
            if (f.endsWith(QLatin1Char('f'))) {
                const double d = argument.toDouble(&ok);
                if (!ok)
                    fail(Parser::tr("a number as the argument for %1").arg(f), start);
                return d;
            }
            const qint64 n = argument.toLongLong(&ok);
            if (!ok)
                fail(Parser::tr("an integer as the argument for %1").arg(f), start);
            return n;
        }
        fail(Parser::tr("a format argument (%@, %K, %d, %ld or %f)"));
    }

    const QString& m_text;
    const QVariantList& m_arguments;
    qsizetype m_pos = 0;
    qsizetype m_argument = 0;
    int m_nesting = 0;
    int m_valueNesting = 0;
};

} // namespace

std::optional<Predicate> Parser::parse(const QString& text, const QVariantList& arguments, ParseError* error)
{
    Reader reader(text, arguments);
    try {
        return reader.parseAll();
    } catch (const Failure& failure) {
        if (error) {
            error->position = failure.position;
            error->expected = failure.expected;
            error->found = reader.foundAt(failure.position);
        }
        return std::nullopt;
    }
}

} // namespace corvanta::predicate
