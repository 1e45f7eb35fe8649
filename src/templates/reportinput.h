#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <QVariantMap>

namespace corvanta::store {
class Record;
}

namespace corvanta::templates {

// What a report is drawn from: its period, the currency of every amount and its rows.
struct ReportInput
{
    QDate dateStart;
    QDate dateEnd;
    store::Record* currency = nullptr; // a `Currencies` record

    struct Row
    {
        // A `Documents` record (document report; a grouped report's header and footer), a
        // `DocumentRows` record (a grouped report's detail), a `Clients` or an `Items` record.
        store::Record* record = nullptr;
        // The grouped report's entry: "group_header", "group_detail" or "group_footer".
        QString groupType;
        // Client and item reports: the sums over the row's documents of the period,
        // "documents_sum_net", "documents_sum_tax1", "documents_sum_tax2", "documents_sum_total".
        QVariantMap sums;
    };
    QList<Row> rows;
};

} // namespace corvanta::templates
