#pragma once

#include <QWidget>
#include <array>
#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace corvanta::store {
class ChangeSet;
class EditingContext;
class Record;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

// The form over the company's own record: name, address, tax number, e-mail, phone,
// description, the company's custom fields under their labels, and the default references that
// new documents, rows, clients and items take. The record lives in an editing context of the
// window's own; every change is committed as the user leaves the field or chooses an entry, like
// the reference lists. A save the database refuses is told, and the typed value stays in the
// field and in the record until a later commit stores it.
class MyCompanyWindow : public QWidget
{
    Q_OBJECT

public:
    MyCompanyWindow(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);
    ~MyCompanyWindow() override;

    static constexpr int kCustomFields = 10;

    // The company record in the window's context, or null in a database without one.
    store::Record* company() const;

public Q_SLOTS:
    // Stores every change made in the window; false when the database refused them.
    bool commit();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    struct Reference
    {
        QString key;    // the company's relationship, "default_tax" ...
        QString entity; // the list it points into
        QString naming; // the attribute that names a record of the list
        QComboBox* popup = nullptr;
    };

    QWidget* makeCompanyFields();
    QWidget* makeCustomFields();
    QWidget* makeDefaults();
    QLineEdit* addLineEdit(const char* key, const char* objectName);
    QPlainTextEdit* addTextEdit(const char* key, const char* objectName, int lines);
    void setText(const QString& key, const QString& text);
    void load();
    void loadCustomLabels();
    void fillReference(const Reference& reference);
    void selectCurrent(const Reference& reference);
    void referenceChosen(const Reference& reference);
    void contextDidChange(const store::ChangeSet& changes);

    std::unique_ptr<store::EditingContext> m_context;
    support::Prompter& m_prompter;
    bool m_loading = false;
    bool m_committing = false;

    QLineEdit* m_nameEdit = nullptr;
    QPlainTextEdit* m_addressEdit = nullptr;
    QLineEdit* m_taxNumberEdit = nullptr;
    QLineEdit* m_emailEdit = nullptr;
    QLineEdit* m_phoneEdit = nullptr;
    QPlainTextEdit* m_descEdit = nullptr;
    QList<std::pair<QString, QLineEdit*>> m_lineEdits;
    QList<std::pair<QString, QPlainTextEdit*>> m_textEdits;
    std::array<QLabel*, kCustomFields> m_customLabels{};
    std::array<QLineEdit*, kCustomFields> m_customEdits{};
    QList<Reference> m_references;
};

} // namespace corvanta::ui
