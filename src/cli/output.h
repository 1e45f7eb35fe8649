#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

namespace corvanta::cli {

// Where a command writes its result: readable text, or with --json exactly one JSON value.
// Messages and errors go to standard error, never between the results.
class Output
{
public:
    Output(QTextStream& out, QTextStream& err, bool json)
        : m_out(out)
        , m_err(err)
        , m_json(json)
    {}

    bool isJson() const { return m_json; }
    QTextStream& text() { return m_out; }
    QTextStream& error() { return m_err; }
    // The command's JSON value, indented, on its own.
    void json(const QJsonObject& value);
    void json(const QJsonArray& value);

private:
    QTextStream& m_out;
    QTextStream& m_err;
    bool m_json;
};

} // namespace corvanta::cli
