#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <cstdint>
#include <vector>

namespace corvanta::bench {

class Random;

// When each document of the company is made, of which type, with how many rows, and under
// which number. Documents are in date order, so that each type's numbers run up through every
// year as a real company's do ("INVOICE/2023-0042"); draft invoices have no number yet.
class DocumentSchedule
{
public:
    static constexpr int kTypes = 8;

    struct Entry
    {
        std::int32_t day = 0;    // days after the first day
        std::int32_t second = 0; // seconds after midnight, UTC
        std::int32_t number = 0; // 0 for a draft
        std::uint8_t type = 0;
        std::uint8_t rows = 0;
        bool draft = false;
    };

    // `documents` documents spread over [firstDay, lastDay] with exactly `rows` rows in all
    // (between 1 and 19 per document).
    DocumentSchedule(Random& random, int documents, qint64 rows, QDate firstDay, QDate lastDay);

    const std::vector<Entry>& entries() const { return m_entries; }
    QDate firstDay() const { return m_firstDay; }
    QDate lastDay() const { return m_lastDay; }
    QDateTime dateCreation(const Entry& entry) const;
    QString numberFormatted(const Entry& entry) const;

    // "INVOICE", "PROFORMA" ... for types 0 to 7.
    static QString prefix(int type);

private:
    static void spreadRows(Random& random, std::vector<Entry>& entries, qint64 rows);
    void number();

    QDate m_firstDay;
    QDate m_lastDay;
    std::vector<Entry> m_entries;
};

} // namespace corvanta::bench
