#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QList>
#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::browse {

// The history on a client's or an item's page: its finalised documents and its to-dos, newest
// first, a page of ten at a time. Each call reads only as many records as it shows (and
// counts the rest), so a client with years of documents costs no more than a new one.
class EventHistory
{
    Q_DECLARE_TR_FUNCTIONS(EventHistory)

public:
    // Which events are listed; any other number lists all of them.
    enum Filter { DocumentsOnly = 0, ToDosOnly = 1, DoneToDos = 2, PendingToDos = 3, All = -1 };
    static constexpr int kPageSize = 10;

    // `owner` is a client or an item; anything else has no history.
    explicit EventHistory(store::Record* owner);

    // The events, newest first (documents by `date_creation`, to-dos by `date_start`; on the
    // same moment a document comes first), at most `count` of them (0 means ten).
    QList<store::Record*> events(int filter, int count) const;
    // How many events the filter lists in all; -1 when the store could not tell.
    int total(int filter) const;

    // The history as the rows of the page's events table: month headings, one row per event
    // and, when more exist, the "Show More" row asking for the next count.
    QString html(int filter, int count) const;

    // The count shown for a requested one: ten for 0 or less.
    static int shownCount(int count) { return count > 0 ? count : kPageSize; }
    // The count "Show More" asks for: ten more, or all when fewer remain.
    static int nextCount(int count, int total) { return qMin(shownCount(count) + kPageSize, total); }
    static bool listsDocuments(int filter);
    static bool listsToDos(int filter);

private:
    QString documentRow(const store::Record* document) const;
    QString toDoRow(const store::Record* todo) const;
    static QDateTime dateOf(const store::Record* event);

    store::Record* m_owner;
    bool m_isClient = false;
    bool m_isItem = false;
};

} // namespace corvanta::browse
