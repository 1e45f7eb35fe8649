#pragma once

#include "browse/reportoptions.h"

#include <QDate>
#include <QDateTime>
#include <QDialog>

class QComboBox;
class QDateEdit;
class QDialogButtonBox;

namespace corvanta::ui {

// The period a client's or item's chart sums: a preset of the relative ranges, or two dates
// chosen by hand. A sheet over the detail pane's window.
class ChartSettingsWindow : public QDialog
{
    Q_OBJECT

public:
    // Starts with the range shown now; presets are reckoned from `now`.
    ChartSettingsWindow(const QDate& from, const QDate& to, QWidget* parent = nullptr,
                        const QDateTime& now = QDateTime::currentDateTime());

    QDate fromDate() const;
    QDate toDate() const;
    // Chooses a preset as the pop-up does; Custom keeps the dates.
    void choosePreset(browse::ReportPeriod period);

private:
    void datesEdited();

    QDateTime m_now;
    QComboBox* m_presets = nullptr;
    QDateEdit* m_from = nullptr;
    QDateEdit* m_to = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
};

} // namespace corvanta::ui
