#pragma once

#include <QLoggingCategory>

namespace corvanta::companies {

// Diagnostics of the company databases, their list, copies and backups, in the category "corvanta.companies".
Q_DECLARE_LOGGING_CATEGORY(lcCompanies)

} // namespace corvanta::companies
