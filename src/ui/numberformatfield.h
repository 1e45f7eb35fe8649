#pragma once

#include <QWidget>

class QHBoxLayout;
class QLineEdit;

namespace corvanta::ui {

// The token field of one number format: the pieces of the format in a row, where the year and
// number tokens are buttons whose menu offers the other forms of the token, and any other piece
// is plain text; below it the whole comma-separated format as editable text.
class NumberFormatField : public QWidget
{
    Q_OBJECT

public:
    explicit NumberFormatField(QWidget* parent = nullptr);

    QString text() const;
    // Shows a format; the text being typed is replaced only when it differs.
    void setText(const QString& format);
    QLineEdit* lineEdit() const { return m_edit; }

Q_SIGNALS:
    // Each keystroke in the text.
    void textEdited(const QString& format);
    // The user left the text or pressed Return.
    void editingFinished();
    // An entry of the menu of the token at `index` (a piece of the comma-separated format).
    void tokenChosen(int index, const QString& entry);

private:
    void showTokens(const QString& format);

    QWidget* m_tokens = nullptr;
    QHBoxLayout* m_tokenLayout = nullptr;
    QLineEdit* m_edit = nullptr;
};

} // namespace corvanta::ui
