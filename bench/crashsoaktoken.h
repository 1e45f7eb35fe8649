#pragma once

#include <QList>
#include <QString>
#include <optional>

namespace corvanta::bench {

// What one soak document is made of, written into the name of each of its rows: the serial of
// the command that wrote it, the document type, the row's place among all rows, and its
// quantity, price and tax. Any document found in the database can so be checked against what
// was asked for, whether or not its writer lived to acknowledge it.
class DocumentToken
{
public:
    struct Row
    {
        QString quantity; // as typed on the command line, e.g. "3" or "2.5"
        QString price;    // e.g. "12.50"
        int tax = 0;      // index into taxes()
    };
    struct Tax
    {
        QString name;
        double rate1 = 0;
        double rate2 = 0;
    };
    // One row name taken apart.
    struct RowName
    {
        int serial = 0;
        int type = 0;
        int index = 0; // 1-based
        int count = 0;
        double quantity = 0;
        double price = 0;
        int tax = 0;
    };
    // The figures a row must have when its quantity is `quantity` (negated in a cancellation).
    struct RowFigures
    {
        double net = 0;
        double tax1 = 0;
        double tax2 = 0;
        double total = 0;
    };

    DocumentToken(int serial, int type, QList<Row> rows);

    // The taxes every new company database has, which rows are given by name.
    static const QList<Tax>& taxes();

    int serial() const { return m_serial; }
    int type() const { return m_type; }
    const QList<Row>& rows() const { return m_rows; }
    QString rowName(int index) const;
    // The --row arguments of `documents new`.
    QStringList rowArguments() const;

    static std::optional<RowName> parse(const QString& rowName);
    static RowFigures figures(double quantity, double price, int tax);

private:
    int m_serial;
    int m_type;
    QList<Row> m_rows;
};

} // namespace corvanta::bench
