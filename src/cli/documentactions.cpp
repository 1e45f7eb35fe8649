#include "cliprompter.h"
#include "commandline.h"
#include "commands.h"
#include "documents/documentcanceller.h"
#include "documents/documentcopier.h"
#include "documents/documentdeleter.h"
#include "documents/documentpayments.h"
#include "documents/invoicefinalizer.h"
#include "documentstatus.h"
#include "documenttext.h"
#include "output.h"
#include "recordjson.h"
#include "recordlookup.h"
#include "session.h"
#include "store/editingcontext.h"
#include "valuetext.h"

namespace corvanta::cli {

using predicate::RecordRef;
using store::Record;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

// The document the command names; null after reporting why there is none.
Record* namedDocument(Invocation& invocation)
{
    QString error;
    Record* document =
        RecordLookup(invocation.session.context()).document(invocation.arguments.words().first(), &error);
    if (!document)
        invocation.refuse(error);
    return document;
}

// A document as the store holds it now, after another editing context saved it.
Record* stored(Invocation& invocation, const RecordRef& ref)
{
    return invocation.session.context().record(ref);
}

void printPayments(Invocation& invocation, const Record* document)
{
    if (invocation.output.isJson()) {
        invocation.output.json(RecordJson::document(document));
        return;
    }
    const double total = document->value(s("sum_total")).toDouble();
    const double paid = document->valueForKeyPath(s("payments.@sum.amount")).toDouble();
    QString line =
        CommandLine::tr("%1: total %2, paid %3, remaining %4")
            .arg(document->value(s("number_formatted")).toString(), DocumentText::amount(document, total),
                 DocumentText::amount(document, paid), DocumentText::amount(document, total - paid));
    const QString status = DocumentStatus::of(document);
    if (!status.isEmpty())
        line += QStringLiteral(" (%1)").arg(status);
    invocation.output.text() << line << '\n';
}

std::optional<QString> startNumberAnswer(const Arguments& arguments)
{
    return arguments.has(s("start-number")) ? std::optional<QString>(arguments.value(s("start-number")))
                                            : std::nullopt;
}

int finalize(Invocation& invocation)
{
    Record* document = namedDocument(invocation);
    if (!document)
        return Refused;
    const bool wasDraft = document->value(s("draft")).toBool();
    documents::InvoiceFinalizer finalizer(invocation.session.store(), invocation.prompter);
    if (!finalizer.finalizeInvoiceIfNeeded(document->ref()))
        return Refused;
    if (!wasDraft)
        invocation.prompter.report(
            CommandLine::tr("%1 is final already.").arg(document->value(s("number_formatted")).toString()));
    printDocumentMade(invocation, stored(invocation, document->ref()));
    return Success;
}

int cancel(Invocation& invocation)
{
    const Record* document = namedDocument(invocation);
    if (!document)
        return Refused;
    documents::DocumentCanceller canceller(invocation.session.store(), invocation.prompter);
    const std::optional<RecordRef> cancellation = canceller.cancel(document->ref());
    if (!cancellation)
        return Refused;
    printDocumentMade(invocation, stored(invocation, *cancellation));
    return Success;
}

int duplicate(Invocation& invocation)
{
    const Record* document = namedDocument(invocation);
    if (!document)
        return Refused;
    documents::DocumentCopier copier(invocation.session.store(), invocation.prompter);
    const std::optional<RecordRef> copy = copier.duplicate(document->ref());
    if (!copy)
        return Refused;
    printDocumentMade(invocation, stored(invocation, *copy));
    return Success;
}

int pay(Invocation& invocation)
{
    const Arguments& arguments = invocation.arguments;
    if (const int status = invocation.require(s("amount")); status != Success)
        return status;
    double amount = 0;
    QDate date;
    if (const int status = invocation.number(s("amount"), &amount); status != Success)
        return status;
    if (const int status = invocation.date(s("date"), &date); status != Success)
        return status;
    const Record* document = namedDocument(invocation);
    if (!document)
        return Refused;
    RecordRef paymentType;
    if (arguments.has(s("payment-type"))) {
        QString error;
        const Record* type =
            RecordLookup(invocation.session.context())
                .find(RecordLookup::Kind::PaymentType, arguments.value(s("payment-type")), &error);
        if (!type)
            return invocation.refuse(error);
        paymentType = type->ref();
    }
    documents::DocumentPayments payments(invocation.session.store(), invocation.prompter);
    const std::optional<QDateTime> when =
        date.isValid() ? std::optional<QDateTime>(ValueText::midday(date)) : std::nullopt;
    if (!payments.addPayment(document->ref(), amount, paymentType, when))
        return Refused;
    printPayments(invocation, stored(invocation, document->ref()));
    return Success;
}

int settle(Invocation& invocation)
{
    const Record* document = namedDocument(invocation);
    if (!document)
        return Refused;
    documents::DocumentPayments payments(invocation.session.store(), invocation.prompter);
    const double rest = payments.remaining(document->ref());
    if (!payments.closeDocumentPayments(document->ref(), true))
        return Refused;
    if (rest <= 0)
        invocation.prompter.report(CommandLine::tr("Nothing remains to be paid on %1; no payment was added.")
                                       .arg(document->value(s("number_formatted")).toString()));
    printPayments(invocation, stored(invocation, document->ref()));
    return Success;
}

int remove(Invocation& invocation)
{
    const Record* document = namedDocument(invocation);
    if (!document)
        return Refused;
    const QString number = document->value(s("number_formatted")).toString();
    const QString identifier = document->value(s("identifier")).toString();
    documents::DocumentDeleter deleter(invocation.session.store(), invocation.prompter);
    if (!deleter.deleteDocument(document->ref()))
        return Refused;
    if (invocation.output.isJson())
        invocation.output.json(QJsonObject{
            {s("number_formatted"), number}, {s("identifier"), identifier}, {s("deleted"), true}});
    else
        invocation.output.text() << CommandLine::tr("Deleted %1 (%2)").arg(number, identifier) << '\n';
    return Success;
}

Command action(const char* name, const QString& synopsis, const QString& summary, const QString& help,
               int (*run)(Invocation&))
{
    Command command;
    command.words = QStringList{s("documents"), s(name)};
    command.synopsis = synopsis;
    command.summary = summary;
    command.help = help;
    command.minWords = 1;
    command.maxWords = 1;
    command.run = run;
    return command;
}

} // namespace

