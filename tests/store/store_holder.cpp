// A second running instance of a program on the order book named on the command line.
//
//   store_holder FILE          opens it and holds it until standard input closes; prints "open"
//                              once it holds the database, or the store's error and exits 1.
//   store_holder --churn FILE  opens and closes it over and over until it is killed, so that a
//                              kill lands anywhere: while taking the lock, opening, closing.
#include "orderbook.h"

#include <QCoreApplication>
#include <QTextStream>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    corvanta::store::StoreError error;
    if (arguments.value(1) == QLatin1String("--churn")) {
        for (;;) {
            if (!corvanta::store::testing::openOrderBook(arguments.value(2), &error) &&
                error.code != corvanta::store::StoreError::AlreadyOpen)
                return 1;
        }
    }
    const auto store = corvanta::store::testing::openOrderBook(arguments.value(1), &error);
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
