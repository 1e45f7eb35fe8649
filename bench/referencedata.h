#pragma once

#include "store/storeerror.h"

#include <QList>
#include <QString>
#include <array>

namespace corvanta::bench {

class BatchInserter;
class Random;

// The reference records of a company that every other record points at: settings, the
// company itself, units, taxes, currencies, payment types, the bank, due days, and the
// sidebar's kind tags and user tags. Inserted first, in one save; afterwards only their keys
// are kept.
class ReferenceData
{
public:
    struct Tax
    {
        qint64 pk = 0;
        QString name;
        double rate1 = 0.0;
        double rate2 = 0.0;
    };
    struct Currency
    {
        qint64 pk = 0;
        QString code;
        double exchangeRate = 1.0; // against the company's own currency
    };
    struct PaymentType
    {
        qint64 pk = 0;
        QString name;
    };

    static constexpr int kClientKinds = 3;   // company, supplier, individual
    static constexpr int kItemKinds = 2;     // service, product
    static constexpr int kDocumentKinds = 8; // invoice ... purchase order
    static constexpr int kToDoKinds = 2;     // one-off, repeating

    // Inserts the reference records with `userTags` user tags and saves them.
    bool insert(BatchInserter& inserter, Random& random, int userTags, store::StoreError* error);

    qint64 myCompany() const { return m_myCompany; }
    const QString& myName() const { return m_myName; }
    const QString& myAddress() const { return m_myAddress; }
    const QString& myEmail() const { return m_myEmail; }
    const QString& myPhone() const { return m_myPhone; }
    const QString& myTaxNumber() const { return m_myTaxNumber; }
    qint64 unitEach() const { return m_unitEach; }
    qint64 unitHours() const { return m_unitHours; }
    const QList<Tax>& taxes() const { return m_taxes; }
    // The company's own currency comes first.
    const QList<Currency>& currencies() const { return m_currencies; }
    const QList<PaymentType>& paymentTypes() const { return m_paymentTypes; }
    qint64 bank() const { return m_bank; }
    const QString& bankLine1() const { return m_bankLine1; }
    const QList<qint64>& dueDays() const { return m_dueDays; }
    qint64 clientKind(int type) const { return m_clientKinds.at(std::size_t(type)); }
    qint64 itemKind(int type) const { return m_itemKinds.at(std::size_t(type)); }
    qint64 documentKind(int type) const { return m_documentKinds.at(std::size_t(type)); }
    qint64 toDoKind(int subtype) const { return m_toDoKinds.at(std::size_t(subtype)); }
    const QList<qint64>& userTags() const { return m_userTags; }

private:
    qint64 m_myCompany = 0;
    QString m_myName;
    QString m_myAddress;
    QString m_myEmail;
    QString m_myPhone;
    QString m_myTaxNumber;
    qint64 m_unitEach = 0;
    qint64 m_unitHours = 0;
    QList<Tax> m_taxes;
    QList<Currency> m_currencies;
    QList<PaymentType> m_paymentTypes;
    qint64 m_bank = 0;
    QString m_bankLine1;
    QList<qint64> m_dueDays;
    std::array<qint64, kClientKinds> m_clientKinds{};
    std::array<qint64, kItemKinds> m_itemKinds{};
    std::array<qint64, kDocumentKinds> m_documentKinds{};
    std::array<qint64, kToDoKinds> m_toDoKinds{};
    QList<qint64> m_userTags;
};

} // namespace corvanta::bench
