#include "documents/documentpayments.h"
#include "documents/paymentstatus.h"
#include "editors/documentcontroller.h"
#include "exchange/emailhandover.h"
#include "exchange/emailpreparation.h"
#include "templates/printedoutput.h"
#include "ui/documentoutputs.h"
#include "ui/documentpaymentssheet.h"
#include "ui/emailpreparationwindow.h"
#include "ui/paymentstablemodel.h"
#include "ui/pdfprinter.h"
#include "ui/previewwindow.h"
#include "uitestsupport.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPdfDocument>
#include <QPdfView>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <numeric>

using namespace corvanta;
using namespace corvanta::ui;
using corvanta::ui::testing::s;
using corvanta::ui::testing::UiCompany;
using store::Record;

namespace {

// An invoice for "Acme Ltd" with `rows` rows, made in the document editor as a user makes it.
Record* fillInvoice(editors::DocumentController& editor, int rows)
{
    Record* document = editor.newDocument(0);
    editor.clientEntered(s("Acme Ltd"));
    for (int i = 0; i < rows; ++i) {
        Record* row = editor.addRow();
        editor.itemNameEntered(row, s("Consulting, part %1").arg(i + 1));
        editor.setQuantity(row, i % 3 + 1);
        editor.setUnitPrice(row, 40.0 + i);
    }
    editor.updateDocumentFields();
    editor.updateTaxSummary();
    return document;
}

int pagesOf(const QString& path)
{
    QPdfDocument pdf;
    return pdf.load(path) == QPdfDocument::Error::None ? pdf.pageCount() : -1;
}

// Whether a page of a PDF shows anything but white.
bool hasInk(QPdfDocument& pdf, int page)
{
    const QImage image = pdf.render(page, QSize(150, 212)).convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 128)
                return true;
        }
    }
    return false;
}

// How many pages the document's own template gives it, written to a file in `folder`.
int renderedPages(Record* document, const QTemporaryDir& folder)
{
    int pages = 0;
    QString error;
    if (!templates::PrintedOutput(folder.path())
             .writeDocument(document, templates::PrintedOutput::templateOf(document),
                            folder.filePath(s("check.pdf")), &pages, &error))
        qWarning("cannot render: %s", qPrintable(error));
    return pages;
}

// A mail program that writes its arguments, one a line, to `log`.
QString fakeMailProgram(const QTemporaryDir& folder, const QString& log)
{
    const QString path = folder.filePath(s("fake-xdg-email"));
    QFile script(path);
    script.open(QIODevice::WriteOnly);
    script.write(QStringLiteral("#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done > '%1'\n")
                     .arg(log)
                     .toUtf8());
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

} // namespace

// A document's preview, printing, PDF export, e-mail sheet and payments sheet, driven as the user
// drives them and read back from the PDFs and the store.
class TestDocumentOutputs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void previewPages();
    void printCopies_data();
    void printCopies();
    void saveAsName();
    void emailTemplateChosen();
    void emailTemplateListFollowsTheStore();
    void emailSending();
    void payments_data();
    void payments();
    void paymentsEditedInPlace();

private:
    Record* storedInvoice(const QString& number, int rows);

    std::unique_ptr<UiCompany> m_company;
    std::unique_ptr<editors::DocumentController> m_editor;
    std::unique_ptr<DocumentOutputs> m_outputs;
};

void TestDocumentOutputs::init()
{
    m_company = std::make_unique<UiCompany>();
    m_company->addClient(s("Acme Ltd"));
    m_editor = std::make_unique<editors::DocumentController>(m_company->store(), m_company->prompter());
    m_outputs = std::make_unique<DocumentOutputs>(m_company->store(), m_company->prompter(), nullptr);
    m_editor->setOutput(m_outputs.get());
}

void TestDocumentOutputs::cleanup()
{
    m_outputs.reset();
    m_editor.reset();
    m_company.reset();
}

