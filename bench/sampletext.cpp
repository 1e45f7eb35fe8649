#include "sampletext.h"

#include "random.h"

#include <iterator>

namespace corvanta::bench {

namespace {

template <std::size_t N>
QString pick(Random& random, const char* const (&words)[N])
{
    return QString::fromLatin1(words[std::size_t(random.between(0, int(N) - 1))]);
}

const char* const kFirstNames[] = {
    "James",   "Mary",     "Robert",  "Patricia", "John",     "Jennifer", "Michael",   "Linda",   "David",
    "Barbara", "William",  "Susan",   "Richard",  "Jessica",  "Joseph",   "Sarah",     "Thomas",  "Karen",
    "Charles", "Lisa",     "Daniel",  "Nancy",    "Matthew",  "Sandra",   "Anthony",   "Ashley",  "Mark",
    "Emily",   "Steven",   "Donna",   "Paul",     "Michelle", "Andrew",   "Carol",     "Joshua",  "Amanda",
    "Kevin",   "Melissa",  "Brian",   "Deborah",  "George",   "Laura",    "Timothy",   "Rebecca", "Ronald",
    "Sharon",  "Jason",    "Cynthia", "Edward",   "Kathleen", "Jeffrey",  "Amy",       "Ryan",    "Angela",
    "Jacob",   "Helen",    "Gary",    "Anna",     "Nicholas", "Brenda",   "Eric",      "Pamela",  "Stephen",
    "Emma",    "Jonathan", "Nicole",  "Larry",    "Samantha", "Justin",   "Katherine", "Scott",   "Christine",
};

const char* const kLastNames[] = {
    "Smith",     "Johnson",  "Williams",  "Brown",    "Jones",    "Garcia",   "Miller",   "Davis",
    "Rodriguez", "Martinez", "Hernandez", "Lopez",    "Gonzalez", "Wilson",   "Anderson", "Thomas",
    "Taylor",    "Moore",    "Jackson",   "Martin",   "Lee",      "Perez",    "Thompson", "White",
    "Harris",    "Sanchez",  "Clark",     "Ramirez",  "Lewis",    "Robinson", "Walker",   "Young",
    "Allen",     "King",     "Wright",    "Scott",    "Torres",   "Nguyen",   "Hill",     "Flores",
    "Green",     "Adams",    "Nelson",    "Baker",    "Hall",     "Rivera",   "Campbell", "Mitchell",
    "Carter",    "Roberts",  "Gomez",     "Phillips", "Evans",    "Turner",   "Diaz",     "Parker",
    "Cruz",      "Edwards",  "Collins",   "Reyes",    "Stewart",  "Morris",   "Morales",  "Murphy",
    "Cook",      "Rogers",   "Gutierrez", "Ortiz",    "Morgan",   "Cooper",   "Peterson", "Bailey",
};

const char* const kCompanyWords[] = {
    "Summit",   "Pioneer",  "Harbor",   "Granite",  "Cedar",    "Northwind", "Bluebird", "Riverside",
    "Keystone", "Lakeside", "Silver",   "Golden",   "Prairie",  "Evergreen", "Atlas",    "Beacon",
    "Crescent", "Horizon",  "Meridian", "Oakridge", "Pinnacle", "Redwood",   "Sterling", "Vanguard",
    "Willow",   "Falcon",   "Copper",   "Maple",    "Ironwood", "Coastal",   "Union",    "Liberty",
    "Frontier", "Highland", "Sunrise",  "Orchard",
};

const char* const kCompanyTrades[] = {
    "Logistics", "Builders", "Consulting",  "Design",   "Foods",       "Motors",   "Electric", "Plumbing",
    "Marketing", "Supplies", "Software",    "Printing", "Landscaping", "Dental",   "Bakery",   "Analytics",
    "Media",     "Trading",  "Engineering", "Travel",   "Furniture",   "Textiles", "Imports",  "Studios",
};

const char* const kCompanySuffixes[] = {"Inc.", "LLC", "Ltd.", "Co.", "Group", "Partners", "Corp."};

const char* const kStreetNames[] = {
    "Main",   "Oak",    "Pine",     "Maple",   "Cedar",   "Elm",      "Washington", "Lake",     "Hill",
    "Park",   "Walnut", "Sunset",   "Lincoln", "Jackson", "Church",   "River",      "Spring",   "Highland",
    "Forest", "Meadow", "Franklin", "Center",  "Mill",    "Chestnut", "Willow",     "Broadway", "Market",
};

const char* const kStreetKinds[] = {"Street", "Avenue", "Road", "Boulevard", "Lane", "Drive", "Way", "Court"};

struct PlaceText
{
    const char* city;
    const char* state;
    const char* zipPrefix;
    const char* country;
};

const PlaceText kPlaces[] = {
    {"Springfield", "IL", "627", "United States"},
    {"Portland", "OR", "972", "United States"},
    {"Austin", "TX", "787", "United States"},
    {"Denver", "CO", "802", "United States"},
    {"Columbus", "OH", "432", "United States"},
    {"Madison", "WI", "537", "United States"},
    {"Raleigh", "NC", "276", "United States"},
    {"Boise", "ID", "837", "United States"},
    {"Sacramento", "CA", "958", "United States"},
    {"Albany", "NY", "122", "United States"},
    {"Nashville", "TN", "372", "United States"},
    {"Phoenix", "AZ", "850", "United States"},
    {"Richmond", "VA", "232", "United States"},
    {"Salt Lake City", "UT", "841", "United States"},
    {"Seattle", "WA", "981", "United States"},
    {"Tampa", "FL", "336", "United States"},
    {"Toronto", "ON", "M5V", "Canada"},
    {"Vancouver", "BC", "V6B", "Canada"},
    {"London", "", "EC1", "United Kingdom"},
    {"Manchester", "", "M1", "United Kingdom"},
    {"Dublin", "", "D02", "Ireland"},
    {"Berlin", "", "101", "Germany"},
};

const char* const kServices[] = {
    "Consulting",     "On-site support",    "Remote support",   "Installation",    "Maintenance visit",
    "Design work",    "Project management", "Training session", "Website hosting", "Bookkeeping",
    "Copywriting",    "Photography",        "Delivery",         "Repair labour",   "Software development",
    "Data migration", "Security audit",     "Cleaning",         "Translation",     "Legal review",
};

const char* const kServiceGrades[] = {"", "Senior ", "Junior ", "Express ", "Weekend ", "Standard "};

const char* const kProducts[] = {
    "Office chair", "Desk lamp",      "Printer paper", "Toner cartridge", "USB cable",  "Wireless mouse",
    "Keyboard",     "Monitor stand",  "Notebook",      "Ballpoint pens",  "Filing box", "Whiteboard",
    "Coffee beans", "Water filter",   "Safety gloves", "Work boots",      "Drill bits", "Paint bucket",
    "Cable ties",   "Extension cord", "LED bulb",      "Router",          "Hard drive", "Backpack",
};

const char* const kProductVariants[] = {"",       "Large ", "Small ", "Premium ",
                                        "Basic ", "Black ", "White ", "Pro "};

const char* const kToDoVerbs[] = {"Call",    "Email", "Visit",  "Send quote to",   "Follow up with",
                                  "Invoice", "Meet",  "Remind", "Order stock for", "Review contract with"};

const char* const kToDoTopics[] = {"about the renewal",
                                   "about the late payment",
                                   "about the new project",
                                   "before the end of the month",
                                   "about the delivery",
                                   "",
                                   "",
                                   ""};

const char* const kSentences[] = {
    "Thank you for your business.",
    "Payment is due within the agreed terms.",
    "Prices include delivery to the address above.",
    "Please quote the document number with your payment.",
    "Goods remain our property until paid in full.",
    "Preferred contact by email during office hours.",
    "Long-standing customer; discount agreed for large orders.",
    "Deliveries only on weekdays before noon.",
    "Ask for the accounts department.",
    "Regular monthly order.",
};

} // namespace

QString SampleText::firstName(Random& random)
{
    return pick(random, kFirstNames);
}

QString SampleText::lastName(Random& random)
{
    return pick(random, kLastNames);
}

QString SampleText::companyName(Random& random)
{
    switch (random.between(0, 3)) {
    case 0:
        return pick(random, kLastNames) + QLatin1String(" & ") + pick(random, kLastNames) + QLatin1Char(' ') +
               pick(random, kCompanySuffixes);
    case 1:
        return pick(random, kCompanyWords) + QLatin1Char(' ') + pick(random, kCompanyTrades);
    default:
        return pick(random, kCompanyWords) + QLatin1Char(' ') + pick(random, kCompanyTrades) +
               QLatin1Char(' ') + pick(random, kCompanySuffixes);
    }
}

QString SampleText::street(Random& random)
{
    return QString::number(random.between(1, 9800)) + QLatin1Char(' ') + pick(random, kStreetNames) +
           QLatin1Char(' ') + pick(random, kStreetKinds);
}

SampleText::Place SampleText::place(Random& random)
{
    const PlaceText& p = kPlaces[std::size_t(random.between(0, int(std::size(kPlaces)) - 1))];
    QString zip = QString::fromLatin1(p.zipPrefix);
    if (zip.size() == 3 && zip.at(0).isDigit())
        zip += random.digits(2);
    else
        zip += QLatin1Char(' ') + random.digits(1) + QLatin1Char(char('A' + random.between(0, 25))) +
               QLatin1Char(char('A' + random.between(0, 25)));
    return {QString::fromLatin1(p.city), QString::fromLatin1(p.state), zip, QString::fromLatin1(p.country)};
}

QString SampleText::phone(Random& random)
{
    return QStringLiteral("+1 %1-%2-%3")
        .arg(random.between(201, 989))
        .arg(random.digits(3), random.digits(4));
}

QString SampleText::email(Random& random, const QString& localPart, const QString& name)
{
    static const char* const domains[] = {".com", ".net", ".biz", ".co"};
    QString domain = slug(name);
    if (domain.isEmpty())
        domain = QStringLiteral("example");
    return localPart.toLower() + QLatin1Char('@') + domain + pick(random, domains);
}

QString SampleText::serviceName(Random& random)
{
    return pick(random, kServiceGrades) + pick(random, kServices);
}

QString SampleText::productName(Random& random)
{
    return pick(random, kProductVariants) + pick(random, kProducts);
}

QString SampleText::toDoTitle(Random& random)
{
    const QString topic = pick(random, kToDoTopics);
    QString title = pick(random, kToDoVerbs) + QLatin1Char(' ') + lastName(random);
    if (!topic.isEmpty())
        title += QLatin1Char(' ') + topic;
    return title;
}

QString SampleText::sentence(Random& random)
{
    return pick(random, kSentences);
}

QString SampleText::slug(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        if (c.isLetterOrNumber())
            out += c.toLower();
    }
    return out;
}

} // namespace corvanta::bench
