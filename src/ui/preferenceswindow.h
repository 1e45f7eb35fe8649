#pragma once

#include <QHash>
#include <QWidget>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTabWidget;

namespace corvanta::editors {
class NumberFormatPreferences;
}
namespace corvanta::store {
class EditingContext;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class NumberFormatField;

// The company's preferences in three pages: the number format of every document type with its
// live sample and reset; the print copies per type and the finalising sound; the order of first
// and last name, the hidden system tags, the kinds of new clients and items, and stock tracking.
// Each change is stored at once through the company settings, in an editing context of the
// window's own; a save the database refuses is told and the value stays shown.
class PreferencesWindow : public QWidget
{
    Q_OBJECT

public:
    PreferencesWindow(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);
    ~PreferencesWindow() override;

    enum Page { NumberingPage, DocumentsPage, ClientsAndItemsPage };
    void showPage(Page page);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    struct FormatRow
    {
        NumberFormatField* tokens = nullptr;
        QLineEdit* text = nullptr;
        QLabel* sample = nullptr;
        QPushButton* reset = nullptr;
    };

    QWidget* makeNumberingPage();
    QWidget* makeDocumentsPage();
    QWidget* makeClientsAndItemsPage();
    QComboBox* makeChoice(const QString& key, const QStringList& captions, QWidget* parent);
    QCheckBox* makeCheck(const QString& key, const QString& caption, bool onMeansSet, QWidget* parent);
    // Stores one setting; a refused save is told.
    bool storeSetting(const QString& key, const QVariant& value);
    qint64 setting(const QString& key);
    void showFormat(int type);
    // Stores the typed format of `type` if it changed; false when the database refused it.
    bool formatFinished(int type);
    void tokenChosen(int type, int index, const QString& entry);
    void resetFormat(int type);

    std::unique_ptr<store::EditingContext> m_context;
    support::Prompter& m_prompter;
    std::unique_ptr<editors::NumberFormatPreferences> m_numbers;
    bool m_storing = false;
    QTabWidget* m_pages = nullptr;
    QHash<int, FormatRow> m_formats;
};

} // namespace corvanta::ui