QList<Command> documentActionsCommands()
{
    Command finalizeCommand =
        action("finalize", s("documents finalize NUMBER|IDENTIFIER [--start-number N]"),
               CommandLine::tr("give a draft invoice its final number"),
               CommandLine::tr(
                   "Finalises a draft invoice, as the browser does before printing it: the invoice takes\n"
                   "the next number of its year, counts for stock from now on and becomes payable.\n"
                   "A document that is final already stays as it is. Prints the number and the\n"
                   "identifier.\n"
                   "\n"
                   "Options:\n"
                   "  --start-number N   the number to start with when this is the first invoice of\n"
                   "                     its year (1 to 99999; default 1)\n"
                   "\n"
                   "Example:\n"
                   "  corvanta-cli documents finalize 0F8C2D61-5E1B-4A53-9C1E-2A7B6C3D4E5F"),
               finalize);
    finalizeCommand.options = {{s("start-number"), true, false}};
    finalizeCommand.textAnswer = startNumberAnswer;

    Command cancelCommand = action(
        "cancel", s("documents cancel NUMBER|IDENTIFIER"),
        CommandLine::tr("cancel a final invoice by its negative twin"),
        CommandLine::tr(
            "Cancels a final invoice: a cancellation is written, a new invoice of today with the next\n"
            "number and every quantity and amount negated, which gives the stock back. The two\n"
            "point at each other and both show the status \"cancelled\". Drafts, other document\n"
            "types and invoices cancelled already cannot be cancelled. Prints the number and\n"
            "the identifier of the cancellation.\n"
            "\n"
            "Example:\n"
            "  corvanta-cli documents cancel INVOICE/2024-0007"),
        cancel);

    Command duplicateCommand =
        action("duplicate", s("documents duplicate NUMBER|IDENTIFIER [--start-number N]"),
               CommandLine::tr("copy a document as a new one of today"),
               CommandLine::tr(
                   "Copies a document as the browser's Duplicate does: a new document of the same type,\n"
                   "dated today with a fresh number and the client's payment term, with the same\n"
                   "client, rows and sums and no payments. A copy of a draft invoice is a draft.\n"
                   "Prints the copy's number and identifier.\n"
                   "\n"
                   "Options:\n"
                   "  --start-number N   the number to start with when the copy is the first document\n"
                   "                     of its type in the year (default 1)\n"
                   "\n"
                   "Example:\n"
                   "  corvanta-cli documents duplicate QUOTATION/2024-0003"),
               duplicate);
    duplicateCommand.options = {{s("start-number"), true, false}};
    duplicateCommand.textAnswer = startNumberAnswer;

    Command payCommand = action(
        "pay", s("documents pay NUMBER|IDENTIFIER --amount A [--date YYYY-MM-DD] [--payment-type NAME]"),
        CommandLine::tr("record a payment against a document"),
        CommandLine::tr(
            "Records a payment of A, in the document's currency, as the payments sheet does. A final\n"
            "invoice is paid when its payments add up exactly to its total; then its status is\n"
            "\"paid\", otherwise \"unpaid\" (an overpaid invoice is unpaid too). Prints the total,\n"
            "what is paid and what remains.\n"
            "\n"
            "Options:\n"
            "  --amount A           the amount paid (required), written like 1234.5\n"
            "  --date YYYY-MM-DD    the day of the payment (default: now)\n"
            "  --payment-type NAME  how it was paid (a new database has \"Bank Transfer\" and\n"
            "                       \"Cash\"; default: the company's default payment type)\n"
            "\n"
            "Example:\n"
            "  corvanta-cli documents pay INVOICE/2024-0001 --amount 100 --payment-type Cash"),
        pay);
    payCommand.options = {
        {s("amount"), true, false}, {s("date"), true, false}, {s("payment-type"), true, false}};

    Command settleCommand = action(
        "settle", s("documents settle NUMBER|IDENTIFIER"), CommandLine::tr("pay what remains of a document"),
        CommandLine::tr(
            "Pays the rest of a document in one step, as the payments sheet's settle button does: a\n"
            "payment of the total less what is paid, by the company's default payment type, dated\n"
            "now. When nothing remains, nothing is added. Prints the total, what is paid and what\n"
            "remains.\n"
            "\n"
            "Example:\n"
            "  corvanta-cli documents settle INVOICE/2024-0001"),
        settle);

    Command deleteCommand =
        action("delete", s("documents delete NUMBER|IDENTIFIER"), CommandLine::tr("delete a document"),
               CommandLine::tr(
                   "Deletes a document with its rows, tax summary and payments, as the browser's Delete\n"
                   "does. The stock of its items is counted again without it. This cannot be undone.\n"
                   "\n"
                   "Example:\n"
                   "  corvanta-cli documents delete QUOTATION/2024-0002"),
               remove);
    return {finalizeCommand, cancelCommand, duplicateCommand, payCommand, settleCommand, deleteCommand};
}

} // namespace corvanta::cli
