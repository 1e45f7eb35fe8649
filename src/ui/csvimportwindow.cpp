#include "csvimportwindow.h"

#include "app/commandrules.h"
#include "csvpreviewmodel.h"
#include "exchange/csvsplitter.h"
#include "exchange/textdecoder.h"
#include "mainwindow.h"
#include "predicate/literal.h"
#include "store/editingcontext.h"
#include "store/fetchrequest.h"
#include "store/record.h"
#include "store/store.h"
#include "windowplacement.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QProgressDialog>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

namespace corvanta::ui {

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// Every column of the preview and of the field header above it is this wide, so that a field's
// title stands over the column it takes.
constexpr int kColumnWidth = 100;
// The progress dialog lets the window draw and take the Cancel click after this many rows, or
// sooner when this much time went by.
constexpr qsizetype kRowsBetweenEvents = 100;
constexpr qint64 kMillisecondsBetweenEvents = 50;

QString linesText(qsizetype count)
{
    return count == 1 ? CsvImportWindow::tr("1 line")
                      : CsvImportWindow::tr("%1 lines").arg(QLocale().toString(qint64(count)));
}

QString columnsText(qsizetype count)
{
    return count == 1 ? CsvImportWindow::tr("1 column")
                      : CsvImportWindow::tr("%1 columns").arg(QLocale().toString(qint64(count)));
}

} // namespace

CsvImportWindow::CsvImportWindow(store::Store& store, support::Prompter& prompter, const QString& name,
                                 const QString& title, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_store(store)
    , m_prompter(prompter)
    , m_context(store.newContext())
    , m_preview(prompter)
    , m_title(title)
{
    setObjectName(name);
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::Other));
    setWindowIcon(QIcon::fromTheme(s("document-import")));
    setWindowTitle(title);

    m_separatorPopup = new QComboBox(this);
    m_separatorPopup->setObjectName(s("separatorPopup"));
    for (const exchange::CsvSplitter::Separator& separator : exchange::CsvSplitter::separators())
        m_separatorPopup->addItem(separator.title, separator.text);
    m_encodingPopup = new QComboBox(this);
    m_encodingPopup->setObjectName(s("encodingPopup"));
    for (const exchange::TextDecoder::Encoding& encoding : exchange::TextDecoder::encodings())
        m_encodingPopup->addItem(encoding.title, encoding.name);
    m_composeMenu = new QMenu(this);
    m_composeMenu->setObjectName(s("composeMenu"));
    m_composeButton = new QToolButton(this);
    m_composeButton->setObjectName(s("composeButton"));
    m_composeButton->setText(tr("Choose Fields"));
    m_composeButton->setIcon(QIcon::fromTheme(s("view-list-details")));
    m_composeButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_composeButton->setToolTip(tr("The fields the file's columns go to, in column order"));
    m_composeButton->setPopupMode(QToolButton::InstantPopup);
    m_composeButton->setMenu(m_composeMenu);
    m_composeMenu->installEventFilter(this);

    auto* fileForm = new QFormLayout;
    fileForm->addRow(tr("&Separator:"), m_separatorPopup);
    fileForm->addRow(tr("&Encoding:"), m_encodingPopup);
    fileForm->addRow(tr("&Fields:"), m_composeButton);
    m_options = new QFormLayout;
    auto* forms = new QHBoxLayout;
    forms->addLayout(fileForm);
    forms->addSpacing(fontMetrics().averageCharWidth() * 4);
    forms->addLayout(m_options);
    forms->addStretch(1);

    // The titles of the ticked fields, laid over the preview column by column.
    QFont headerFont = font();
    headerFont.setBold(true);
    headerFont.setPointSizeF(headerFont.pointSizeF() * 0.85);
    m_headerModel = new QStandardItemModel(this);
    m_fieldHeader = new QHeaderView(Qt::Horizontal, this);
    m_fieldHeader->setObjectName(s("fieldHeader"));
    m_fieldHeader->setModel(m_headerModel);
    m_fieldHeader->setFont(headerFont);
    m_fieldHeader->setDefaultAlignment(Qt::AlignCenter);
    m_fieldHeader->setSectionResizeMode(QHeaderView::Fixed);
    m_fieldHeader->setDefaultSectionSize(kColumnWidth);
    m_fieldHeader->setFixedHeight(QFontMetrics(headerFont).height() * 3 / 2 + 4);
    m_fieldHeader->setFocusPolicy(Qt::NoFocus);

    m_previewModel = new CsvPreviewModel(this);
    m_previewTable = new QTableView(this);
    m_previewTable->setObjectName(s("previewTable"));
    m_previewTable->setModel(m_previewModel);
    m_previewTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_previewTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_previewTable->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_previewTable->setWordWrap(false);
    m_previewTable->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_previewTable->horizontalHeader()->setDefaultSectionSize(kColumnWidth);
    // Hidden so that the field header starts where the preview's first column does; fixed row
    // heights keep a file of many lines from being measured line by line.
    m_previewTable->verticalHeader()->hide();
    m_previewTable->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_previewTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    connect(m_previewTable->horizontalScrollBar(), &QScrollBar::valueChanged, m_fieldHeader,
            &QHeaderView::setOffset);

    auto* headerRow = new QHBoxLayout;
    const int frame = m_previewTable->frameWidth();
    headerRow->setContentsMargins(frame, 0, frame, 0);
    headerRow->addWidget(m_fieldHeader);
    auto* table = new QVBoxLayout;
    table->setSpacing(0);
    table->addLayout(headerRow);
    table->addWidget(m_previewTable, 1);

    m_countLabel = new QLabel(this);
    m_countLabel->setObjectName(s("countLabel"));
    m_importButton = new QPushButton(QIcon::fromTheme(s("document-import")), tr("Import"), this);
    m_importButton->setObjectName(s("importButton"));
    m_importButton->setDefault(true);
    m_cancelButton = new QPushButton(tr("Cancel"), this);
    m_cancelButton->setObjectName(s("cancelButton"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_countLabel, 1);
    buttons->addWidget(m_cancelButton);
    buttons->addWidget(m_importButton);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(forms);
    layout->addLayout(table, 1);
    layout->addLayout(buttons);

    connect(m_separatorPopup, &QComboBox::activated, this, [this] {
        m_preview.setSeparator(m_separatorPopup->currentData().toString());
        showRows();
    });
    connect(m_encodingPopup, &QComboBox::activated, this, [this] {
        m_preview.setEncoding(m_encodingPopup->currentData().toString());
        showRows();
    });
    connect(m_composeMenu, &QMenu::triggered, this, &CsvImportWindow::fieldChosen);
    connect(m_importButton, &QPushButton::clicked, this, &CsvImportWindow::startImport);
    connect(m_cancelButton, &QPushButton::clicked, this, &QWidget::close);

    showRows();
}

