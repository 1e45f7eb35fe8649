#include "todoeditorwindow.h"

#include "app/commandrules.h"
#include "editors/todocontroller.h"
#include "mainwindow.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "tagspopover.h"
#include "tasks/recurrence.h"
#include "windowplacement.h"

#include <QAbstractItemView>
#include <QAbstractProxyModel>
#include <QCheckBox>
#include <QCloseEvent>
#include <QColorDialog>
#include <QComboBox>
#include <QCompleter>
#include <QDateEdit>
#include <QDateTimeEdit>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStringListModel>
#include <QToolButton>
#include <QVBoxLayout>

namespace corvanta::ui {

using editors::ToDoController;
using store::Record;
using tasks::Recurrence;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// Set on a client or item field while its text is typed and not yet linked.
constexpr const char* kTypedProperty = "corvantaTyped";

// The locale's name of a weekday numbered 1 Sunday … 7 Saturday.
QString weekdayName(int number, QLocale::FormatType format)
{
    return QLocale().dayName(number == 1 ? 7 : number - 1, format);
}

// Shows `value` in a date or date-and-time edit without a signal, and only when it differs, so
// that a field being typed in keeps its cursor.
template <typename Edit, typename Value>
void showValue(Edit* edit, const Value& value)
{
    const QSignalBlocker blocker(edit);
    if constexpr (std::is_same_v<Value, QDate>) {
        if (edit->date() != value)
            edit->setDate(value);
    } else {
        if (edit->dateTime() != value)
            edit->setDateTime(value);
    }
}

} // namespace

