#pragma once

#include "batchinserter.h"
#include "clientfactory.h"
#include "itemfactory.h"
#include "referencedata.h"
#include "store/store.h"

#include <QDate>
#include <QMap>
#include <array>
#include <cstdint>
#include <vector>

namespace corvanta::bench {

// Fills a fresh company database, through the record store, with a large company trading over
// five years: clients, items, documents of every type with their rows, summaries and payments,
// to-dos and tags. The same seed and sizes always give the same data. Records are saved in
// batches and the context is emptied after each, so memory does not grow with the company.
class CompanyGenerator
{
public:
    static constexpr std::uint32_t kDefaultSeed = 20210101;

    struct Sizes
    {
        int clients = 10000;
        int items = 5000;
        int documents = 100000;
        qint64 documentRows = 1000000;
        int toDos = 20000;
        int userTags = 20;
        // Records made between two saves.
        int clientsPerSave = 1000;
        int itemsPerSave = 1000;
        int documentsPerSave = 500;
        int toDosPerSave = 2000;

        // The full-size company with every count of clients, items, documents, rows and to-dos
        // multiplied by `factor` (at least one of each); reference records and tags stay as they are.
        static Sizes scaled(double factor);
    };

    // What the generator made, to compare with what the database holds.
    struct Counts
    {
        QMap<QString, qint64> records;  // by entity
        QMap<QString, qint64> tagLinks; // by the tagged record's entity
        std::array<qint64, ReferenceData::kClientKinds> clientsByType{};
        std::array<qint64, ReferenceData::kItemKinds> itemsByType{};
        std::array<qint64, ReferenceData::kDocumentKinds> documentsByType{};
        qint64 draftInvoices = 0;
        qint64 paidInvoices = 0;
        qint64 partlyPaidInvoices = 0;
        qint64 unpaidInvoices = 0;
        qint64 repeatingToDos = 0;
    };

    // Documents are dated between these days.
    static QDate firstDay() { return {2021, 1, 1}; }
    static QDate lastDay() { return {2025, 12, 31}; }

    CompanyGenerator(store::Store& store, const Sizes& sizes, std::uint32_t seed = kDefaultSeed);

    // Every step below, in order. Fails on a database that already holds a company.
    bool generate(store::StoreError* error);

    // The steps, for callers that time them; each needs the ones before it.
    bool insertReferenceRecords(store::StoreError* error);
    bool insertClients(store::StoreError* error);
    bool insertItems(store::StoreError* error);
    bool insertDocuments(store::StoreError* error);
    bool insertToDos(store::StoreError* error);

    const Sizes& sizes() const { return m_sizes; }
    Counts counts() const;

private:
    // Each step draws from its own stream, so that changing one step leaves the others' data alone.
    std::uint32_t seedFor(int step) const { return m_seed + std::uint32_t(step) * 7919u; }

    store::Store& m_store;
    Sizes m_sizes;
    std::uint32_t m_seed;
    BatchInserter m_inserter;
    ReferenceData m_reference;
    std::vector<ClientSnapshot> m_clients;
    std::vector<ItemSnapshot> m_items;
    Counts m_tallies; // what the factories report; records and tag links come from m_inserter
};

} // namespace corvanta::bench
