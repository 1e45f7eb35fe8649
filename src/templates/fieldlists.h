#pragma once

#include <QList>
#include <QString>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::templates {

// The fields a template of one type offers in each section, and the two written forms of an
// element's text: stored ("Due @date_due", field keys) and user-friendly ("Due @DueDate",
// the friendly names the editor shows). The lists keep the order in which the conversions
// and the field menu walk them.
class FieldLists
{
public:
    struct Field
    {
        QString token;        // "@" + key or key path
        QString friendlyName; // camel case, without the "@"

        bool operator==(const Field&) const = default;
    };

    // Reads the custom-field definitions (`Compose`) of `context` once.
    FieldLists(store::EditingContext& context, int templateType);

    int templateType() const { return m_type; }

    QList<Field> documentHeader() const;
    // Only the grouped report has the details header and footer; empty for every other type.
    QList<Field> detailsHeader() const;
    QList<Field> details() const;
    QList<Field> detailsFooter() const;
    QList<Field> tableFooter() const;
    QList<Field> documentFooter() const;
    // Every section's list joined in the order the conversions walk: document header, details
    // header (grouped), details, details footer (grouped), table footer, document footer.
    QList<Field> all() const;

    // Tokens become "@" + friendly name. Where several names start at one "@", the longest is
    // taken ("@page_number_total", not "@page_number" and "_total"); of equally long ones the
    // first in the lists (a custom field labelled like a built-in one gives the built-in field).
    QString formatToUserFriendly(const QString& text) const;
    // "@" + friendly name becomes the token; the result is also stored in `element`'s
    // `format` when an element is given.
    QString formatToDatabase(const QString& text, store::Record* element) const;
    // The field menu: appends "@" + `friendlyName` to the element's user-friendly text, stores
    // it back in the element and returns the new user-friendly text.
    QString formulaSelected(store::Record* element, const QString& friendlyName) const;

private:
    struct CustomField
    {
        QString name;  // "client_custom01"
        QString label; // blanks removed
    };
    QList<CustomField> customFields(const QString& prefix) const;
    QList<Field> clientFields() const;
    QList<Field> customList(const QString& prefix, bool stripPrefix, const QString& friendlyPrefix) const;

    int m_type;
    QList<CustomField> m_custom; // every definition, sorted by name
};

} // namespace corvanta::templates
