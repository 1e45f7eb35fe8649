#pragma once

#include "valuetransformer.h"

namespace corvanta::editors {

// A client's `status` as the image the lists show: 0 "ClientLost.png", 1 "ClientPossible.png",
// 2 "ClientAvailable.png"; nothing for any other value.
class ClientStatusValueTransformer : public editors::ValueTransformer
{
public:
    QVariant transformedValue(const QVariant& value) const override;
};

} // namespace corvanta::editors
