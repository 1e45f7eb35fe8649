#include "crashsoakoperation.h"

namespace corvanta::bench {

QString Operation::kindName(Kind kind)
{
    switch (kind) {
    case Kind::NewDocument:
        return QStringLiteral("new document");
    case Kind::Pay:
        return QStringLiteral("payment");
    case Kind::Finalize:
        return QStringLiteral("finalize");
    case Kind::Cancel:
        return QStringLiteral("cancel");
    case Kind::Backup:
        return QStringLiteral("backup");
    case Kind::Info:
        return QStringLiteral("info");
    }
    return {};
}

const QStringList& Operation::typeNames()
{
    static const QStringList names{QStringLiteral("invoice"),       QStringLiteral("proforma"),
                                   QStringLiteral("estimate"),      QStringLiteral("quotation"),
                                   QStringLiteral("delivery_note"), QStringLiteral("credit_note"),
                                   QStringLiteral("credit_memo"),   QStringLiteral("purchase_order")};
    return names;
}

} // namespace corvanta::bench
