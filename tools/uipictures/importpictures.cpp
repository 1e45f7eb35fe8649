// The two CSV import windows on realistic files, written to a scratch folder as a user's export
// from another address list or price list would look: the clients with their e-mail addresses,
// phones and addresses, the items with their codes and prices in a comma-decimal notation. The
// columns are in the order of the compose pop-up, so that each ticked field takes its column.
#include "importpictures.h"

#include "pictures.h"
#include "ui/dialogprompter.h"
#include "ui/importclientswindow.h"
#include "ui/importitemswindow.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <iterator>

namespace corvanta::uipictures {

namespace {

const char* const kClients[] = {
    "Northwind Trading Ltd;orders@northwind.co.uk;+44 117 496 0123;14 Harbour Road;Bristol;BS1 4RN;United "
    "Kingdom",
    "Alpine Bikes GmbH;info@alpinebikes.at;+43 512 580 144;Bahnhofstraße 21;Innsbruck;6020;Austria",
    "Café Lumière;bonjour@cafelumiere.fr;+33 4 78 42 17 90;8 rue des Arts;Lyon;69002;France",
    "Baltic Timber AS;sales@baltictimber.ee;+372 640 2210;Tartu mnt 43;Tallinn;10128;Estonia",
    "Greenleaf Landscaping;hello@greenleaf.com;+1 503 555 0178;220 Oak Street;Portland;97204;United States",
    "Studio Marlow;studio@marlow.design;+44 1628 480 221;3 Quay Lane;Marlow;SL7 1RL;United Kingdom",
    "Fjord Fisheries ASA;post@fjordfish.no;+47 55 30 12 40;Strandkaien 12;Bergen;5013;Norway",
    "Casa Verde S.L.;contacto@casaverde.es;+34 915 210 334;Calle Mayor 77;Madrid;28013;Spain",
    "Hofmann Elektro KG;service@hofmann-elektro.de;+49 89 2154 330;Lindenweg 5;München;80331;Germany",
    "Blue Harbour Hotel;stay@blueharbour.nz;+64 4 801 2233;1 Marine Parade;Wellington;6011;New Zealand",
    "De Vries Bakkerij;bestel@devries.nl;+31 20 624 7781;Prinsengracht 190;Amsterdam;1016 HD;Netherlands",
    "Rossi & Figli S.r.l.;amministrazione@rossifigli.it;+39 011 562 0098;Via Garibaldi 18;Torino;10122;Italy",
    "Kowalski Print;biuro@kowalskiprint.pl;+48 58 301 44 12;ul. Długa 9;Gdańsk;80-827;Poland",
    "Maple Leaf Consulting;team@mapleleaf.ca;+1 416 555 0199;455 King St W;Toronto;M5V 1M2;Canada",
    "Nordic Sound AB;kontakt@nordicsound.se;+46 8 640 5512;Götgatan 30;Stockholm;118 46;Sweden",
    "Sunrise Dental Clinic;reception@sunrisedental.ie;+353 1 872 3344;27 Church Street;Dublin;D07 "
    "X2Y4;Ireland",
    "Vertex Engineering;geral@vertex.pt;+351 21 340 2290;Avenida da Liberdade 110;Lisboa;1250-146;Portugal",
    "Oak & Ivy Florists;flowers@oakandivy.co.uk;+44 131 496 0456;62 High Street;Edinburgh;EH1 1SR;United "
    "Kingdom",
    "Helvetia Watches SA;info@helvetiawatches.ch;+41 22 310 5521;Rue du Rhône 48;Genève;1204;Switzerland",
    "Brightside Solar Pty;sales@brightside.com.au;+61 2 9251 0087;15 George Street;Sydney;2000;Australia",
};

const char* const kItems[] = {
    "Website maintenance (monthly);WEB-M;Updates, backups and monitoring;149,00",
    "Logo design;DES-LOGO;Three drafts and two rounds of changes;1 250,00",
    "Business cards (500);PR-BC500;Two-sided, 350 g matt;89,50",
    "Consulting hour;CONS-H;On site or remote;95,00",
    "Flyer A5 (1,000);PR-FL1000;Four colours, 135 g gloss;172,40",
    "Photo session;PHO-S;Half a day, 20 edited pictures;480,00",
    "Domain registration;WEB-DOM;One year, .com;14,90",
    "Hosting package S;WEB-HS;10 GB, e-mail included;9,90",
    "Copywriting (page);TXT-P;Up to 400 words;120,00",
    "Roll-up banner;PR-RU;85 × 200 cm with bag;139,00",
    "Newsletter template;DES-NL;Responsive, two layouts;380,00",
    "Training day;TRN-D;Up to eight people;1 100,00",
};

QString writeFile(const QTemporaryDir& folder, const char* name, const char* const* lines, int count)
{
    const QString path = folder.filePath(s(name));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    for (int line = 0; line < count; ++line) {
        file.write(lines[line]);
        file.write("\n");
    }
    return path;
}

void tick(QWidget* window, const char* key)
{
    QMenu* menu = window->findChild<QMenu*>(s("composeMenu"));
    QAction* action = menu ? menu->findChild<QAction*>(s(key)) : nullptr;
    if (!action)
        qFatal("the compose pop-up offers no %s", key);
    action->trigger();
}

void show(QWidget* window)
{
    window->resize(1040, 600);
    window->show();
    QTest::qWait(200);
}

} // namespace

void takeImportPictures(store::Store& store)
{
    QTemporaryDir folder;
    // Nothing is imported here: the prompter would only show a file that cannot be read.
    ui::DialogPrompter prompter;

    auto* clients = new ui::ImportClientsWindow(store, prompter);
    if (!clients->openFile(writeFile(folder, "clients.csv", kClients, int(std::size(kClients)))))
        qFatal("the clients file cannot be read");
    for (const char* key : {"emails", "phones", "street", "city", "zip_code", "country"})
        tick(clients, key);
    show(clients);
    save(clients, "import-clients");
    // The compose pop-up as it opens under its button.
    auto* button = clients->findChild<QToolButton*>(s("composeButton"));
    QMenu* menu = button->menu();
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
    QTest::qWait(200);
    save(menu, "import-clients-fields");
    menu->hide();
    clients->close();

    auto* items = new ui::ImportItemsWindow(store, prompter);
    if (!items->openFile(writeFile(folder, "items.csv", kItems, int(std::size(kItems)))))
        qFatal("the items file cannot be read");
    for (const char* key : {"code", "desc", "unit_price"})
        tick(items, key);
    show(items);
    save(items, "import-items");
    items->close();
    QApplication::processEvents();
}

} // namespace corvanta::uipictures
