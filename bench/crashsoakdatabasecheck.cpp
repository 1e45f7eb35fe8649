#include "crashsoakdatabasecheck.h"

#include "crashsoakdocumentcheck.h"

#include <QDateTime>
#include <QSqlError>
#include <QSqlQuery>
#include <cmath>

namespace corvanta::bench {

namespace {

// Opens `path` read-only under a connection name of its own, and removes it again.
class ReadOnlyConnection
{
public:
    explicit ReadOnlyConnection(const QString& path)
        : m_name(QStringLiteral("crash-soak-%1").arg(++s_counter))
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=5000"));
        if (!db.open())
            m_error = db.lastError().text();
    }
    ~ReadOnlyConnection()
    {
        QSqlDatabase::database(m_name, false).close();
        QSqlDatabase::removeDatabase(m_name);
    }
    ReadOnlyConnection(const ReadOnlyConnection&) = delete;
    ReadOnlyConnection& operator=(const ReadOnlyConnection&) = delete;

    QSqlDatabase database() const { return QSqlDatabase::database(m_name, false); }
    const QString& error() const { return m_error; }

private:
    static inline int s_counter = 0;
    QString m_name;
    QString m_error;
};

int yearOf(double secondsSince2001)
{
    static const QDateTime reference(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return reference.addSecs(qint64(secondsSince2001)).toLocalTime().date().year();
}

bool same(double a, double b)
{
    return std::fabs(a - b) <= 1e-9 * std::max(1.0, std::fabs(a));
}

} // namespace

DatabaseCheck::DatabaseCheck(const Ledger& ledger)
    : m_ledger(ledger)
{}

QStringList DatabaseCheck::integrity(const QString& path)
{
    ReadOnlyConnection connection(path);
    if (!connection.error().isEmpty())
        return {QStringLiteral("cannot open %1: %2").arg(path, connection.error())};
    QSqlDatabase db = connection.database();
    return integrityOf(db);
}

QStringList DatabaseCheck::integrityOf(QSqlDatabase& db)
{
    QStringList problems;
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("PRAGMA integrity_check")))
        return {QStringLiteral("integrity_check failed: %1").arg(query.lastError().text())};
    QStringList lines;
    while (query.next())
        lines << query.value(0).toString();
    if (lines != QStringList{QStringLiteral("ok")})
        problems << QStringLiteral("integrity_check: %1").arg(lines.mid(0, 5).join(QStringLiteral("; ")));
    if (!query.exec(QStringLiteral("PRAGMA foreign_key_check")))
        return problems << QStringLiteral("foreign_key_check failed: %1").arg(query.lastError().text());
    int broken = 0;
    QString firstBroken;
    while (query.next()) {
        if (broken++ == 0)
            firstBroken =
                QStringLiteral("%1 row %2 -> %3")
                    .arg(query.value(0).toString(), query.value(1).toString(), query.value(2).toString());
    }
    if (broken > 0)
        problems << QStringLiteral("foreign_key_check: %1 links to missing records, first %2")
                        .arg(broken)
                        .arg(firstBroken);
    return problems;
}

