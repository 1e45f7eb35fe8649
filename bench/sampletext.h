#pragma once

#include <QString>

namespace corvanta::bench {

class Random;

// Plausible words for generated records: people, companies, places, goods and services.
class SampleText
{
public:
    struct Place
    {
        QString city;
        QString state;
        QString zipCode;
        QString country;
    };

    static QString firstName(Random& random);
    static QString lastName(Random& random);
    static QString companyName(Random& random);
    static QString street(Random& random);
    static Place place(Random& random);
    static QString phone(Random& random);
    // `localPart`@ a domain made from `name`; `localPart` must be plain letters, digits and dots.
    static QString email(Random& random, const QString& localPart, const QString& name);
    static QString serviceName(Random& random);
    static QString productName(Random& random);
    static QString toDoTitle(Random& random);
    // A short sentence for descriptions and notes.
    static QString sentence(Random& random);
    // A lower-case word made of the letters and digits of `text`.
    static QString slug(const QString& text);
};

} // namespace corvanta::bench
