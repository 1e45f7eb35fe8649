#pragma once

#include "editors/referencelist.h"
#include "modeltestsupport.h"
#include "store/record.h"

#include <QVariantMap>

namespace corvanta::documents::testing {

using namespace corvanta::store;
using namespace corvanta::editors;
using model::testing::saveOrFail;

// A company database with the company record, a default currency ("," grouping, "." decimal,
// two fixed digits) and one default record in every reference list.
class ReferenceListFixture
{
public:
    ReferenceListFixture()
    {
        store::EditingContext& c = m_store.main();
        m_company =
            c.insertRecord(QStringLiteral("MyCompany"), {{QStringLiteral("name"), QStringLiteral("Acme")}});
        Record* euro = c.insertRecord(QStringLiteral("Currencies"),
                                      {{QStringLiteral("code"), QStringLiteral("EUR")},
                                       {QStringLiteral("grouping_separator"), QStringLiteral(",")},
                                       {QStringLiteral("decimal_separator"), QStringLiteral(".")},
                                       {QStringLiteral("digits"), 2},
                                       {QStringLiteral("show_fixed_digits"), true}});
        m_company->setRelated(QStringLiteral("default_currency"), euro);
        for (ReferenceListType type : allLists()) {
            const ReferenceList list(type);
            if (type != ReferenceListType::Currencies)
                m_company->setRelated(list.companyKey(), insert(type, "Default"));
        }
        model::testing::saveOrFail(c);
    }

    using Record = store::Record;

    static QList<ReferenceListType> allLists()
    {
        return {ReferenceListType::Taxes,        ReferenceListType::Banks, ReferenceListType::DueDays,
                ReferenceListType::PaymentTypes, ReferenceListType::Units, ReferenceListType::Currencies};
    }

    model::testing::ScratchCompany& store() { return m_store; }
    store::EditingContext& main() { return m_store.main(); }
    Record* company() const { return m_company; }

    // A record of a list in the main context, named by its naming field.
    Record* insert(ReferenceListType type, const char* name, const QVariantMap& values = {})
    {
        const ReferenceList list(type);
        QVariantMap all = values;
        all.insert(list.namingKey(), QString::fromUtf8(name));
        return m_store.main().insertRecord(list.entity(), all);
    }

private:
    model::testing::ScratchCompany m_store;
    Record* m_company = nullptr;
};

} // namespace corvanta::documents::testing

Q_DECLARE_METATYPE(corvanta::editors::ReferenceListType)
