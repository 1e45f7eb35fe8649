#pragma once

#include "exchange/csvpreview.h"
#include "exchange/importfields.h"
#include "exchange/importprogress.h"

#include <QWidget>
#include <memory>
#include <optional>

class QComboBox;
class QFormLayout;
class QHeaderView;
class QLabel;
class QMenu;
class QPushButton;
class QStandardItemModel;
class QTableView;
class QToolButton;

namespace corvanta::store {
class EditingContext;
class Store;
} // namespace corvanta::store
namespace corvanta::support {
class Prompter;
}

namespace corvanta::ui {

class CsvPreviewModel;

// What the two import windows share: the file shown as a preview table under the header of the
// fields its columns go to, the separator, encoding and compose pop-ups, the line and column
// count, and the import itself behind a progress dialog that can cancel it. The concrete windows
// add their own pop-ups to the options form and run their import.
class CsvImportWindow : public QWidget
{
    Q_OBJECT

public:
    ~CsvImportWindow() override;

    // Reads the file and shows it; false, after the "Warning" alert, when it cannot be read (the
    // rows read before stay).
    bool openFile(const QString& path);
    const exchange::CsvPreview& preview() const { return m_preview; }
    const exchange::ImportFields& fields() const { return m_fields; }

public Q_SLOTS:
    // Runs the import; the window closes when it stored the records.
    void startImport();

protected:
    // `name` is the window's object name, which also keys its place in the settings.
    CsvImportWindow(store::Store& store, support::Prompter& prompter, const QString& name,
                    const QString& title, QWidget* parent);

    store::Store& store() { return m_store; }
    support::Prompter& prompter() { return m_prompter; }
    store::EditingContext& context() { return *m_context; }

    // The fields of the compose pop-up, set once by the concrete window.
    void setFields(const exchange::ImportFields& fields);
    // Restores the size and place the window had when it was last closed.
    void restoreWindowGeometry();
    // Changes the ticks as the client type does, and shows them.
    void retickForClientType(int typeIndex);
    // A pop-up of the options form, under a label with a mnemonic.
    void addOption(const QString& label, QWidget* widget);
    // A pop-up of the tags of one list kind (1 clients, 2 items) by subtype, `subtype` chosen.
    QComboBox* makeTagPopup(int kind, int subtype);

    // Runs the concrete import over `rows` with the ticked keys in column order.
    virtual std::optional<int> runImport(const QList<QStringList>& rows, const QStringList& columnKeys,
                                         const exchange::ImportProgress& progress) = 0;

    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showRows();
    void rebuildHeader();
    void syncComposeMenu();
    void fieldChosen(QAction* action);

    store::Store& m_store;
    support::Prompter& m_prompter;
    std::unique_ptr<store::EditingContext> m_context;
    exchange::CsvPreview m_preview;
    exchange::ImportFields m_fields;
    QString m_title;
    // An import is running in this window's progress dialog.
    bool m_importing = false;

    QComboBox* m_separatorPopup = nullptr;
    QComboBox* m_encodingPopup = nullptr;
    QToolButton* m_composeButton = nullptr;
    QMenu* m_composeMenu = nullptr;
    QFormLayout* m_options = nullptr;
    QStandardItemModel* m_headerModel = nullptr;
    QHeaderView* m_fieldHeader = nullptr;
    CsvPreviewModel* m_previewModel = nullptr;
    QTableView* m_previewTable = nullptr;
    QLabel* m_countLabel = nullptr;
    QPushButton* m_importButton = nullptr;
    QPushButton* m_cancelButton = nullptr;
};

} // namespace corvanta::ui
