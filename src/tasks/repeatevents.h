#pragma once

#include <QDate>
#include <QString>

namespace corvanta::store {
class Record;
}

namespace corvanta::tasks {

// The occurrences of a recurring to-do around `referenceDate` as the calendar page's event
// entries, each "{id:'…', title:'…', start:'yyyy-MM-dd HH:mm', end:'…', backgroundColor:'#RRGGBB',
// borderColor:'#RRGGBB', textColor:'#RRGGBB', allDay:true|false, editable:false},", in date order.
// The window reaches from 50 days before the start of the reference day to 50 days after it (local
// time); occurrences before the window are written too, only its end limits the list. Steps are
// fixed intervals of 86400 seconds, so across a daylight-saving change the wall-clock hour of later
// occurrences moves by that change. Empty for a to-do that does not recur.
QString repeatEvents(const store::Record* todo, const QDate& referenceDate);

} // namespace corvanta::tasks