QString DatabaseCheck::load(QSqlDatabase& db, QList<StoredDocument>* documents)
{
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral(
            R"(SELECT pk, identifier, type, draft, number, number_formatted, date_creation, cancel_reference,
                      sum_net, sum_tax1, sum_tax2, sum_total, "payments.@sum.amount" FROM Documents ORDER BY pk)")))
        return query.lastError().text();
    QHash<qint64, qsizetype> byPk;
    while (query.next()) {
        StoredDocument d;
        d.pk = query.value(0).toLongLong();
        d.identifier = query.value(1).toString();
        d.type = query.value(2).toInt();
        d.draft = query.value(3).toBool();
        d.hasNumber = !query.value(4).isNull();
        d.number = query.value(4).toLongLong();
        d.numberFormatted = query.value(5).toString();
        d.year = yearOf(query.value(6).toDouble());
        d.cancelReference = query.value(7).toLongLong();
        d.sumNet = query.value(8).toDouble();
        d.sumTax1 = query.value(9).toDouble();
        d.sumTax2 = query.value(10).toDouble();
        d.sumTotal = query.value(11).toDouble();
        d.paymentsSum = query.value(12).toDouble();
        byPk.insert(d.pk, documents->size());
        documents->append(d);
    }
    // Rows, summaries and payments that belong to no document are reported as one document
    // with pk 0, which no real document has.
    const auto owner = [&](const QVariant& pk) -> StoredDocument& {
        const auto it = byPk.constFind(pk.isNull() ? 0 : pk.toLongLong());
        if (it != byPk.constEnd())
            return (*documents)[it.value()];
        byPk.insert(0, documents->size());
        documents->append(StoredDocument{});
        documents->last().identifier = QStringLiteral("no document");
        return documents->last();
    };
    if (!query.exec(QStringLiteral(
            R"(SELECT document, "order", name, tax_name, quantity, unit_price, rate1, rate2, net, tax1_value,
                      tax2_value, total FROM DocumentRows ORDER BY document, "order", pk)")))
        return query.lastError().text();
    while (query.next()) {
        StoredDocument::Row row;
        row.order = query.value(1).toInt();
        row.name = query.value(2).toString();
        row.taxName = query.value(3).toString();
        row.quantity = query.value(4).toDouble();
        row.unitPrice = query.value(5).toDouble();
        row.rate1 = query.value(6).toDouble();
        row.rate2 = query.value(7).toDouble();
        row.net = query.value(8).toDouble();
        row.tax1 = query.value(9).toDouble();
        row.tax2 = query.value(10).toDouble();
        row.total = query.value(11).toDouble();
        owner(query.value(0)).rows << row;
    }
    if (!query.exec(
            QStringLiteral("SELECT document, net, total FROM DocumentSummaries ORDER BY document, pk")))
        return query.lastError().text();
    while (query.next())
        owner(query.value(0)).summaries
            << StoredDocument::Summary{query.value(1).toDouble(), query.value(2).toDouble()};
    if (!query.exec(QStringLiteral("SELECT document, amount FROM Payments ORDER BY document, pk")))
        return query.lastError().text();
    while (query.next())
        owner(query.value(0)).payments << query.value(1).toDouble();
    return {};
}

QStringList DatabaseCheck::run(const QString& path)
{
    ReadOnlyConnection connection(path);
    if (!connection.error().isEmpty())
        return {QStringLiteral("cannot open %1 read-only: %2").arg(path, connection.error())};
    QSqlDatabase db = connection.database();
    m_documentsChecked = 0;
    QStringList failures = integrityOf(db);
    QList<StoredDocument> documents;
    if (const QString error = load(db, &documents); !error.isEmpty())
        return failures << QStringLiteral("cannot read the documents: %1").arg(error);
    failures << checkDocuments(documents) << checkNumbers(documents) << checkPayments(documents)
             << checkAcknowledged(documents);
    return failures;
}

QStringList DatabaseCheck::checkDocuments(const QList<StoredDocument>& documents)
{
    QStringList failures;
    const DocumentCheck check(m_ledger);
    QHash<int, QList<const StoredDocument*>> originals, cancellations;
    QHash<qint64, const StoredDocument*> byPk;
    for (const StoredDocument& document : documents)
        byPk.insert(document.pk, &document);
    for (const StoredDocument& document : documents) {
        if (document.pk == 0) {
            failures << QStringLiteral("%1 rows, %2 summaries and %3 payments belong to no document")
                            .arg(document.rows.size())
                            .arg(document.summaries.size())
                            .arg(document.payments.size());
            continue;
        }
        ++m_documentsChecked;
        int serial = 0;
        bool negated = false;
        for (const QString& problem : check.verify(document, &serial, &negated))
            failures << QStringLiteral("%1: %2").arg(document.label(), problem);
        if (serial > 0)
            (negated ? cancellations : originals)[serial] << &document;
    }
    // One command writes one document, and a cancellation pairs with the invoice it cancels.
    for (auto it = originals.cbegin(); it != originals.cend(); ++it)
        if (it.value().size() > 1)
            failures << QStringLiteral("serial %1 written as %2 documents, first %3")
                            .arg(it.key())
                            .arg(it.value().size())
                            .arg(it.value().first()->label());
    for (auto it = cancellations.cbegin(); it != cancellations.cend(); ++it) {
        const StoredDocument* cancellation = it.value().first();
        if (it.value().size() > 1)
            failures << QStringLiteral("invoice of serial %1 cancelled %2 times")
                            .arg(it.key())
                            .arg(it.value().size());
        const StoredDocument* original = byPk.value(cancellation->cancelReference);
        if (!original || !originals.value(it.key()).contains(original) ||
            original->cancelReference != cancellation->pk)
            failures << QStringLiteral("%1: a cancellation whose invoice does not point back at it")
                            .arg(cancellation->label());
    }
    return failures;
}

QStringList DatabaseCheck::checkNumbers(const QList<StoredDocument>& documents)
{
    QStringList failures;
    QHash<QString, const StoredDocument*> byNumber;
    for (const StoredDocument& document : documents) {
        if (document.pk == 0 || document.draft || !document.hasNumber)
            continue;
        for (const QString& key :
             {QStringLiteral("%1 %2 #%3").arg(document.type).arg(document.year).arg(document.number),
              QStringLiteral("%1 %2").arg(document.type).arg(document.numberFormatted)}) {
            if (const StoredDocument* other = byNumber.value(key)) {
                failures
                    << QStringLiteral("number given twice: %1 and %2").arg(other->label(), document.label());
                break;
            }
            byNumber.insert(key, &document);
        }
    }
    return failures;
}

QStringList DatabaseCheck::checkPayments(const QList<StoredDocument>& documents) const
{
    QStringList failures;
    QHash<qint64, const StoredDocument*> byAmount;
    for (const StoredDocument& document : documents) {
        for (double amount : document.payments) {
            const QString target = m_ledger.paymentTarget(amount);
            if (target != document.identifier)
                failures << QStringLiteral("%1: a payment of %2 that no command made for it")
                                .arg(document.label())
                                .arg(amount);
            const qint64 cents = std::llround(amount * 100);
            if (const StoredDocument* other = byAmount.value(cents))
                failures << QStringLiteral("the payment of %1 stored twice (%2, %3)")
                                .arg(amount)
                                .arg(other->label(), document.label());
            byAmount.insert(cents, &document);
        }
    }
    return failures;
}

QStringList DatabaseCheck::checkAcknowledged(const QList<StoredDocument>& documents) const
{
    QHash<QString, const StoredDocument*> byIdentifier;
    QHash<qint64, const StoredDocument*> byPk;
    for (const StoredDocument& document : documents) {
        byIdentifier.insert(document.identifier, &document);
        byPk.insert(document.pk, &document);
    }
    QStringList failures;
    for (const Ledger::Document& acknowledged : m_ledger.documents()) {
        const StoredDocument* stored = byIdentifier.value(acknowledged.identifier);
        const QString label =
            acknowledged.numberFormatted.isEmpty() || acknowledged.draft
                ? QStringLiteral("draft %1").arg(acknowledged.identifier)
                : QStringLiteral("%1 (%2)").arg(acknowledged.numberFormatted, acknowledged.identifier);
        if (!stored) {
            failures << QStringLiteral("acknowledged %1 is missing").arg(label);
            continue;
        }
        if (stored->type != acknowledged.type || int(stored->rows.size()) != acknowledged.rowCount)
            failures << QStringLiteral("acknowledged %1: type %2 with %3 rows, acknowledged type %4 with %5")
                            .arg(label)
                            .arg(stored->type)
                            .arg(stored->rows.size())
                            .arg(acknowledged.type)
                            .arg(acknowledged.rowCount);
        if (!same(stored->sumNet, acknowledged.sumNet) || !same(stored->sumTax1, acknowledged.sumTax1) ||
            !same(stored->sumTax2, acknowledged.sumTax2) || !same(stored->sumTotal, acknowledged.sumTotal))
            failures << QStringLiteral("acknowledged %1: sums %2/%3/%4/%5, acknowledged %6/%7/%8/%9")
                            .arg(label)
                            .arg(stored->sumNet)
                            .arg(stored->sumTax1)
                            .arg(stored->sumTax2)
                            .arg(stored->sumTotal)
                            .arg(acknowledged.sumNet)
                            .arg(acknowledged.sumTax1)
                            .arg(acknowledged.sumTax2)
                            .arg(acknowledged.sumTotal);
        if (!acknowledged.draft && (stored->draft || stored->numberFormatted != acknowledged.numberFormatted))
            failures << QStringLiteral("acknowledged %1 is stored as %2").arg(label, stored->label());
        for (double amount : acknowledged.payments)
            if (!stored->payments.contains(amount))
                failures
                    << QStringLiteral("acknowledged payment of %1 on %2 is missing").arg(amount).arg(label);
        if (!acknowledged.cancellation.isEmpty()) {
            const StoredDocument* cancellation = byPk.value(stored->cancelReference);
            if (!cancellation || cancellation->identifier != acknowledged.cancellation)
                failures << QStringLiteral("acknowledged cancellation of %1 is not linked to it").arg(label);
        }
    }
    return failures;
}

} // namespace corvanta::bench