// Like every editor it is given the open document editors; a to-do goes into no document.
ToDoEditorWindow::ToDoEditorWindow(store::Store& store, support::Prompter& prompter,
                                   OpenEditors& /*openEditors*/, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_controller(std::make_unique<ToDoController>(store, prompter))
{
    setObjectName(s("ToDoEditorWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(MainWindow::windowKindProperty(), int(app::WindowKind::ToDoEditor));
    setWindowIcon(QIcon::fromTheme(s("view-task")));

    buildForm();

    connect(m_controller.get(), &ToDoController::editedChanged, this, &QWidget::setWindowModified);
    connect(m_controller.get(), &ToDoController::closeRequested, this, &QWidget::close);

    if (!WindowPlacement::restore(this))
        resize(sizeHint().expandedTo(QSize(fontMetrics().averageCharWidth() * 64, 0)));
    refreshTitle();
}

ToDoEditorWindow::~ToDoEditorWindow() = default;

Record* ToDoEditorWindow::todo() const
{
    return m_controller->todo();
}

void ToDoEditorWindow::buildForm()
{
    m_titleEdit = new QLineEdit(this);
    m_titleEdit->setObjectName(s("titleEdit"));
    m_titleEdit->setPlaceholderText(tr("New To-Do"));
    connect(m_titleEdit, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_controller->setValue(s("title"), text);
        refreshTitle();
    });

    m_allDayCheck = new QCheckBox(tr("&All day"), this);
    m_allDayCheck->setObjectName(s("allDayCheck"));
    connect(m_allDayCheck, &QCheckBox::toggled, this, [this](bool on) {
        m_controller->setAllDay(on);
        refresh();
    });

    m_startEdit = new QDateTimeEdit(this);
    m_startEdit->setObjectName(s("startEdit"));
    m_startEdit->setCalendarPopup(true);
    connect(m_startEdit, &QDateTimeEdit::dateTimeChanged, this, [this](const QDateTime& start) {
        m_controller->setStart(start);
        refresh();
    });
    m_endEdit = new QDateTimeEdit(this);
    m_endEdit->setObjectName(s("endEdit"));
    m_endEdit->setCalendarPopup(true);
    connect(m_endEdit, &QDateTimeEdit::dateTimeChanged, this, [this](const QDateTime& end) {
        m_controller->setEnd(end);
        refresh();
    });

    m_clientEdit = new QLineEdit(this);
    m_clientEdit->setObjectName(s("clientEdit"));
    m_clientEdit->setPlaceholderText(tr("No client"));
    m_clientEdit->setClearButtonEnabled(true);
    setUpSuggestions(m_clientEdit, m_clientCompleter, m_clientNames, true);
    m_itemEdit = new QLineEdit(this);
    m_itemEdit->setObjectName(s("itemEdit"));
    m_itemEdit->setPlaceholderText(tr("No item"));
    m_itemEdit->setClearButtonEnabled(true);
    setUpSuggestions(m_itemEdit, m_itemCompleter, m_itemNames, false);

    m_backgroundButton = makeColorButton("backgroundColorButton", tr("Choose Background Color"));
    m_foregroundButton = makeColorButton("fontColorButton", tr("Choose Font Color"));
    connect(m_backgroundButton, &QToolButton::clicked, this,
            [this] { chooseColor("background_color", tr("Background Color")); });
    connect(m_foregroundButton, &QToolButton::clicked, this,
            [this] { chooseColor("foreground_color", tr("Font Color")); });
    auto* colours = new QHBoxLayout;
    colours->addWidget(m_backgroundButton);
    auto* foregroundLabel = new QLabel(tr("Te&xt:"), this);
    foregroundLabel->setBuddy(m_foregroundButton);
    colours->addSpacing(style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing, nullptr, this));
    colours->addWidget(foregroundLabel);
    colours->addWidget(m_foregroundButton);
    colours->addStretch(1);

    m_doneCheck = new QCheckBox(tr("&Done"), this);
    m_doneCheck->setObjectName(s("doneCheck"));
    connect(m_doneCheck, &QCheckBox::toggled, this, [this](bool done) {
        m_controller->setDone(done);
        refresh();
    });

    m_form = new QFormLayout;
    const auto addRow = [this](const QString& label, QWidget* field, QLayout* layout = nullptr) {
        auto* text = new QLabel(label, this);
        text->setBuddy(field);
        if (layout)
            m_form->addRow(text, layout);
        else
            m_form->addRow(text, field);
    };
    addRow(tr("&Title:"), m_titleEdit);
    m_form->addRow(QString(), m_allDayCheck);
    addRow(tr("&Starts:"), m_startEdit);
    addRow(tr("&Ends:"), m_endEdit);
    addRow(tr("&Client:"), m_clientEdit);
    addRow(tr("&Item:"), m_itemEdit);
    addRow(tr("&Background:"), m_backgroundButton, colours);
    m_form->addRow(QString(), m_doneCheck);

    // Built in reading order, which is the order of the keyboard focus.
    QWidget* recurrence = buildRecurrence();

    m_notesEdit = new QPlainTextEdit(this);
    m_notesEdit->setObjectName(s("notesEdit"));
    m_notesEdit->setTabChangesFocus(true);
    m_notesEdit->setMinimumHeight(fontMetrics().lineSpacing() * 4);
    connect(m_notesEdit, &QPlainTextEdit::textChanged, this,
            [this] { m_controller->setValue(s("desc"), m_notesEdit->toPlainText()); });

    auto* notesLabel = new QLabel(tr("&Notes:"), this);
    notesLabel->setBuddy(m_notesEdit);

    m_tagsButton = new QPushButton(QIcon::fromTheme(s("tag")), tr("Ta&gs…"), this);
    m_tagsButton->setObjectName(s("tagsButton"));
    m_tagsButton->setToolTip(tr("Choose the to-do's tags"));
    m_tagsButton->setAutoDefault(false);
    connect(m_tagsButton, &QPushButton::clicked, this, &ToDoEditorWindow::showTags);
    m_saveButton = new QPushButton(QIcon::fromTheme(s("document-save")), tr("Save"), this);
    m_saveButton->setObjectName(s("saveButton"));
    m_saveButton->setDefault(true);
    connect(m_saveButton, &QPushButton::clicked, this, [this] {
        finishEditing();
        m_controller->save(ToDoController::Sender::Control);
    });
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_tagsButton);
    buttons->addStretch(1);
    buttons->addWidget(m_saveButton);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(m_form);
    layout->addWidget(recurrence);
    layout->addWidget(notesLabel);
    layout->addWidget(m_notesEdit, 1);
    layout->addLayout(buttons);
}

