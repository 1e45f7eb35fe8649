#pragma once

#include <QList>
#include <QString>

namespace corvanta::bench {

// A document as it is stored, with its rows, tax summary and payments, read with plain SQL.
struct StoredDocument
{
    struct Row
    {
        int order = 0;
        QString name;
        QString taxName;
        double quantity = 0;
        double unitPrice = 0;
        double rate1 = 0;
        double rate2 = 0;
        double net = 0;
        double tax1 = 0;
        double tax2 = 0;
        double total = 0;
    };
    struct Summary
    {
        double net = 0;
        double total = 0;
    };

    qint64 pk = 0;
    QString identifier;
    int type = 0;
    bool draft = false;
    bool hasNumber = false;
    qint64 number = 0;
    QString numberFormatted;
    int year = 0;
    qint64 cancelReference = 0; // pk, 0 for none
    double sumNet = 0;
    double sumTax1 = 0;
    double sumTax2 = 0;
    double sumTotal = 0;
    double paymentsSum = 0; // the stored aggregate column
    QList<Row> rows;
    QList<Summary> summaries;
    QList<double> payments;

    // "INVOICE/2026-0003" or "draft 12 (identifier)" for messages.
    QString label() const;
};

} // namespace corvanta::bench
