#include "companieslog.h"

namespace corvanta::companies {

Q_LOGGING_CATEGORY(lcCompanies, "corvanta.companies")

} // namespace corvanta::companies