Record* TestDocumentOutputs::storedInvoice(const QString& number, int rows)
{
    Record* document = fillInvoice(*m_editor, rows);
    document->setValue(s("number_formatted"), number);
    document->setValue(s("draft"), false);
    document->setValue(s("created"), QDateTime::currentDateTime());
    store::StoreError error;
    if (!m_editor->context().save(&error))
        qWarning("cannot save: %s", qPrintable(error.message()));
    return document;
}

void TestDocumentOutputs::previewPages()
{
    // An unsaved invoice of many rows, previewed from its editor.
    Record* document = fillInvoice(*m_editor, 30);
    m_editor->preview();
    PreviewWindow* window = m_outputs->previewWindow(document->ref());
    QVERIFY(window);
    QVERIFY(window->isVisible());
    QCOMPARE(window->windowTitle(), s("Preview – Invoice"));
    QTemporaryDir folder;
    const int rendered = renderedPages(document, folder);
    QVERIFY(rendered > 1);
    QCOMPARE(window->document()->pageCount(), rendered);
    QCOMPARE(window->findChild<QLabel*>(s("pageLabel"))->text(), s("Page 1 of %1").arg(rendered));

    QVERIFY(!window->findChild<QAction*>(s("previousPageAction"))->isEnabled());
    const int top = window->view()->verticalScrollBar()->value();
    window->findChild<QAction*>(s("nextPageAction"))->trigger();
    QCOMPARE(window->currentPage(), 1);
    QVERIFY(window->view()->verticalScrollBar()->value() > top);
    QCOMPARE(window->findChild<QLabel*>(s("pageLabel"))->text(), s("Page 2 of %1").arg(rendered));

    // Asked again after more rows: the same window, rendered anew.
    for (int i = 0; i < 30; ++i)
        m_editor->addRow();
    m_editor->preview();
    QCOMPARE(m_outputs->previewWindow(document->ref()), window);
    QVERIFY(window->document()->pageCount() > rendered);
    QVERIFY(m_company->prompter().questions().isEmpty());

    m_outputs->closePreview(document->ref());
    QTRY_VERIFY(!m_outputs->previewWindow(document->ref()));
}

void TestDocumentOutputs::printCopies_data()
{
    QTest::addColumn<int>("copies");
    QTest::addColumn<bool>("collate");
    QTest::newRow("three copies collated") << 3 << true;
    QTest::newRow("two copies page by page") << 2 << false;
}

void TestDocumentOutputs::printCopies()
{
    QFETCH(int, copies);
    QFETCH(bool, collate);

    Record* document = storedInvoice(s("INVOICE/2026-0042"), 30);
    QTemporaryDir folder;
    const int pages = renderedPages(document, folder);
    QVERIFY(pages >= 1);

    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    const QString printed = folder.filePath(s("printed.pdf"));
    printer.setOutputFileName(printed);
    PdfPrinter::setUp(printer, copies);
    printer.setCollateCopies(collate);
    QVERIFY(m_outputs->printTo(document, printer));

    QPdfDocument pdf;
    QCOMPARE(pdf.load(printed), QPdfDocument::Error::None);
    QCOMPARE(pdf.pageCount(), pages * copies);
    for (int page = 0; page < pdf.pageCount(); ++page) {
        const QSizeF size = pdf.pagePointSize(page);
        QVERIFY2(qAbs(size.width() - 595.3) < 1 && qAbs(size.height() - 841.9) < 1,
                 qPrintable(s("page %1 is %2 x %3").arg(page).arg(size.width()).arg(size.height())));
        QVERIFY2(hasInk(pdf, page), qPrintable(s("page %1 is blank").arg(page)));
    }
    // Collated copies repeat the whole document; page by page repeats each page.
    const auto same = [&](int a, int b) {
        return pdf.render(a, QSize(120, 170)) == pdf.render(b, QSize(120, 170));
    };
    if (collate)
        QVERIFY(same(0, pages) && !same(0, 1));
    else
        QVERIFY(same(0, 1) && !same(0, copies));
}

