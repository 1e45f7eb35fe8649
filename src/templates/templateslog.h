#pragma once

#include <QLoggingCategory>

namespace corvanta::templates {

// Diagnostics of the templates, in the category "corvanta.templates".
Q_DECLARE_LOGGING_CATEGORY(lcTemplates)

} // namespace corvanta::templates