CsvImportWindow::~CsvImportWindow() = default;

void CsvImportWindow::restoreWindowGeometry()
{
    if (!WindowPlacement::restore(this))
        resize(fontMetrics().averageCharWidth() * 120, fontMetrics().height() * 36);
}

bool CsvImportWindow::openFile(const QString& path)
{
    const bool read = m_preview.setPath(path);
    setWindowTitle(QStringLiteral("%1 – %2").arg(m_title, QFileInfo(path).fileName()));
    showRows();
    return read;
}

void CsvImportWindow::showRows()
{
    m_previewModel->setRows(m_preview.rows(), m_preview.columnCount());
    m_countLabel->setText(
        tr("%1, %2").arg(linesText(m_preview.rows().size()), columnsText(m_preview.columnCount())));
    m_importButton->setEnabled(!m_preview.rows().isEmpty());
}

void CsvImportWindow::setFields(const exchange::ImportFields& fields)
{
    m_fields = fields;
    m_composeMenu->clear();
    const QList<exchange::ImportFields::Field>& list = m_fields.fields();
    for (qsizetype index = 0; index < list.size(); ++index) {
        QAction* action = m_composeMenu->addAction(list.at(index).title);
        action->setObjectName(list.at(index).key);
        action->setData(qint64(index));
        action->setCheckable(true);
    }
    syncComposeMenu();
}

