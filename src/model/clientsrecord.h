#pragma once

#include "store/record.h"

namespace corvanta::model {

class CompanyCache;

// A client record. Derives `full_name` from the kind and the name fields (with the
// `first_name_position` setting for individuals) whenever it is loaded or one of them
// changes, and stores `emails` and `phones` given as lists joined by ",".
class ClientsRecord : public store::Record
{
public:
    ClientsRecord(const Init& init, CompanyCache& settings);

    // The display name: the company name for a company or supplier (type 0 or 1); for an
    // individual first and last name, last name first when `firstNamePosition` is not 0.
    // Trimmed of white space and new lines.
    static QString fullName(qint64 type, const QString& companyName, const QString& firstName,
                            const QString& lastName, qint64 firstNamePosition);

protected:
    void awakeFromFetch() override;
    void awakeFromInsert() override;
    void didChangeValue(const QString& key) override;
    QVariant willSetValue(const QString& key, const QVariant& value) override;

private:
    void updateFullName();

    CompanyCache& m_settings;
};

} // namespace corvanta::model