QWidget* ToDoEditorWindow::buildRecurrence()
{
    auto* group = new QGroupBox(tr("Recurrence"), this);
    group->setObjectName(s("repeatGroup"));

    m_repeatPopup = new QComboBox(group);
    m_repeatPopup->setObjectName(s("repeatPopup"));
    m_repeatPopup->addItem(tr("None"), 0);
    m_repeatPopup->addItem(tr("Daily"), int(Recurrence::Daily));
    m_repeatPopup->addItem(tr("Weekly"), int(Recurrence::Weekly));
    m_repeatPopup->addItem(tr("Monthly"), int(Recurrence::Monthly));
    m_repeatPopup->addItem(tr("Yearly"), int(Recurrence::Yearly));
    connect(m_repeatPopup, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_controller->setRepeatType(m_repeatPopup->itemData(index).toInt());
        refresh();
    });

    m_frequencySpin = new QSpinBox(group);
    m_frequencySpin->setObjectName(s("frequencySpin"));
    m_frequencySpin->setRange(1, 999);
    connect(m_frequencySpin, &QSpinBox::valueChanged, this, [this](int frequency) {
        m_controller->setRepeatFrequency(frequency);
        refresh();
    });
    m_frequencyUnit = new QLabel(group);
    m_frequencyUnit->setObjectName(s("frequencyUnitLabel"));
    m_frequencyRow = new QWidget(group);
    auto* frequency = new QHBoxLayout(m_frequencyRow);
    frequency->setContentsMargins(0, 0, 0, 0);
    frequency->addWidget(m_frequencySpin);
    frequency->addWidget(m_frequencyUnit);
    frequency->addStretch(1);

    // The week as the user's locale starts it; each button stands for its weekday number.
    m_weekdayRow = new QWidget(group);
    auto* weekdays = new QHBoxLayout(m_weekdayRow);
    weekdays->setContentsMargins(0, 0, 0, 0);
    weekdays->setSpacing(0);
    const int first = QLocale().firstDayOfWeek();
    for (int i = 0; i < 7; ++i) {
        const int qtDay = (first - 1 + i) % 7 + 1; // 1 Monday … 7 Sunday
        const int number = qtDay % 7 + 1;          // 1 Sunday … 7 Saturday
        auto* button = new QToolButton(m_weekdayRow);
        button->setObjectName(s("weekday%1").arg(number));
        button->setText(weekdayName(number, QLocale::ShortFormat));
        button->setToolTip(weekdayName(number, QLocale::LongFormat));
        button->setAccessibleName(weekdayName(number, QLocale::LongFormat));
        button->setCheckable(true);
        button->setFocusPolicy(Qt::StrongFocus);
        button->setProperty("weekday", number);
        button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        connect(button, &QToolButton::toggled, this, [this, number](bool on) {
            m_controller->setRepeatWeekday(number, on);
            refresh();
        });
        weekdays->addWidget(button);
        m_weekdayButtons << button;
    }
    weekdays->addStretch(1);

    m_monthlyRow = new QWidget(group);
    auto* monthly = new QVBoxLayout(m_monthlyRow);
    monthly->setContentsMargins(0, 0, 0, 0);
    m_byDayRadio = new QRadioButton(m_monthlyRow);
    m_byDayRadio->setObjectName(s("byDayRadio"));
    m_byWeekdayRadio = new QRadioButton(m_monthlyRow);
    m_byWeekdayRadio->setObjectName(s("byWeekdayRadio"));
    monthly->addWidget(m_byDayRadio);
    monthly->addWidget(m_byWeekdayRadio);
    connect(m_byWeekdayRadio, &QRadioButton::toggled, this, [this](bool byWeekday) {
        m_controller->setRepeatByWeekday(byWeekday);
        refresh();
    });

    m_endPopup = new QComboBox(group);
    m_endPopup->setObjectName(s("endPopup"));
    m_endPopup->addItem(tr("Never"), 0);
    m_endPopup->addItem(tr("After"), 1);
    m_endPopup->addItem(tr("On Date"), 2);
    connect(m_endPopup, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_controller->setRepeatEndType(m_endPopup->itemData(index).toInt());
        refresh();
    });
    m_occurrencesSpin = new QSpinBox(group);
    m_occurrencesSpin->setObjectName(s("occurrencesSpin"));
    m_occurrencesSpin->setRange(1, 9999);
    m_occurrencesSpin->setAccessibleName(tr("Occurrences"));
    connect(m_occurrencesSpin, &QSpinBox::valueChanged, this, [this](int occurrences) {
        m_controller->setRepeatOccurrences(occurrences);
        refresh();
    });
    m_occurrencesUnit = new QLabel(group);
    m_endDateEdit = new QDateEdit(group);
    m_endDateEdit->setObjectName(s("endDateEdit"));
    m_endDateEdit->setCalendarPopup(true);
    m_endDateEdit->setAccessibleName(tr("End date"));
    connect(m_endDateEdit, &QDateEdit::dateChanged, this, [this](const QDate& date) {
        m_controller->setRepeatEndDate(date);
        refresh();
    });
    m_endRow = new QWidget(group);
    auto* end = new QHBoxLayout(m_endRow);
    end->setContentsMargins(0, 0, 0, 0);
    end->addWidget(m_endPopup);
    end->addWidget(m_occurrencesSpin);
    end->addWidget(m_occurrencesUnit);
    end->addWidget(m_endDateEdit);
    end->addStretch(1);

    m_summaryLabel = new QLabel(group);
    m_summaryLabel->setObjectName(s("summaryLabel"));
    m_summaryLabel->setWordWrap(true);
    m_summaryLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont italic = m_summaryLabel->font();
    italic.setItalic(true);
    m_summaryLabel->setFont(italic);

    m_repeatForm = new QFormLayout(group);
    const auto addRow = [this, group](const QString& label, QWidget* buddy, QWidget* field) {
        auto* text = new QLabel(label, group);
        text->setBuddy(buddy);
        m_repeatForm->addRow(text, field);
    };
    addRow(tr("&Repeat:"), m_repeatPopup, m_repeatPopup);
    addRow(tr("E&very:"), m_frequencySpin, m_frequencyRow);
    addRow(tr("&On:"), m_weekdayButtons.constFirst(), m_weekdayRow);
    addRow(tr("B&y:"), m_byDayRadio, m_monthlyRow);
    addRow(tr("Sto&ps:"), m_endPopup, m_endRow);
    m_repeatForm->addRow(QString(), m_summaryLabel);
    return group;
}

