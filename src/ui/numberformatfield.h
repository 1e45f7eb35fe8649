#pragma once

#include <QFrame>
#include <QPointer>

class QHBoxLayout;

namespace corvanta::ui {

// The token field of one number format: the pieces of the format in a row, where the year and
// number tokens are buttons whose menu offers the other forms of that token, and any other piece
// is plain text.
class NumberFormatField : public QFrame
{
    Q_OBJECT

public:
    explicit NumberFormatField(QWidget* parent = nullptr);

    QString format() const { return m_format; }
    void setFormat(const QString& format);
    // The widget the token buttons come before when the user tabs through the window.
    void setFollowingWidget(QWidget* widget) { m_following = widget; }

Q_SIGNALS:
    // An entry of the menu of the token at `index` (a piece of the comma-separated format).
    void tokenChosen(int index, const QString& entry);

private:
    QHBoxLayout* m_layout = nullptr;
    QString m_format;
    QPointer<QWidget> m_following;
};

} // namespace corvanta::ui
