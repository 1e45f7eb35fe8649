#pragma once

#include "csvimportwindow.h"

class QComboBox;

namespace corvanta::ui {

// Makes items of the lines of a delimited text file: the columns go to the ticked item fields;
// the item type, tax, unit and tag every new item gets are chosen on pop-ups.
class ImportItemsWindow : public CsvImportWindow
{
    Q_OBJECT

public:
    ImportItemsWindow(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);

protected:
    std::optional<int> runImport(const QList<QStringList>& rows, const QStringList& columnKeys,
                                 const exchange::ImportProgress& progress) override;

private:
    // The records of `entity` by name, the company's default (under `defaultKey`) first and chosen.
    QComboBox* makeReferencePopup(const char* name, const QString& entity, const QString& defaultKey);

    QComboBox* m_typePopup = nullptr;
    QComboBox* m_taxPopup = nullptr;
    QComboBox* m_unitPopup = nullptr;
    QComboBox* m_tagPopup = nullptr;
};

} // namespace corvanta::ui
