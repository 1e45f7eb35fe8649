#include "predicateeditorwindow.h"

#include "predicaterowwidget.h"
#include "sheetbuttons.h"
#include "store/record.h"
#include "support/prompter.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

namespace corvanta::ui {

using browse::PredicateRow;
using browse::SmartFolderPredicate;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The part of the screen the rows may take before they scroll.
constexpr double kRowsShareOfScreen = 0.6;

} // namespace

PredicateEditorWindow::PredicateEditorWindow(store::Record* category, support::Prompter& prompter,
                                             QWidget* parentWidget)
    : QDialog(parentWidget)
    , m_category(category)
    , m_prompter(prompter)
    , m_predicate(category)
{
    setObjectName(s("PredicateEditorWindow"));
    setWindowModality(Qt::WindowModal);
    setWindowTitle(category->isInserted() ? tr("New Smart Folder") : tr("Edit Smart Folder"));

    m_nameEdit = new QLineEdit(category->value(s("name")).toString(), this);
    m_nameEdit->setObjectName(s("nameEdit"));
    auto* nameLabel = new QLabel(tr("&Name:"), this);
    nameLabel->setBuddy(m_nameEdit);
    auto* form = new QFormLayout;
    form->addRow(nameLabel, m_nameEdit);

    m_noteLabel = new QLabel(this);
    m_noteLabel->setObjectName(s("noteLabel"));
    m_noteLabel->setWordWrap(true);
    m_noteLabel->hide();
    m_conditionLabel = new QLabel(this);
    m_conditionLabel->setObjectName(s("conditionLabel"));
    m_conditionLabel->setWordWrap(true);
    m_conditionLabel->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_conditionLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_conditionLabel->hide();
    // A note is read in lines of a sensible length, not a narrow column.
    m_noteLabel->setMinimumWidth(fontMetrics().averageCharWidth() * 56);

    m_rowsWidget = new QWidget;
    m_rowsLayout = new QVBoxLayout(m_rowsWidget);
    m_rowsLayout->setContentsMargins(0, 0, 0, 0);
    m_rowsLayout->setSpacing(0);
    m_rowsArea = new QScrollArea(this);
    m_rowsArea->setObjectName(s("rowsArea"));
    m_rowsArea->setFrameShape(QFrame::NoFrame);
    m_rowsArea->setFocusPolicy(Qt::NoFocus);
    m_rowsArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_rowsArea->setWidgetResizable(true);
    m_rowsArea->setWidget(m_rowsWidget);

    const SheetButtons sheetButtons = SheetButtons::make(this);
    m_cancelButton = sheetButtons.cancel;
    m_saveButton = sheetButtons.save;
    connect(m_saveButton, &QPushButton::clicked, this, &PredicateEditorWindow::save);
    QHBoxLayout* buttons = sheetButtons.layout;

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_noteLabel);
    layout->addWidget(m_conditionLabel);
    layout->addWidget(m_rowsArea);
    layout->addStretch(1);
    layout->addLayout(buttons);

    if (m_predicate.isBound()) {
        showRows(m_predicate.root(), {}, {});
        return;
    }
    const QString stored = category->value(s("predicate")).toString();
    if (!m_predicate.openError().isEmpty()) {
        m_noteLabel->setText(tr("This condition cannot be shown as rows and is kept as it is: %1")
                                 .arg(m_predicate.openError()));
    } else {
        m_noteLabel->setText(
            tr("This Smart Folder is kept by the program; its condition cannot be changed."));
    }
    m_noteLabel->show();
    // A system folder's condition is shown as rows when the rows can show it, else as it is stored.
    if (std::optional<PredicateRow> shown = m_predicate.rows().fromText(stored)) {
        showRows(*shown, {}, {});
    } else {
        m_rowsArea->hide();
        m_conditionLabel->setText(stored);
        m_conditionLabel->setVisible(!stored.trimmed().isEmpty());
        updateTabOrder();
    }
}

void PredicateEditorWindow::showRows(const PredicateRow& root, const QList<int>& focusPath,
                                     const QString& focusName)
{
    // The rows are rebuilt from a signal of one of them: the old ones go once it has returned.
    for (PredicateRowWidget* old : std::as_const(m_rowWidgets)) {
        m_rowsLayout->removeWidget(old);
        old->hide();
        old->deleteLater();
    }
    m_rowWidgets.clear();
    addRows(root, {});

    // The operator pop-ups line up as one column.
    int operatorWidth = 0;
    for (PredicateRowWidget* row : std::as_const(m_rowWidgets)) {
        if (auto* operators = row->findChild<QComboBox*>(s("operatorPopup")))
            operatorWidth = qMax(operatorWidth, operators->sizeHint().width());
    }
    for (PredicateRowWidget* row : std::as_const(m_rowWidgets)) {
        if (auto* operators = row->findChild<QComboBox*>(s("operatorPopup")))
            operators->setMinimumWidth(operatorWidth);
    }

    updateSize();
    updateTabOrder();

    for (PredicateRowWidget* row : std::as_const(m_rowWidgets)) {
        // Compared element by element: Qt 6.4 compares two empty lists of ints with a null memcmp.
        const QList<int>& path = row->path();
        if (focusName.isEmpty() || path.size() != focusPath.size() ||
            !std::equal(path.cbegin(), path.cend(), focusPath.cbegin()))
            continue;
        if (auto* control = row->findChild<QWidget*>(focusName); control && control->isEnabled())
            control->setFocus(Qt::OtherFocusReason);
    }
}

