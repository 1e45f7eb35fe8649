#include "ui/dialogprompter.h"

#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace corvanta::ui;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

} // namespace

// The questions of the core as message boxes: the exact title, text and buttons, the action
// button answering Return and "Cancel" answering Escape.
class TestDialogPrompter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keys_data();
    void keys();
    void showsTheExactTexts();
    void askText_data();
    void askText();
};

void TestDialogPrompter::keys_data()
{
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("answer");

    const QStringList deleteClient{s("Delete Client"), s("Cancel")};
    const QStringList cancelInvoice{s("Cancel Invoice"), s("Don't Cancel")};
    QTest::newRow("Return deletes") << deleteClient << int(Qt::Key_Return) << s("Delete Client");
    QTest::newRow("Escape cancels") << deleteClient << int(Qt::Key_Escape) << s("Cancel");
    QTest::newRow("Return cancels the invoice")
        << cancelInvoice << int(Qt::Key_Return) << s("Cancel Invoice");
    QTest::newRow("Escape keeps the invoice") << cancelInvoice << int(Qt::Key_Escape) << s("Don't Cancel");
    QTest::newRow("Escape on a lone OK") << QStringList{s("OK")} << int(Qt::Key_Escape) << s("OK");
}

void TestDialogPrompter::keys()
{
    QFETCH(QStringList, buttons);
    QFETCH(int, key);
    QFETCH(QString, answer);

    QTimer::singleShot(0, [key] {
        QTRY_VERIFY(qobject_cast<QMessageBox*>(QApplication::activeModalWidget()));
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key(key));
    });
    DialogPrompter prompter;
    QCOMPARE(prompter.alert(s("Question"), s("Text"), buttons), answer);
}

void TestDialogPrompter::showsTheExactTexts()
{
    QString title;
    QString text;
    QStringList buttons;
    QTimer::singleShot(0, [&] {
        QTRY_VERIFY(qobject_cast<QMessageBox*>(QApplication::activeModalWidget()));
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        title = box->windowTitle();
        auto* label = box->findChild<QLabel*>(s("qt_msgbox_informativelabel"));
        text = label->textFormat() == Qt::PlainText ? label->text() : s("(not plain text)");
        for (QAbstractButton* button : box->buttons())
            buttons << button->text();
        box->buttons().constFirst()->click();
    });
    DialogPrompter prompter;
    prompter.alert(s("Delete the group \"A & <B>\"?"),
                   s("Included: <i>x</i> & y, \n\nThis action cannot be undone."),
                   {s("Delete Group"), s("Cancel")});
    QCOMPARE(title, s("Delete the group \"A & <B>\"?"));
    // The text is shown as written, markup characters and all, its line breaks kept.
    QCOMPARE(text, s("Included: <i>x</i> & y, \n\nThis action cannot be undone."));
    QVERIFY(buttons.contains(s("Delete Group")) && buttons.contains(s("Cancel")));
}

// The small entry window (the start number): the exact title and question, the field starting
// with the given text all selected, Return taking what is typed and Escape answering nothing.
void TestDialogPrompter::askText_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("answer"); // "(none)": cancelled

    QTest::newRow("Return keeps the start") << QString() << int(Qt::Key_Return) << s("1");
    QTest::newRow("typing replaces the start") << s("500") << int(Qt::Key_Return) << s("500");
    QTest::newRow("Escape answers nothing") << s("500") << int(Qt::Key_Escape) << s("(none)");
}

void TestDialogPrompter::askText()
{
    QFETCH(QString, typed);
    QFETCH(int, key);
    QFETCH(QString, answer);

    QString title;
    QString label;
    QString initial;
    QTimer::singleShot(0, [&] {
        QTRY_VERIFY(qobject_cast<QInputDialog*>(QApplication::activeModalWidget()));
        auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
        title = dialog->windowTitle();
        label = dialog->labelText();
        auto* field = dialog->findChild<QLineEdit*>(s("askTextField"));
        QVERIFY(field);
        initial = field->text();
        if (!typed.isEmpty())
            QTest::keyClicks(field, typed);
        QTest::keyClick(field, Qt::Key(key));
    });
    DialogPrompter prompter;
    const std::optional<QString> given = prompter.askText(
        s("Start Number"), s("This is the first document of its type in 2026. & more"), s("1"));
    QCOMPARE(title, s("Start Number"));
    QCOMPARE(label, s("This is the first document of its type in 2026. & more"));
    QCOMPARE(initial, s("1"));
    QCOMPARE(given.value_or(s("(none)")), answer);
}

QTEST_MAIN(TestDialogPrompter)
#include "tst_dialogprompter.moc"
