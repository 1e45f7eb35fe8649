# Reference lists (taxes, banks, due days, payment types, units, currencies): their editing logic
# and item models, the default mark of a list row, the currencies offered to a document and the
# names of custom fields.
target_sources(corvanta_documents PRIVATE
    currencychoices.h currencychoices.cpp
    customfields.h customfields.cpp
    defaultvaluetransformer.h defaultvaluetransformer.cpp
    referencelist.h referencelist.cpp
    referencelisteditor.h referencelisteditor.cpp
    referencelistmodel.h referencelistmodel.cpp
)
