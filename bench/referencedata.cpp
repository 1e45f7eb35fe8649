#include "referencedata.h"

#include "batchinserter.h"
#include "random.h"

#include <QColor>

namespace corvanta::bench {

namespace {

using store::Record;

Record* insertCategory(BatchInserter& inserter, const QString& name, int type, int subtype)
{
    Record* category = inserter.insert(QStringLiteral("Categories"));
    category->setValue(QStringLiteral("name"), name);
    category->setValue(QStringLiteral("type"), type);
    category->setValue(QStringLiteral("subtype"), subtype);
    category->setValue(QStringLiteral("indexpath"), QStringLiteral("%1.%2").arg(type).arg(subtype));
    return category;
}

Record* insertCurrency(BatchInserter& inserter, const QString& code, const QString& symbol,
                       const QString& sample)
{
    Record* currency = inserter.insert(QStringLiteral("Currencies"));
    currency->setValue(QStringLiteral("code"), code);
    currency->setValue(QStringLiteral("symbol"), symbol);
    currency->setValue(QStringLiteral("grouping_separator"), QStringLiteral(","));
    currency->setValue(QStringLiteral("decimal_separator"), QStringLiteral("."));
    currency->setValue(QStringLiteral("digits"), 2);
    currency->setValue(QStringLiteral("show_fixed_digits"), true);
    currency->setValue(QStringLiteral("selectable"), true);
    currency->setValue(QStringLiteral("sample"), sample);
    return currency;
}

} // namespace

bool ReferenceData::insert(BatchInserter& inserter, Random& random, int userTags, store::StoreError* error)
{
    Record* version = inserter.insert(QStringLiteral("Settings"));
    version->setValue(QStringLiteral("key"), QStringLiteral("version"));
    version->setValue(QStringLiteral("value"), QStringLiteral("1.0"));
    version->setValue(QStringLiteral("id"), 1);

    Record* each = inserter.insert(QStringLiteral("Units"));
    each->setValue(QStringLiteral("name"), QStringLiteral("Each"));
    Record* hours = inserter.insert(QStringLiteral("Units"));
    hours->setValue(QStringLiteral("name"), QStringLiteral("Hours"));
    m_unitEach = each->pk();
    m_unitHours = hours->pk();

    const Tax taxes[] = {{0, QStringLiteral("10%"), 10.0, 0.0}, {0, QStringLiteral("GST / PST"), 5.0, 7.0}};
    QList<Record*> taxRecords;
    m_taxes.clear();
    for (Tax tax : taxes) {
        Record* r = inserter.insert(QStringLiteral("Taxes"));
        r->setValue(QStringLiteral("name"), tax.name);
        r->setValue(QStringLiteral("rate1"), tax.rate1);
        r->setValue(QStringLiteral("rate2"), tax.rate2);
        r->setValue(QStringLiteral("cumulative"), false);
        tax.pk = r->pk();
        m_taxes << tax;
        taxRecords << r;
    }

    Record* usd =
        insertCurrency(inserter, QStringLiteral("USD"), QStringLiteral("$"), QStringLiteral("$1,234.56"));
    Record* eur = insertCurrency(inserter, QStringLiteral("EUR"), QString(QChar(0x20AC)),
                                 QString(QChar(0x20AC)) + QStringLiteral("1,234.56"));
    Record* gbp = insertCurrency(inserter, QStringLiteral("GBP"), QString(QChar(0x00A3)),
                                 QString(QChar(0x00A3)) + QStringLiteral("1,234.56"));
    m_currencies = {{usd->pk(), QStringLiteral("USD"), 1.0},
                    {eur->pk(), QStringLiteral("EUR"), 1.08},
                    {gbp->pk(), QStringLiteral("GBP"), 1.27}};

    m_paymentTypes.clear();
    QList<Record*> paymentTypeRecords;
    for (const QString& name : {QStringLiteral("Bank Transfer"), QStringLiteral("Cash")}) {
        Record* r = inserter.insert(QStringLiteral("PaymentTypes"));
        r->setValue(QStringLiteral("name"), name);
        m_paymentTypes << PaymentType{r->pk(), name};
        paymentTypeRecords << r;
    }

    m_bankLine1 = QStringLiteral("My Bank");
    Record* bank = inserter.insert(QStringLiteral("Banks"));
    bank->setValue(QStringLiteral("line1"), m_bankLine1);
    bank->setValue(QStringLiteral("line2"),
                   QStringLiteral("Account 0012 %1 %2").arg(random.digits(4), random.digits(4)));
    m_bank = bank->pk();

    m_dueDays.clear();
    QList<Record*> dueDayRecords;
    for (int days : {14, 30}) {
        Record* r = inserter.insert(QStringLiteral("DueDays"));
        r->setValue(QStringLiteral("name"), QStringLiteral("%1 days").arg(days));
        r->setValue(QStringLiteral("days"), days);
        r->setValue(QStringLiteral("type"), 0);
        m_dueDays << r->pk();
        dueDayRecords << r;
    }

    m_myName = QStringLiteral("My Company");
    m_myAddress = QStringLiteral("1 Market Street\nSpringfield, IL 62701");
    m_myEmail = QStringLiteral("office@mycompany.com");
    m_myPhone = QStringLiteral("+1 217-555-0100");
    m_myTaxNumber = QStringLiteral("US-%1").arg(random.digits(9));
    Record* company = inserter.insert(QStringLiteral("MyCompany"));
    company->setValue(QStringLiteral("name"), m_myName);
    company->setValue(QStringLiteral("address"), m_myAddress);
    company->setValue(QStringLiteral("email"), m_myEmail);
    company->setValue(QStringLiteral("phone"), m_myPhone);
    company->setValue(QStringLiteral("tax_number"), m_myTaxNumber);
    company->setRelated(QStringLiteral("default_currency"), usd);
    company->setRelated(QStringLiteral("default_unit"), each);
    company->setRelated(QStringLiteral("default_tax"), taxRecords.first());
    company->setRelated(QStringLiteral("default_payment_type"), paymentTypeRecords.first());
    company->setRelated(QStringLiteral("default_bank"), bank);
    company->setRelated(QStringLiteral("default_due_day"), dueDayRecords.last());
    m_myCompany = company->pk();

    const char* const clientKinds[] = {"Companies", "Suppliers", "Individuals"};
    for (int i = 0; i < kClientKinds; ++i)
        m_clientKinds[std::size_t(i)] =
            insertCategory(inserter, QString::fromLatin1(clientKinds[i]), 1, i)->pk();
    const char* const itemKinds[] = {"Services", "Products"};
    for (int i = 0; i < kItemKinds; ++i)
        m_itemKinds[std::size_t(i)] = insertCategory(inserter, QString::fromLatin1(itemKinds[i]), 2, i)->pk();
    const char* const documentKinds[] = {"Invoices",       "Proformas",    "Estimates",    "Quotations",
                                         "Delivery Notes", "Credit Notes", "Credit Memos", "Purchase Orders"};
    for (int i = 0; i < kDocumentKinds; ++i)
        m_documentKinds[std::size_t(i)] =
            insertCategory(inserter, QString::fromLatin1(documentKinds[i]), 3, i)->pk();
    const char* const toDoKinds[] = {"To-Dos", "Repeating"};
    for (int i = 0; i < kToDoKinds; ++i)
        m_toDoKinds[std::size_t(i)] = insertCategory(inserter, QString::fromLatin1(toDoKinds[i]), 4, i)->pk();

    const char* const tagNames[] = {"Priority",   "Wholesale",   "Retail",     "Local",   "Export",
                                    "Follow-up",  "VIP",         "Seasonal",   "Online",  "Referral",
                                    "Government", "Non-profit",  "Archive",    "Review",  "Discount",
                                    "Rush",       "Maintenance", "Newsletter", "Partner", "Trial"};
    m_userTags.clear();
    for (int i = 0; i < userTags; ++i) {
        QString name = QString::fromLatin1(tagNames[i % int(std::size(tagNames))]);
        if (i >= int(std::size(tagNames)))
            name += QStringLiteral(" %1").arg(i / int(std::size(tagNames)) + 1);
        Record* tag = insertCategory(inserter, name, 0, i);
        tag->setValue(QStringLiteral("background_color"),
                      QColor::fromHsv((i * 37) % 360, 90 + random.between(0, 60), 230));
        m_userTags << tag->pk();
    }
    return inserter.flush(error);
}

} // namespace corvanta::bench
