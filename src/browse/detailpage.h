#pragma once

#include "browse/listkind.h"

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QStringList>

namespace corvanta::store {
class Record;
}

namespace corvanta::browse {

// A detail page's filled elements: the inner HTML of elements by their id, the elements
// hidden, and the script calls that hand the page its data ("addPieValues(…)"). The same
// content becomes the page's full HTML (its template with every element filled) or the
// script the desktop runs in the page once it has loaded.
class DetailPage
{
    Q_DECLARE_TR_FUNCTIONS(DetailPage)

public:
    explicit DetailPage(ListKind kind = ListKind::None);

    ListKind kind() const { return m_kind; }

    // Sets the inner HTML of the element with this id (HTML: values must be escaped already).
    void setContent(const QString& element, const QString& html);
    // Hides an element with "display:none;".
    void hide(const QString& element);
    // A call run after the page has loaded.
    void addCall(const QString& script);

    QString content(const QString& element) const;
    bool isHidden(const QString& element) const;
    const QStringList& calls() const { return m_calls; }

    // The kind's page from the program's resources with every element filled.
    QString html() const;
    // The same filling in any template: each element is found by its `id="…"` and must be
    // empty there; an element the template lacks is left out with a warning.
    QString html(const QString& pageTemplate) const;
    // Script statements that fill an already loaded page the same way.
    QString script() const;

    // The page of a kind as the program ships it ("no_selected.html" for None).
    static QString pageTemplate(ListKind kind);
    // The resource path of a page's file, e.g. ":/pages/client.html".
    static QString resourcePath(const QString& fileName);
    // The empty page shown while no record is selected.
    static DetailPage nothingSelected();

    // A property as a table row: the label in bold in its styled cell, the value's HTML beside.
    static QString propertyRow(const QString& label, const QString& valueHtml);
    // The folders and tags of a record that its tag row shows, each as a coloured label.
    static QString tagLabels(const store::Record* record);
    static QString tagLabels(const QList<store::Record*>& tags);
    // Rows of a record's custom fields that have a value, labelled by their definitions of the
    // group `prefix` ("client_", "item_"), hidden definitions left out; decimal fields are
    // written in `currency`.
    static QString customFieldRows(const store::Record* record, const QString& prefix,
                                   const store::Record* currency = nullptr);
    // A date in the user's short format, with the time unless `withTime` is off; empty for none.
    static QString shortDate(const QVariant& value, bool withTime = false);

private:
    struct Element
    {
        QString id;
        QString html;
        bool hidden = false;
    };
    Element& element(const QString& id);
    const Element* find(const QString& id) const;

    ListKind m_kind;
    QList<Element> m_elements;
    QStringList m_calls;
};

} // namespace corvanta::browse
