#include "templateslog.h"

namespace corvanta::templates {

Q_LOGGING_CATEGORY(lcTemplates, "corvanta.templates")

} // namespace corvanta::templates
