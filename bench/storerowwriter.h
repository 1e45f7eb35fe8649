#pragma once

#include "store/store.h"

namespace corvanta::bench {

class RowSample;

// Inserts a row sample through the store as the application does: a record per row with its
// values and relationships set one by one, one save per batch, the context emptied after each.
class StoreRowWriter
{
public:
    explicit StoreRowWriter(store::Store& store);

    bool write(const RowSample& sample, store::StoreError* error);

private:
    store::Store& m_store;
};

} // namespace corvanta::bench
