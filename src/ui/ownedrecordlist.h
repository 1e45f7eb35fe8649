#pragma once

#include <QList>
#include <QString>
#include <QWidget>
#include <functional>

class QFormLayout;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPlainTextEdit;
class QToolButton;

namespace corvanta::store {
class Record;
}

namespace corvanta::ui {

// The records a client owns of one kind (its addresses, its contacts) as a list with the
// default ticked, add and remove buttons, and the fields of the selected record below. The
// list and its default belong to the editor's controller, which the operations call; the
// fields write to the selected record and report each change through edited().
class OwnedRecordList : public QWidget
{
    Q_OBJECT

public:
    struct Field
    {
        QString key;
        QString label; // with its mnemonic
        bool multiline = false;
    };
    struct Operations
    {
        std::function<QList<store::Record*>()> records;
        std::function<store::Record*()> defaultRecord;
        std::function<store::Record*()> add;
        std::function<void(store::Record*)> remove;
        std::function<void(store::Record*)> makeDefault;
        // The line a record shows in the list.
        std::function<QString(const store::Record*)> summary;
    };
    struct Texts
    {
        QString add;            // tool tip of the add button ("Add Address")
        QString remove;         // tool tip of the remove button
        QString defaultToolTip; // the tick of the default row
        QString empty;          // shown when there is no record yet
    };

    // Child objects are named from `name`: "<name>List", "<name>AddButton",
    // "<name>RemoveButton" and "<name>_<key>" for each field.
    OwnedRecordList(const QString& name, const QList<Field>& fields, Operations operations, Texts texts,
                    QWidget* parent = nullptr);

    // Shows the controller's records afresh, keeping the selection where it can.
    void reload();
    QList<store::Record*> records() const { return m_records; }
    store::Record* current() const;
    void setCurrent(store::Record* record);

    // Adds a record, selects it and puts the keyboard in its first field.
    void addRecord();
    void removeCurrent();

Q_SIGNALS:
    void edited();

private:
    void showCurrent();
    void itemChanged(QListWidgetItem* item);
    void fieldEdited(const QString& key, const QString& text);
    void updateSummary(store::Record* record);

    QList<Field> m_fields;
    Operations m_operations;
    Texts m_texts;
    QList<store::Record*> m_records;
    QListWidget* m_list = nullptr;
    QToolButton* m_addButton = nullptr;
    QToolButton* m_removeButton = nullptr;
    QWidget* m_form = nullptr;
    QList<QWidget*> m_editors;
    bool m_loading = false;
};

} // namespace corvanta::ui