void CsvImportWindow::retickForClientType(int typeIndex)
{
    m_fields.clientTypeChanged(typeIndex);
    syncComposeMenu();
}

void CsvImportWindow::fieldChosen(QAction* action)
{
    m_fields.toggle(action->data().toLongLong());
    syncComposeMenu();
}

void CsvImportWindow::syncComposeMenu()
{
    const QList<QAction*> actions = m_composeMenu->actions();
    for (QAction* action : actions)
        action->setChecked(m_fields.fields().at(action->data().toLongLong()).ticked);
    rebuildHeader();
}

void CsvImportWindow::rebuildHeader()
{
    const QList<exchange::ImportFields::HeaderColumn> header = m_fields.header();
    m_headerModel->clear();
    m_headerModel->setColumnCount(int(header.size()));
    for (int column = 0; column < header.size(); ++column) {
        auto* item = new QStandardItem(header.at(column).title);
        item->setData(header.at(column).identifier, Qt::UserRole);
        item->setToolTip(header.at(column).title);
        m_headerModel->setHorizontalHeaderItem(column, item);
    }
    m_fieldHeader->setOffset(m_previewTable->horizontalScrollBar()->value());
}

void CsvImportWindow::addOption(const QString& label, QWidget* widget)
{
    m_options->addRow(label, widget);
}

QComboBox* CsvImportWindow::makeTagPopup(int kind, int subtype)
{
    auto* popup = new QComboBox(this);
    popup->setObjectName(s("tagPopup"));
    const QList<store::Record*> tags = m_context->fetch(store::FetchRequest(
        s("Categories"), predicate::literal("type == %ld && subtype >= 0", {qint64(kind)}),
        {store::SortDescriptor{s("subtype")}}));
    for (const store::Record* tag : tags) {
        popup->addItem(tag->value(s("name")).toString(), tag->value(s("subtype")).toLongLong());
        if (tag->value(s("subtype")).toLongLong() == subtype)
            popup->setCurrentIndex(popup->count() - 1);
    }
    return popup;
}

void CsvImportWindow::startImport()
{
    const QList<QStringList> rows = m_preview.rows();
    QProgressDialog progress(tr("Importing %1…").arg(linesText(rows.size())), tr("Cancel"), 0,
                             int(rows.size()), this);
    progress.setObjectName(s("importProgress"));
    progress.setWindowTitle(m_title);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    progress.setAutoClose(false);
    progress.setAutoReset(false);
    QElapsedTimer sinceEvents;
    sinceEvents.start();
    const exchange::ImportProgress told = [&](qsizetype done, qsizetype total) {
        if (done == 1 || done == total || done % kRowsBetweenEvents == 0 ||
            sinceEvents.elapsed() >= kMillisecondsBetweenEvents) {
            progress.setValue(int(done));
            QCoreApplication::processEvents();
            sinceEvents.restart();
        }
        if (progress.wasCanceled())
            return false;
        // After the last line the records are stored in one go, which cannot be stopped half way.
        if (done == total) {
            progress.setCancelButton(nullptr);
            progress.setLabelText(tr("Saving…"));
            QCoreApplication::processEvents();
        }
        return true;
    };
    m_importButton->setEnabled(false);
    const std::optional<int> added = [&] {
        QScopedValueRollback importing(m_importing, true);
        return runImport(rows, m_fields.tickedKeys(), told);
    }();
    progress.close();
    m_importButton->setEnabled(true);
    if (added)
        close();
}

bool CsvImportWindow::eventFilter(QObject* watched, QEvent* event)
{
    // A click on a field ticks it and leaves the pop-up open, so that several fields are chosen
    // in one go; Return and Escape still close it.
    if (watched == m_composeMenu && event->type() == QEvent::MouseButtonRelease) {
        if (QAction* action = m_composeMenu->activeAction(); action && action->isEnabled()) {
            action->trigger();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void CsvImportWindow::closeEvent(QCloseEvent* event)
{
    // The import runs inside this window's progress dialog: the window stays until it is over
    // (its Cancel stops it).
    if (m_importing) {
        event->ignore();
        return;
    }
    WindowPlacement::save(this);
    QWidget::closeEvent(event);
}

} // namespace corvanta::ui
