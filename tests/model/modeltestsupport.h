#pragma once

#include "model/companydatabase.h"
#include "store/editingcontext.h"
#include "store/store.h"

#include <QTemporaryDir>
#include <QTest>
#include <memory>

namespace corvanta::model::testing {

inline QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// A fresh company database in a scratch folder, opened the program's way (every record class),
// without its default records.
class ScratchCompany
{
public:
    ScratchCompany() { reopen(); }

    QString path() const { return m_dir.filePath(QStringLiteral("company.cvdb")); }
    store::Store& store() { return *m_store; }
    store::EditingContext& main() { return m_store->mainContext(); }

    // Closes and opens the database again, as a new start of the program does.
    void reopen()
    {
        m_store.reset();
        store::StoreError error;
        m_store = CompanyDatabase::open(path(), &error);
        if (!m_store)
            qFatal("cannot open the scratch company: %s", qPrintable(error.message()));
    }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<store::Store> m_store;
};

inline void saveOrFail(store::EditingContext& context)
{
    store::StoreError error;
    if (!context.save(&error))
        QFAIL(qPrintable(QStringLiteral("save failed: ") + error.message()));
}

// The values at `keyPaths` of a record joined by " | ", "-" standing for none: one comparison
// shows every value that is off.
inline QString valuesOf(const store::Record* record, std::initializer_list<const char*> keyPaths)
{
    QStringList texts;
    for (const char* keyPath : keyPaths) {
        const QVariant value = record ? record->valueForKeyPath(s(keyPath)) : QVariant();
        texts << (value.isNull() ? s("-") : value.toString());
    }
    return texts.join(s(" | "));
}

inline predicate::Predicate where(const QString& keyPath, predicate::Predicate::Operator op,
                                  const QVariant& value)
{
    return predicate::Predicate::compare(keyPath, op, value);
}

} // namespace corvanta::model::testing
