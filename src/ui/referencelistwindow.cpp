#include "referencelistwindow.h"

#include "app/commandrules.h"
#include "editors/referencelisteditor.h"
#include "editors/referencelistmodel.h"
#include "mainwindow.h"
#include "referencelistdelegate.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "windowplacement.h"

#include <QAbstractItemDelegate>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <QStyle>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

namespace corvanta::ui {

using editors::ReferenceListEditor;
using editors::ReferenceListModel;
using editors::ReferenceListType;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

app::WindowKind kindOf(ReferenceListType type)
{
    switch (type) {
    case ReferenceListType::Taxes:
        return app::WindowKind::TaxesList;
    case ReferenceListType::Units:
        return app::WindowKind::UnitsList;
    case ReferenceListType::Banks:
        return app::WindowKind::BanksList;
    case ReferenceListType::DueDays:
        return app::WindowKind::DueDaysList;
    case ReferenceListType::PaymentTypes:
        return app::WindowKind::PaymentTypesList;
    case ReferenceListType::Currencies:
        break;
    }
    return app::WindowKind::Other;
}

QToolButton* listButton(const char* icon, const char* mark, const QString& text, const char* name,
                        QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(s(name));
    button->setIcon(QIcon::fromTheme(s(icon)));
    // Without an icon theme the button still says what it does.
    if (button->icon().isNull())
        button->setText(mark ? QString::fromUtf8(mark) : text);
    button->setToolTip(text);
    button->setAccessibleName(text);
    return button;
}

} // namespace

QString ReferenceListWindow::objectNameFor(ReferenceListType type)
{
    switch (type) {
    case ReferenceListType::Taxes:
        return s("ReferenceListWindow_Taxes");
    case ReferenceListType::Units:
        return s("ReferenceListWindow_Units");
    case ReferenceListType::Banks:
        return s("ReferenceListWindow_Banks");
    case ReferenceListType::DueDays:
        return s("ReferenceListWindow_DueDays");
    case ReferenceListType::PaymentTypes:
        return s("ReferenceListWindow_PaymentTypes");
    case ReferenceListType::Currencies:
        break;
    }
    return s("ReferenceListWindow_Currencies");
}

QString ReferenceListWindow::titleFor(ReferenceListType type)
{
    switch (type) {
    case ReferenceListType::Taxes:
        return tr("Taxes");
    case ReferenceListType::Units:
        return tr("Units");
    case ReferenceListType::Banks:
        return tr("Banks");
    case ReferenceListType::DueDays:
        return tr("Due Days");
    case ReferenceListType::PaymentTypes:
        return tr("Payment Types");
    case ReferenceListType::Currencies:
        break;
    }
    return tr("Currencies");
}