QToolButton* ToDoEditorWindow::makeColorButton(const char* name, const QString& toolTip)
{
    auto* button = new QToolButton(this);
    button->setObjectName(s(name));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setFocusPolicy(Qt::StrongFocus);
    const int height = fontMetrics().height();
    button->setIconSize(QSize(height * 3, height));
    return button;
}

void ToDoEditorWindow::chooseColor(const char* key, const QString& title)
{
    if (!todo())
        return;
    const QColor before = todo()->value(s(key)).value<QColor>();
    auto* dialog = new QColorDialog(before.isValid() ? before : Qt::white, this);
    dialog->setObjectName(s("colorDialog"));
    dialog->setWindowTitle(title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    connect(dialog, &QColorDialog::colorSelected, this, [this, key](const QColor& colour) {
        m_controller->setValue(s(key), colour);
        refresh();
    });
    dialog->open();
}

void ToDoEditorWindow::setUpSuggestions(QLineEdit* edit, QCompleter*& completer, QStringListModel*& names,
                                        bool client)
{
    names = new QStringListModel(this);
    completer = new QCompleter(names, this);
    completer->setObjectName(client ? s("clientCompleter") : s("itemCompleter"));
    // The controller already picked what contains the typed text.
    completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    edit->setCompleter(completer);
    connect(edit, &QLineEdit::textEdited, this, [this, edit, client](const QString& text) {
        edit->setProperty(kTypedProperty, true);
        suggest(client, text);
    });
    // The suggestions' list taking the focus does not end the typing.
    connect(edit, &QLineEdit::editingFinished, this, [this, client, completer] {
        if (!completer->popup()->isVisible())
            linkTyped(client);
    });
    // A suggestion picked from the list is its own record, also when another has the same name.
    connect(completer, qOverload<const QModelIndex&>(&QCompleter::activated), this,
            [this, client, completer, edit](const QModelIndex& index) {
                const auto* proxy = qobject_cast<const QAbstractProxyModel*>(completer->completionModel());
                const int row = proxy ? proxy->mapToSource(index).row() : index.row();
                const QList<Record*>& suggestions = client ? m_clientSuggestions : m_itemSuggestions;
                if (row < 0 || row >= suggestions.size())
                    return;
                edit->setProperty(kTypedProperty, false);
                if (client)
                    m_controller->setClient(suggestions.at(row));
                else
                    m_controller->setItem(suggestions.at(row));
                refresh();
            });
}

void ToDoEditorWindow::suggest(bool client, const QString& text)
{
    QList<Record*>& suggestions = client ? m_clientSuggestions : m_itemSuggestions;
    suggestions = text.isEmpty() ? QList<Record*>()
                  : client       ? m_controller->clientSuggestions(text)
                                 : m_controller->itemSuggestions(text);
    QStringList names;
    for (const Record* record : std::as_const(suggestions))
        names << record->value(client ? s("full_name") : s("name")).toString();
    (client ? m_clientNames : m_itemNames)->setStringList(names);
    if (!names.isEmpty())
        (client ? m_clientCompleter : m_itemCompleter)->complete();
}

// The typed name links the one client or item of that name; an empty field unlinks, and a name
// that matches none goes back to the linked one.
void ToDoEditorWindow::linkTyped(bool client)
{
    if (!todo())
        return;
    QLineEdit* edit = client ? m_clientEdit : m_itemEdit;
    const QString key = client ? s("client") : s("item");
    const QString nameKey = client ? s("full_name") : s("name");
    const QString text = edit->text().trimmed();
    edit->setProperty(kTypedProperty, false);
    const Record* linked = todo()->related(key);
    if (linked && linked->value(nameKey).toString() == text)
        return;
    Record* chosen = nullptr;
    if (!text.isEmpty()) {
        chosen = client ? m_controller->clientNamed(text) : m_controller->itemNamed(text);
        if (!chosen) {
            const QSignalBlocker blocker(edit);
            edit->setText(linked ? linked->value(nameKey).toString() : QString());
            return;
        }
    }
    if (client)
        m_controller->setClient(chosen);
    else
        m_controller->setItem(chosen);
    refresh();
}

void ToDoEditorWindow::showTags()
{
    Record* record = todo();
    if (!record)
        return;
    auto* popover = new TagsPopover(record, this);
    popover->setObjectName(s("TagsPopover"));
    popover->setAttribute(Qt::WA_DeleteOnClose);
    connect(popover, &TagsPopover::tagsChanged, m_controller.get(), &ToDoController::markEdited);
    popover->showUnder(m_tagsButton);
}

void ToDoEditorWindow::finishEditing()
{
    linkTyped(true);
    linkTyped(false);
}

bool ToDoEditorWindow::newToDo(const QDateTime& start)
{
    m_controller->newToDo(start);
    refresh();
    m_titleEdit->setFocus(Qt::OtherFocusReason);
    return todo() != nullptr;
}

bool ToDoEditorWindow::openToDo(const predicate::RecordRef& ref)
{
    if (!m_controller->openToDo(ref))
        return false;
    refresh();
    return true;
}

void ToDoEditorWindow::save()
{
    finishEditing();
    m_controller->save(ToDoController::Sender::None);
    refresh();
}

void ToDoEditorWindow::closeEvent(QCloseEvent* event)
{
    finishEditing();
    if (m_controller->windowShouldClose() == ToDoController::CloseAnswer::KeepOpen) {
        event->ignore();
        return;
    }
    WindowPlacement::save(this);
    event->accept();
}

void ToDoEditorWindow::refreshTitle()
{
    const QString title = todo() ? todo()->value(s("title")).toString() : QString();
    setWindowTitle((title.isEmpty() ? tr("New To-Do") : title) + s("[*]"));
    setWindowModified(m_controller->isEdited());
}

// Shows the to-do as it is now: what a control changed may have moved others (the end with the
// start, a weekday kept, the summary).
void ToDoEditorWindow::refresh()
{
    const Record* record = todo();
    setEnabled(record != nullptr);
    refreshTitle();
    if (!record)
        return;
    const auto value = [record](const char* key) { return record->value(s(key)); };

    if (m_titleEdit->text() != value("title").toString()) {
        const QSignalBlocker blocker(m_titleEdit);
        m_titleEdit->setText(value("title").toString());
    }
    const bool allDay = value("all_day").toBool();
    {
        const QSignalBlocker blocker(m_allDayCheck);
        m_allDayCheck->setChecked(allDay);
    }
    const QLocale locale;
    const QString format =
        allDay ? locale.dateFormat(QLocale::ShortFormat) : locale.dateTimeFormat(QLocale::ShortFormat);
    for (QDateTimeEdit* edit : {m_startEdit, m_endEdit}) {
        if (edit->displayFormat() != format) {
            const QSignalBlocker blocker(edit);
            edit->setDisplayFormat(format);
        }
    }
    const QDateTime start = value("date_start").toDateTime().toLocalTime();
    showValue(m_startEdit, start);
    showValue(m_endEdit, value("date_end").toDateTime().toLocalTime());

    const auto showLink = [](QLineEdit* edit, const Record* linked, const char* nameKey) {
        const QString name = linked ? linked->value(s(nameKey)).toString() : QString();
        if (edit->text() != name && !edit->property(kTypedProperty).toBool()) {
            const QSignalBlocker blocker(edit);
            edit->setText(name);
        }
    };
    showLink(m_clientEdit, record->related(s("client")), "full_name");
    showLink(m_itemEdit, record->related(s("item")), "name");

    const auto swatch = [this](QToolButton* button, const QColor& colour) {
        QPixmap pixmap(button->iconSize() * devicePixelRatio());
        pixmap.setDevicePixelRatio(devicePixelRatio());
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setPen(palette().color(QPalette::Mid));
        if (colour.isValid())
            painter.setBrush(colour);
        painter.drawRect(QRect(QPoint(0, 0), button->iconSize() - QSize(1, 1)));
        painter.end();
        button->setIcon(QIcon(pixmap));
        // The colour in words too, for whoever cannot see the swatch.
        button->setAccessibleDescription(colour.isValid() ? colour.name().toUpper() : tr("None"));
    };
    swatch(m_backgroundButton, value("background_color").value<QColor>());
    swatch(m_foregroundButton, value("foreground_color").value<QColor>());
    {
        const QSignalBlocker blocker(m_doneCheck);
        m_doneCheck->setChecked(value("done").toBool());
    }
    if (m_notesEdit->toPlainText() != value("desc").toString()) {
        const QSignalBlocker blocker(m_notesEdit);
        m_notesEdit->setPlainText(value("desc").toString());
    }

    // The recurrence, with the rows of the chosen kind only.
    const int type = int(value("repeat_type").toLongLong());
    {
        const QSignalBlocker blocker(m_repeatPopup);
        m_repeatPopup->setCurrentIndex(std::max(0, m_repeatPopup->findData(type)));
    }
    const int frequency = int(std::max<qint64>(1, value("repeat_frequency").toLongLong()));
    {
        const QSignalBlocker blocker(m_frequencySpin);
        m_frequencySpin->setValue(frequency);
    }
    const bool one = frequency == 1;
    switch (type) {
    case Recurrence::Daily:
        m_frequencyUnit->setText(one ? tr("day") : tr("days"));
        break;
    case Recurrence::Weekly:
        m_frequencyUnit->setText(one ? tr("week") : tr("weeks"));
        break;
    case Recurrence::Monthly:
        m_frequencyUnit->setText(one ? tr("month") : tr("months"));
        break;
    default:
        m_frequencyUnit->setText(one ? tr("year") : tr("years"));
        break;
    }
    const QList<int> weekdays = m_controller->repeatWeekdays();
    for (QToolButton* button : std::as_const(m_weekdayButtons)) {
        const QSignalBlocker blocker(button);
        button->setChecked(weekdays.contains(button->property("weekday").toInt()));
    }
    const QDate startDate = start.date();
    if (startDate.isValid()) {
        static const char* const ordinals[] = {QT_TR_NOOP("first"), QT_TR_NOOP("second"), QT_TR_NOOP("third"),
                                               QT_TR_NOOP("fourth"), QT_TR_NOOP("last")};
        m_byDayRadio->setText(tr("Day %1 of the month").arg(startDate.day()));
        m_byWeekdayRadio->setText(
            tr("The %1 %2 of the month")
                .arg(tr(ordinals[Recurrence::weekdayOrdinal(startDate) - 1]),
                     weekdayName(Recurrence::weekdayNumber(startDate), QLocale::LongFormat)));
    }
    {
        const QSignalBlocker dayBlocker(m_byDayRadio);
        const QSignalBlocker weekdayBlocker(m_byWeekdayRadio);
        const bool byWeekday = value("repeat_monthly_day_of").toLongLong() != 0;
        (byWeekday ? m_byWeekdayRadio : m_byDayRadio)->setChecked(true);
    }
    const int endType = int(value("repeat_end_type").toLongLong());
    {
        const QSignalBlocker blocker(m_endPopup);
        m_endPopup->setCurrentIndex(endType == 1 || endType == 2 ? endType : 0);
    }
    {
        const QSignalBlocker blocker(m_occurrencesSpin);
        m_occurrencesSpin->setValue(int(std::max<qint64>(1, value("repeat_occurrences").toLongLong())));
    }
    m_occurrencesUnit->setText(m_occurrencesSpin->value() == 1 ? tr("time") : tr("times"));
    if (!value("repeat_end_date").isNull())
        showValue(m_endDateEdit, value("repeat_end_date").toDateTime().toLocalTime().date());

    const bool recurs = type >= Recurrence::Daily && type <= Recurrence::Yearly;
    m_repeatForm->setRowVisible(m_frequencyRow, recurs);
    m_repeatForm->setRowVisible(m_weekdayRow, type == Recurrence::Weekly);
    m_repeatForm->setRowVisible(m_monthlyRow, type == Recurrence::Monthly);
    m_repeatForm->setRowVisible(m_endRow, recurs);
    m_occurrencesSpin->setVisible(endType == 1);
    m_occurrencesUnit->setVisible(endType == 1);
    m_endDateEdit->setVisible(endType == 2);
    // The record keeps its own summary in step with its values; the label only reads it.
    m_summaryLabel->setText(value("repeat_summary").toString());
    m_repeatForm->setRowVisible(m_summaryLabel, recurs);
}

} // namespace corvanta::ui