void TestDocumentOutputs::saveAsName()
{
    const QString fileName = s("INVOICE-2026-0007.pdf");
    Record* document = storedInvoice(s("INVOICE/2026-0007"), 3);
    QTemporaryDir folder;
    QString offered;
    QTimer::singleShot(0, [&] {
        QTRY_VERIFY(qobject_cast<QFileDialog*>(QApplication::activeModalWidget()));
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        QCOMPARE(dialog->objectName(), s("saveAsDialog"));
        offered = QFileInfo(dialog->selectedFiles().value(0)).fileName();
        dialog->selectFile(folder.filePath(offered));
        QMetaObject::invokeMethod(dialog, "accept");
    });
    m_outputs->saveAs(document);
    QCOMPARE(offered, fileName);
    QVERIFY(pagesOf(folder.filePath(fileName)) >= 1);
    QVERIFY(m_company->prompter().questions().isEmpty());
}

// A template chosen in the sheet fills the subject as stored and the body with the placeholders
// replaced (each placeholder is the e-mail preparation's test).
void TestDocumentOutputs::emailTemplateChosen()
{
    store::EditingContext& main = m_company->main();
    main.insertRecord(s("EmailTemplates"), {{s("name"), s("Reminder")},
                                            {s("subject"), s("Open invoice @ClientName")},
                                            {s("body"), s("Dear @ClientName,\nplease pay.")}});
    m_company->save();

    const Record* document = storedInvoice(s("INVOICE/2026-0003"), 2);
    EmailPreparationWindow sheet(m_company->store(), m_company->prompter(), document->ref());
    sheet.show();
    auto* popup = sheet.findChild<QComboBox*>(s("templatePopup"));
    QVERIFY(popup);
    QCOMPARE(popup->count(), 2);
    const int index = popup->findText(s("Reminder"));
    QVERIFY(index >= 0);
    popup->setCurrentIndex(index);
    Q_EMIT popup->activated(index);
    QCOMPARE(sheet.findChild<QLineEdit*>(s("subjectEdit"))->text(), s("Open invoice @ClientName"));
    QCOMPARE(sheet.findChild<QPlainTextEdit*>(s("bodyEdit"))->toPlainText(),
             s("Dear Acme Ltd,\nplease pay."));
    QCOMPARE(sheet.findChild<QCheckBox*>(s("attachmentCheck"))->text(), s("INVOICE/2026-0003"));
    popup->setCurrentIndex(popup->findText(s("Empty Template")));
    Q_EMIT popup->activated(popup->currentIndex());
    QVERIFY(sheet.findChild<QLineEdit*>(s("subjectEdit"))->text().isEmpty());
    QVERIFY(sheet.findChild<QPlainTextEdit*>(s("bodyEdit"))->toPlainText().isEmpty());
}

void TestDocumentOutputs::emailTemplateListFollowsTheStore()
{
    const Record* document = storedInvoice(s("INVOICE/2026-0005"), 1);
    EmailPreparationWindow sheet(m_company->store(), m_company->prompter(), document->ref());
    auto* popup = sheet.findChild<QComboBox*>(s("templatePopup"));
    auto* subject = sheet.findChild<QLineEdit*>(s("subjectEdit"));
    subject->setText(s("Typed by hand"));

    // A template added and the default renamed in the templates' window: the list follows, the
    // chosen template and the typed subject stay.
    m_company->main().insertRecord(s("EmailTemplates"), {{s("name"), s("Added")}});
    m_company->save();
    Record* empty = m_company->named("EmailTemplates", s("name"), s("Empty Template"));
    empty->setValue(s("name"), s("Blank"));
    m_company->save();
    QStringList names;
    for (int i = 0; i < popup->count(); ++i)
        names << popup->itemText(i);
    QCOMPARE(names, (QStringList{s("Added"), s("Blank")}));
    QCOMPARE(popup->currentText(), s("Blank"));
    QCOMPARE(subject->text(), s("Typed by hand"));
}

