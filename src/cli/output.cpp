#include "output.h"

#include <QJsonDocument>

namespace corvanta::cli {

void Output::json(const QJsonObject& value)
{
    m_out << QString::fromUtf8(QJsonDocument(value).toJson(QJsonDocument::Indented));
}

void Output::json(const QJsonArray& value)
{
    m_out << QString::fromUtf8(QJsonDocument(value).toJson(QJsonDocument::Indented));
}

} // namespace corvanta::cli
