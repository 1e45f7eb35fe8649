#pragma once

#include "model/editingcontext.h"
#include "model/store.h"

#include <QTemporaryDir>
#include <QTest>
#include <memory>

namespace corvanta::model::testing {

inline QString s(const char* text)
{
    return QString::fromUtf8(text);
}

// A fresh company database in a scratch folder.
class ScratchStore
{
public:
    ScratchStore()
    {
        StoreError error;
        m_store = Store::open(path(), &error);
        if (!m_store)
            qFatal("cannot open scratch store: %s", qPrintable(error.message()));
    }

    QString path() const { return m_dir.filePath(QStringLiteral("company.cvdb")); }
    Store& store() { return *m_store; }
    EditingContext& main() { return m_store->mainContext(); }

    // Closes and opens the database again, as a new start of the program does.
    void reopen()
    {
        m_store.reset();
        StoreError error;
        m_store = Store::open(path(), &error);
        if (!m_store)
            qFatal("cannot reopen scratch store: %s", qPrintable(error.message()));
    }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Store> m_store;
};

inline void saveOrFail(EditingContext& context)
{
    StoreError error;
    if (!context.save(&error))
        QFAIL(qPrintable(QStringLiteral("save failed: ") + error.message()));
}

inline predicate::Predicate where(const QString& keyPath, predicate::Predicate::Operator op,
                                  const QVariant& value)
{
    return predicate::Predicate::compare(keyPath, op, value);
}

} // namespace corvanta::model::testing