void TestDocumentOutputs::emailSending()
{
    Record* document = storedInvoice(s("INVOICE/2026-0004"), 2);
    document->setValue(s("client_email"), s("office@acme.example"));
    QVERIFY(m_editor->context().save());

    // No mail program: the user is told and the sheet stays open.
    EmailPreparationWindow failing(m_company->store(), m_company->prompter(), document->ref());
    failing.setHandOver(exchange::EmailHandOver(s("corvanta-no-such-mail-program")));
    failing.show();
    QTest::mouseClick(failing.findChild<QPushButton*>(s("sendButton")), Qt::LeftButton);
    QCOMPARE(m_company->prompter().titles(), QStringList{s("The email could not be sent")});
    QVERIFY(m_company->prompter().questions().constFirst().text.contains(s("corvanta-no-such-mail-program")));
    QVERIFY(failing.isVisible());

    // A mail program that takes it: recipient, subject, body and the PDF handed over, sheet closed.
    QTemporaryDir folder;
    const QString log = folder.filePath(s("arguments.txt"));
    EmailPreparationWindow sheet(m_company->store(), m_company->prompter(), document->ref());
    sheet.setHandOver(exchange::EmailHandOver(fakeMailProgram(folder, log), 5000));
    sheet.show();
    QCOMPARE(sheet.findChild<QLineEdit*>(s("recipientEdit"))->text(), s("office@acme.example"));
    sheet.findChild<QLineEdit*>(s("subjectEdit"))->setText(s("Your invoice"));
    sheet.findChild<QPlainTextEdit*>(s("bodyEdit"))->setPlainText(s("Hello"));
    QTest::mouseClick(sheet.findChild<QPushButton*>(s("sendButton")), Qt::LeftButton);
    QTRY_VERIFY(QFile::exists(log));
    QVERIFY(!sheet.isVisible());
    QFile file(log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList arguments = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    const QString attachment = arguments.value(arguments.indexOf(s("--attach")) + 1);
    QCOMPARE(arguments.mid(0, 5), (QStringList{s("--utf8"), s("--to"), s("office@acme.example"),
                                               s("--subject"), s("Your invoice")}));
    QCOMPARE(QFileInfo(attachment).fileName(), s("INVOICE-2026-0004.pdf"));
    QVERIFY(pagesOf(attachment) >= 1);
}

void TestDocumentOutputs::payments_data()
{
    QTest::addColumn<QList<double>>("paid");
    QTest::addColumn<bool>("settle");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("isPaid");
    QTest::newRow("settled after a part") << QList<double>{30} << true << s("30|70") << true;
    QTest::newRow("closed without settling") << QList<double>{30} << false << s("30") << false;
    QTest::newRow("left with Escape") << QList<double>{40} << false << s("40") << false;
    QTest::newRow("overpaid, settling adds nothing") << QList<double>{120} << true << s("120") << false;
}

void TestDocumentOutputs::payments()
{
    QFETCH(QList<double>, paid);
    QFETCH(bool, settle);
    QFETCH(QString, stored);
    QFETCH(bool, isPaid);

    const predicate::RecordRef invoice = m_company->addInvoice(s("INVOICE/2026-0010"), 100)->ref();
    {
        DocumentPaymentsSheet sheet(m_company->store(), m_company->prompter(), invoice);
        sheet.show();
        auto* table = sheet.findChild<QTableView*>(s("paymentsTable"));
        for (const double amount : paid) {
            QTest::mouseClick(sheet.findChild<QPushButton*>(s("addButton")), Qt::LeftButton);
            auto* field = table->findChild<QDoubleSpinBox*>(s("amountEditor"));
            QVERIFY(field);
            field->selectAll();
            QTest::keyClicks(field, QString::number(amount));
            QTest::keyClick(field, Qt::Key_Return);
            const QModelIndex last =
                table->model()->index(table->model()->rowCount() - 1, PaymentsTableModel::AmountColumn);
            QTRY_COMPARE(last.data(Qt::EditRole).toDouble(), amount);
        }
        QTRY_COMPARE(table->model()->rowCount(), int(paid.size()));
        // Settling is offered only while something is left to pay; leaving by it otherwise (as a
        // command can) adds nothing either.
        auto* settleButton = sheet.findChild<QPushButton*>(s("settleButton"));
        QCOMPARE(settleButton->isEnabled(), 100 - std::accumulate(paid.begin(), paid.end(), 0.0) > 0);
        if (!settle && QTest::currentDataTag() == QByteArray("left with Escape"))
            QTest::keyClick(table, Qt::Key_Escape);
        else if (!settle)
            QTest::mouseClick(sheet.findChild<QPushButton*>(s("closeButton")), Qt::LeftButton);
        else if (settleButton->isEnabled())
            QTest::mouseClick(settleButton, Qt::LeftButton);
        else
            sheet.finish(true);
        QVERIFY(!sheet.isVisible());
    }
    const std::unique_ptr<store::EditingContext> context = m_company->store().newContext();
    Record* read = context->fetchRecord(s("Documents"), invoice);
    QStringList amounts;
    for (const QVariant& amount : read->valueForKeyPath(s("payments.amount")).toList())
        amounts << QString::number(amount.toDouble());
    QCOMPARE(amounts.join(QLatin1Char('|')), stored);
    QCOMPARE(documents::PaymentStatus::isPaid(read), isPaid);

    QVERIFY(m_company->prompter().questions().isEmpty());
}

void TestDocumentOutputs::paymentsEditedInPlace()
{
    const predicate::RecordRef invoice = m_company->addInvoice(s("INVOICE/2026-0011"), 100)->ref();
    documents::DocumentPayments core(m_company->store(), m_company->prompter());
    QVERIFY(core.addPayment(invoice, 20, {}, QDateTime(QDate(2026, 3, 1), QTime(9, 0))));
    QVERIFY(core.addPayment(invoice, 50, {}, QDateTime(QDate(2026, 3, 5), QTime(9, 0))));

    DocumentPaymentsSheet sheet(m_company->store(), m_company->prompter(), invoice);
    sheet.show();
    auto* table = sheet.findChild<QTableView*>(s("paymentsTable"));
    QAbstractItemModel* model = table->model();
    auto* remaining = sheet.findChild<QLabel*>(s("remainingLabel"));
    const auto model2 = qobject_cast<PaymentsTableModel*>(model);
    QCOMPARE(remaining->text(), s("Remaining: %1").arg(model2->formattedAmount(30)));

    // The amount and the date changed in place, stored at once; the rest follows.
    QVERIFY(model->setData(model->index(0, PaymentsTableModel::AmountColumn), 25.5));
    QVERIFY(model->setData(model->index(0, PaymentsTableModel::DateColumn), QDate(2026, 3, 2)));
    QCOMPARE(remaining->text(), s("Remaining: %1").arg(model2->formattedAmount(24.5)));
    QCOMPARE(model->data(model->index(0, PaymentsTableModel::DateColumn), Qt::EditRole).toDate(),
             QDate(2026, 3, 2));

    table->selectRow(1);
    QTest::mouseClick(sheet.findChild<QPushButton*>(s("removeButton")), Qt::LeftButton);
    QCOMPARE(model->rowCount(), 1);
    QCOMPARE(core.remaining(invoice), 74.5);
    QVERIFY(!sheet.findChild<QPushButton*>(s("removeButton"))->isEnabled());
}

CORVANTA_UI_TEST_MAIN(TestDocumentOutputs)
#include "tst_documentoutputs.moc"
