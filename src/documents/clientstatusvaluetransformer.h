#pragma once

#include "format/valuetransformer.h"

namespace corvanta::documents {

// A client's `status` as the image the lists show: 0 "ClientLost.png", 1 "ClientPossible.png",
// 2 "ClientAvailable.png"; nothing for any other value.
class ClientStatusValueTransformer : public format::ValueTransformer
{
public:
    QVariant transformedValue(const QVariant& value) const override;
};

} // namespace corvanta::documents