ReferenceListWindow::ReferenceListWindow(ReferenceListType type, store::Store& store,
                                         support::Prompter& prompter, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_context(store.newContext())
    , m_editor(std::make_unique<ReferenceListEditor>(type, *m_context, prompter))
{
    setObjectName(objectNameFor(type));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(kindOf(type)));
    setProperty("canAdd", m_editor->list().canAddAndDelete());
    setProperty("selectedRowCount", 0);
    setWindowTitle(titleFor(type));
    setWindowIcon(QIcon::fromTheme(s("view-list-details")));

    m_model = new ReferenceListModel(*m_editor, this);
    m_view = new QTableView(this);
    m_view->setObjectName(s("listView"));
    m_view->setAccessibleName(titleFor(type));
    m_view->setModel(m_model);
    m_view->setItemDelegate(new ReferenceListDelegate(m_view));
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    m_view->setAlternatingRowColors(true);
    m_view->setWordWrap(false);
    m_view->verticalHeader()->hide();
    m_view->verticalHeader()->setDefaultSectionSize(
        fontMetrics().lineSpacing() + 2 * style()->pixelMetric(QStyle::PM_FocusFrameVMargin) + 6);
    QHeaderView* header = m_view->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    // The name takes the room left; for currencies, whose code is short, the sample does.
    const QString widest = type == ReferenceListType::Currencies ? s("sample") : m_editor->list().namingKey();
    for (int column = 0; column < m_model->columnCount(); ++column) {
        if (m_editor->list().columns().at(column).key == widest)
            header->setSectionResizeMode(column, QHeaderView::Stretch);
    }

    m_addButton = listButton("list-add", "+", tr("Add"), "addButton", this);
    m_removeButton = listButton("list-remove", "\u2212", tr("Delete"), "removeButton", this);
    m_duplicateButton = listButton("edit-copy", nullptr, tr("Duplicate"), "duplicateButton", this);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(0);
    buttons->addWidget(m_addButton);
    buttons->addWidget(m_removeButton);
    buttons->addWidget(m_duplicateButton);
    buttons->addStretch(1);
    const bool changeable = m_editor->list().canAddAndDelete();
    m_addButton->setVisible(changeable);
    m_removeButton->setVisible(changeable);
    m_duplicateButton->setVisible(changeable);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_view, 1);
    if (changeable)
        layout->addLayout(buttons);
    else
        delete buttons;

    connect(m_addButton, &QToolButton::clicked, this, &ReferenceListWindow::addRow);
    connect(m_removeButton, &QToolButton::clicked, this, &ReferenceListWindow::deleteRow);
    connect(m_duplicateButton, &QToolButton::clicked, this, &ReferenceListWindow::duplicateRow);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ReferenceListWindow::selectionChanged);
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, &ReferenceListWindow::selectionChanged);
    selectionChanged();

    if (!WindowPlacement::restore(this)) {
        // Wide enough for every column, with room for a dozen rows.
        const int width = header->length() + m_view->verticalScrollBar()->sizeHint().width() +
                          2 * m_view->frameWidth() + fontMetrics().averageCharWidth() * 24;
        resize(std::max(width, fontMetrics().averageCharWidth() * 60), fontMetrics().lineSpacing() * 26);
    }
}

ReferenceListWindow::~ReferenceListWindow()
{
    // The view and the model go before the editor and the context whose records they show.
    delete m_view;
    delete m_model;
}

ReferenceListType ReferenceListWindow::type() const
{
    return m_editor->list().type();
}

Record* ReferenceListWindow::selectedRecord() const
{
    const QModelIndexList rows = m_view->selectionModel()->selectedRows();
    return rows.isEmpty() ? nullptr : m_model->recordAt(rows.first().row());
}

bool ReferenceListWindow::selectRecord(const Record* record)
{
    const QModelIndex index = m_model->indexOf(record, m_model->namingColumn());
    if (!index.isValid())
        return false;
    m_view->setCurrentIndex(index);
    m_view->selectionModel()->select(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_view->scrollTo(index);
    return true;
}

void ReferenceListWindow::editNaming(const Record* record)
{
    if (!selectRecord(record))
        return;
    m_view->setFocus();
    m_view->edit(m_model->indexOf(record, m_model->namingColumn()));
}

void ReferenceListWindow::addRow()
{
    if (Record* record = m_editor->add())
        editNaming(record);
}

void ReferenceListWindow::editRow()
{
    if (const Record* record = selectedRecord())
        editNaming(record);
}

void ReferenceListWindow::duplicateRow()
{
    Record* selected = selectedRecord();
    if (!selected || !m_editor->list().canAddAndDelete())
        return;
    if (Record* copy = m_editor->duplicate({selected}))
        editNaming(copy);
}

void ReferenceListWindow::deleteRow()
{
    Record* selected = selectedRecord();
    if (!selected || !m_editor->list().canAddAndDelete())
        return;
    const int row = m_view->currentIndex().row();
    if (m_editor->remove(selected) && m_model->rowCount() > 0) {
        // The next record takes the deleted one's place in the selection.
        selectRecord(m_model->recordAt(std::min(row, m_model->rowCount() - 1)));
    }
}

void ReferenceListWindow::selectionChanged()
{
    const bool changeable = m_editor->list().canAddAndDelete();
    const int selected = int(m_view->selectionModel()->selectedRows().size());
    setProperty("selectedRowCount", selected);
    m_removeButton->setEnabled(changeable && selected > 0);
    m_duplicateButton->setEnabled(changeable && selected > 0);
}

void ReferenceListWindow::closeEvent(QCloseEvent* event)
{
    // A cell still being edited is committed as leaving it would.
    if (QWidget* editor = m_view->indexWidget(m_view->currentIndex()))
        Q_EMIT m_view->itemDelegate()->commitData(editor);
    WindowPlacement::save(this);
    event->accept();
}

} // namespace corvanta::ui
