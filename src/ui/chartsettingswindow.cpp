#include "chartsettingswindow.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace corvanta::ui {

using browse::ReportPeriod;

namespace {

struct Preset
{
    ReportPeriod period;
    const char* title;
};

// The ranges in the order of the relative dates, from the shortest.
const QList<Preset>& presets()
{
    static const QList<Preset> list{
        {ReportPeriod::Custom, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Custom")},
        {ReportPeriod::Today, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Today")},
        {ReportPeriod::Yesterday, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Yesterday")},
        {ReportPeriod::ThisWeek, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "This Week")},
        {ReportPeriod::LastWeek, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Last Week")},
        {ReportPeriod::LastTwoWeeks,
         QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Last Two Weeks")},
        {ReportPeriod::ThisMonth, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "This Month")},
        {ReportPeriod::LastMonth, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Last Month")},
        {ReportPeriod::LastThreeMonths,
         QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Last Three Months")},
        {ReportPeriod::LastSixMonths,
         QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Last Six Months")},
        {ReportPeriod::ThisYear, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "This Year")},
        {ReportPeriod::LastYear, QT_TRANSLATE_NOOP("corvanta::ui::ChartSettingsWindow", "Last Year")},
    };
    return list;
}

QDateEdit* dateEdit(const QString& name, const QDate& date)
{
    auto* edit = new QDateEdit(date);
    edit->setObjectName(name);
    edit->setCalendarPopup(true);
    edit->setDisplayFormat(QLocale().dateFormat(QLocale::ShortFormat));
    return edit;
}

} // namespace

ChartSettingsWindow::ChartSettingsWindow(const QDate& from, const QDate& to, QWidget* parent,
                                         const QDateTime& now)
    : QDialog(parent)
    , m_now(now)
{
    setObjectName(QStringLiteral("ChartSettingsWindow"));
    setWindowTitle(tr("Chart Settings"));
    setWindowModality(Qt::WindowModal);

    m_presets = new QComboBox;
    m_presets->setObjectName(QStringLiteral("presetPopup"));
    for (const Preset& preset : presets())
        m_presets->addItem(tr(preset.title), int(preset.period));
    m_from = dateEdit(QStringLiteral("fromDate"), from);
    m_to = dateEdit(QStringLiteral("toDate"), to);

    auto* form = new QFormLayout;
    form->addRow(tr("&Period:"), m_presets);
    form->addRow(tr("&From:"), m_from);
    form->addRow(tr("&To:"), m_to);

    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_buttons->setObjectName(QStringLiteral("buttons"));
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(m_presets, &QComboBox::activated, this,
            [this](int index) { choosePreset(ReportPeriod(m_presets->itemData(index).toInt())); });
    connect(m_from, &QDateEdit::dateChanged, this, &ChartSettingsWindow::datesEdited);
    connect(m_to, &QDateEdit::dateChanged, this, &ChartSettingsWindow::datesEdited);
    datesEdited();
    // A range that is one of the presets today shows as that preset.
    for (const Preset& preset : presets()) {
        browse::ReportOptions range;
        range.setDefinedDate(preset.period, m_now);
        if (preset.period != ReportPeriod::Custom && range.fromDate == from && range.toDate == to)
            m_presets->setCurrentIndex(m_presets->findData(int(preset.period)));
    }
}

QDate ChartSettingsWindow::fromDate() const
{
    return m_from->date();
}

QDate ChartSettingsWindow::toDate() const
{
    return m_to->date();
}

void ChartSettingsWindow::choosePreset(ReportPeriod period)
{
    m_presets->setCurrentIndex(m_presets->findData(int(period)));
    if (period == ReportPeriod::Custom)
        return;
    browse::ReportOptions range;
    range.setDefinedDate(period, m_now);
    const QSignalBlocker blockFrom(m_from);
    const QSignalBlocker blockTo(m_to);
    m_from->setDate(range.fromDate);
    m_to->setDate(range.toDate);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(true);
}

void ChartSettingsWindow::datesEdited()
{
    // Dates chosen by hand make the period a custom one; it must not end before it starts.
    m_presets->setCurrentIndex(m_presets->findData(int(ReportPeriod::Custom)));
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(m_from->date() <= m_to->date());
}

} // namespace corvanta::ui
