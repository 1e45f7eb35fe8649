// Opens the order book named on the command line and holds it, as a second running
// instance of the program would, until its standard input closes. Prints "open" once it holds
// the database, or the store's error and exits 1.
#include "orderbook.h"

#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    corvanta::store::StoreError error;
    const auto store =
        corvanta::store::testing::openOrderBook(QCoreApplication::arguments().value(1), &error);
    QTextStream out(stdout);
    if (!store) {
        out << error.message() << Qt::endl;
        return 1;
    }
    out << "open" << Qt::endl;
    while (std::fgetc(stdin) != EOF) {
    }
    return 0;
}