void PredicateEditorWindow::addRows(const PredicateRow& row, const QList<int>& path)
{
    auto* widget = new PredicateRowWidget(m_predicate.templates(), row, path, m_rowsWidget);
    widget->setEditable(m_predicate.isBound());
    if (m_predicate.isBound()) {
        widget->setRemovable(canRemove(path));
        connect(widget, &PredicateRowWidget::comparisonEdited, this, &PredicateEditorWindow::editComparison);
        connect(widget, &PredicateRowWidget::compoundKindEdited, this,
                &PredicateEditorWindow::editCompoundKind);
        connect(widget, &PredicateRowWidget::addRequested, this, &PredicateEditorWindow::addRow);
        connect(widget, &PredicateRowWidget::removeRequested, this, &PredicateEditorWindow::removeRow);
    }
    m_rowsLayout->addWidget(widget);
    // Shown at once, not when the layout gets round to it: the rows are there to be used.
    widget->show();
    m_rowWidgets << widget;
    for (qsizetype i = 0; i < row.children.size(); ++i)
        addRows(row.children.at(i), path + QList<int>{int(i)});
}

void PredicateEditorWindow::updateSize()
{
    int height = 0;
    for (PredicateRowWidget* row : std::as_const(m_rowWidgets))
        height = qMax(height, row->sizeHint().height());
    int spacing = style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing, nullptr, this);
    if (spacing < 0)
        spacing = style()->layoutSpacing(QSizePolicy::ComboBox, QSizePolicy::ComboBox, Qt::Vertical);
    m_rowHeight = height + qMax(0, spacing);
    for (PredicateRowWidget* row : std::as_const(m_rowWidgets))
        row->setFixedHeight(m_rowHeight);

    // The sheet grows and shrinks with its rows; only very many rows scroll.
    const int rowsHeight = SmartFolderPredicate::sheetHeight(int(m_rowWidgets.size()), m_rowHeight);
    m_rowsWidget->setFixedHeight(rowsHeight);
    const QScreen* shown = screen();
    const int limit = shown ? int(shown->availableGeometry().height() * kRowsShareOfScreen) : rowsHeight;
    const bool scrolls = rowsHeight > limit;
    const int frame = 2 * m_rowsArea->frameWidth();
    m_rowsArea->setFixedHeight(qMin(rowsHeight, limit) + frame);
    m_rowsArea->setMinimumWidth(m_rowsWidget->sizeHint().width() + frame +
                                (scrolls ? m_rowsArea->verticalScrollBar()->sizeHint().width() : 0));

    layout()->activate();
    resize(qMax(width(), minimumSizeHint().width()), sizeHint().height());
}

void PredicateEditorWindow::updateTabOrder()
{
    QWidget* previous = m_nameEdit;
    for (PredicateRowWidget* row : std::as_const(m_rowWidgets)) {
        for (QWidget* control : row->tabStops()) {
            setTabOrder(previous, control);
            previous = control;
        }
    }
    setTabOrder(previous, m_cancelButton);
    setTabOrder(m_cancelButton, m_saveButton);
}

bool PredicateEditorWindow::canRemove(const QList<int>& path) const
{
    // Asked of a copy: the rows themselves know whether a condition would be left.
    SmartFolderPredicate trial = m_predicate;
    return trial.removeRow(path);
}

void PredicateEditorWindow::rebuild(const QList<int>& focusPath, const QString& focusName)
{
    showRows(m_predicate.root(), focusPath, focusName);
}

void PredicateEditorWindow::editComparison(const QList<int>& path, const PredicateRow& comparison,
                                           bool reshaped)
{
    const PredicateRow* before = m_predicate.row(path);
    const bool fieldChanged = before && before->keyPath != comparison.keyPath;
    if (!m_predicate.replaceRow(path, comparison))
        return;
    if (reshaped || fieldChanged)
        rebuild(path, fieldChanged ? s("fieldPopup") : s("operatorPopup"));
}

void PredicateEditorWindow::editCompoundKind(const QList<int>& path, PredicateRow::Kind kind)
{
    const PredicateRow* current = m_predicate.row(path);
    if (!current)
        return;
    PredicateRow changed = *current;
    changed.kind = kind;
    m_predicate.replaceRow(path, changed);
}

void PredicateEditorWindow::addRow(const QList<int>& path, bool group)
{
    const PredicateRow* at = m_predicate.row(path);
    if (!at)
        return;
    // "+" on a group adds at its end; on a condition, right after it.
    QList<int> parentPath = path;
    int position = -1;
    if (!at->isCompound())
        position = parentPath.takeLast() + 1;
    // A group under "All" is most often an alternative: it starts as "Any".
    const PredicateRow added =
        group ? PredicateRow::compound(PredicateRow::Kind::Any, {m_predicate.rows().defaultRow()})
              : m_predicate.rows().defaultRow();
    if (!m_predicate.insertRow(parentPath, position, added))
        return;
    if (position < 0)
        position = int(m_predicate.row(parentPath)->children.size()) - 1;
    rebuild(parentPath + QList<int>{position}, group ? s("compoundPopup") : s("fieldPopup"));
}

void PredicateEditorWindow::removeRow(const QList<int>& path)
{
    if (!m_predicate.removeRow(path))
        return;
    // The focus goes to the row above, which is where the removed one was added from.
    QList<int> focusPath = path;
    if (focusPath.last() > 0)
        --focusPath.last();
    else
        focusPath.removeLast();
    while (!focusPath.isEmpty() && !m_predicate.row(focusPath))
        focusPath.removeLast();
    rebuild(focusPath, s("addButton"));
}

void PredicateEditorWindow::save()
{
    m_category->setValue(s("name"), m_nameEdit->text());
    QString error;
    if (!m_predicate.save(&error)) {
        m_prompter.alert(tr("Cannot Save"), error, {tr("OK")});
        return;
    }
    accept();
}

} // namespace corvanta::ui
