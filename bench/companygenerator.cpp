#include "companygenerator.h"

#include "documentfactory.h"
#include "documentschedule.h"
#include "random.h"
#include "store/editingcontext.h"
#include "todofactory.h"

#include <QTimeZone>
#include <algorithm>
#include <cmath>

namespace corvanta::bench {

namespace {

int scaledCount(int count, double factor)
{
    return std::max(1, int(std::lround(double(count) * factor)));
}

store::StoreError failure(const QString& description)
{
    return store::StoreError::make(store::StoreError::StoreInitFailed, description);
}

} // namespace

CompanyGenerator::Sizes CompanyGenerator::Sizes::scaled(double factor)
{
    Sizes sizes;
    sizes.clients = scaledCount(sizes.clients, factor);
    sizes.items = scaledCount(sizes.items, factor);
    sizes.documents = scaledCount(sizes.documents, factor);
    sizes.documentRows = qint64(sizes.documents) * 10;
    sizes.toDos = scaledCount(sizes.toDos, factor);
    return sizes;
}

CompanyGenerator::CompanyGenerator(store::Store& store, const Sizes& sizes, std::uint32_t seed)
    : m_store(store)
    , m_sizes(sizes)
    , m_seed(seed)
    , m_inserter(store.mainContext())
{}

bool CompanyGenerator::generate(store::StoreError* error)
{
    return insertReferenceRecords(error) && insertClients(error) && insertItems(error) &&
           insertDocuments(error) && insertToDos(error);
}

bool CompanyGenerator::insertReferenceRecords(store::StoreError* error)
{
    store::EditingContext& context = m_store.mainContext();
    if (context.hasChanges() || context.count(store::FetchRequest(QStringLiteral("Settings"))) != 0) {
        store::report(error, failure(QStringLiteral("The database \"%1\" is not empty; a company can only be "
                                                    "generated into a new one.")
                                         .arg(m_store.path())));
        return false;
    }
    Random random(seedFor(0));
    return m_reference.insert(m_inserter, random, m_sizes.userTags, error);
}

bool CompanyGenerator::insertClients(store::StoreError* error)
{
    Random random(seedFor(1));
    ClientFactory factory(m_inserter, random, m_reference);
    const QDateTime since(QDate(2019, 1, 1), QTime(9, 0), QTimeZone::utc());
    const int spread = int(since.date().daysTo(firstDay()));
    m_clients.clear();
    m_clients.reserve(std::size_t(m_sizes.clients));
    for (int i = 0; i < m_sizes.clients; ++i) {
        m_clients.push_back(factory.make(since.addDays(random.between(0, spread - 1))));
        ++m_tallies.clientsByType[std::size_t(m_clients.back().type)];
        if ((i + 1) % std::max(1, m_sizes.clientsPerSave) == 0 && !m_inserter.flush(error))
            return false;
    }
    return m_inserter.flush(error);
}

bool CompanyGenerator::insertItems(store::StoreError* error)
{
    Random random(seedFor(2));
    QList<qint64> suppliers;
    for (const ClientSnapshot& c : m_clients) {
        if (c.type == 1)
            suppliers << c.pk;
    }
    ItemFactory factory(m_inserter, random, m_reference, suppliers, firstDay(), lastDay());
    m_items.clear();
    m_items.reserve(std::size_t(m_sizes.items));
    for (int i = 0; i < m_sizes.items; ++i) {
        m_items.push_back(factory.make(i + 1));
        ++m_tallies.itemsByType[std::size_t(m_items.back().type)];
        if ((i + 1) % std::max(1, m_sizes.itemsPerSave) == 0 && !m_inserter.flush(error))
            return false;
    }
    return m_inserter.flush(error);
}

bool CompanyGenerator::insertDocuments(store::StoreError* error)
{
    if (m_clients.empty() || m_items.empty()) {
        store::report(error,
                      failure(QStringLiteral("Documents need clients and items to be generated first.")));
        return false;
    }
    Random random(seedFor(3));
    const DocumentSchedule schedule(random, m_sizes.documents, m_sizes.documentRows, firstDay(), lastDay());
    DocumentFactory factory(m_inserter, random, m_reference, m_clients, m_items, lastDay());
    int inBatch = 0;
    for (const DocumentSchedule::Entry& entry : schedule.entries()) {
        ++m_tallies.documentsByType[entry.type];
        switch (factory.make(schedule, entry)) {
        case DocumentFactory::Payment::NotAnInvoice:
            break;
        case DocumentFactory::Payment::Draft:
            ++m_tallies.draftInvoices;
            break;
        case DocumentFactory::Payment::Paid:
            ++m_tallies.paidInvoices;
            break;
        case DocumentFactory::Payment::PartlyPaid:
            ++m_tallies.partlyPaidInvoices;
            break;
        case DocumentFactory::Payment::Unpaid:
            ++m_tallies.unpaidInvoices;
            break;
        }
        if (++inBatch >= m_sizes.documentsPerSave) {
            inBatch = 0;
            if (!m_inserter.flush(error))
                return false;
        }
    }
    return m_inserter.flush(error);
}

bool CompanyGenerator::insertToDos(store::StoreError* error)
{
    Random random(seedFor(4));
    QList<qint64> clients;
    for (const ClientSnapshot& c : m_clients)
        clients << c.pk;
    QList<qint64> items;
    for (const ItemSnapshot& i : m_items)
        items << i.pk;
    ToDoFactory factory(m_inserter, random, m_reference, clients, items, firstDay(), lastDay());
    for (int i = 0; i < m_sizes.toDos; ++i) {
        if (factory.make())
            ++m_tallies.repeatingToDos;
        if ((i + 1) % std::max(1, m_sizes.toDosPerSave) == 0 && !m_inserter.flush(error))
            return false;
    }
    return m_inserter.flush(error);
}

CompanyGenerator::Counts CompanyGenerator::counts() const
{
    Counts counts = m_tallies;
    counts.records = m_inserter.inserted();
    counts.tagLinks = m_inserter.tagLinks();
    return counts;
}

} // namespace corvanta::bench
