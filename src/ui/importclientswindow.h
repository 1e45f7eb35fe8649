#pragma once

#include "csvimportwindow.h"

class QComboBox;

namespace corvanta::ui {

// Makes clients of the lines of a delimited text file: the columns go to the ticked client and
// address fields; the client type and the tag the new clients get are chosen on pop-ups.
class ImportClientsWindow : public CsvImportWindow
{
    Q_OBJECT

public:
    ImportClientsWindow(store::Store& store, support::Prompter& prompter, QWidget* parent = nullptr);

protected:
    std::optional<int> runImport(const QList<QStringList>& rows, const QStringList& columnKeys,
                                 const exchange::ImportProgress& progress) override;

private:
    QComboBox* m_typePopup = nullptr;
    QComboBox* m_tagPopup = nullptr;
};

} // namespace corvanta::ui
