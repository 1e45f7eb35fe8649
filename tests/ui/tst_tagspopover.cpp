#include "ui/tagspopover.h"
#include "uitestsupport.h"

#include <QLabel>
#include <QListWidget>
#include <QSignalSpy>

using namespace corvanta;
using namespace corvanta::ui::testing;
using store::Record;
using ui::TagsPopover;

class TestTagsPopover : public QObject
{
    Q_OBJECT

private:
    Record* addTag(UiCompany& company, const char* name, qint64 type)
    {
        return company.main().insertRecord(s("Categories"), {{s("name"), s(name)},
                                                             {s("type"), type},
                                                             {s("foreground_color"), QColor(Qt::white)},
                                                             {s("background_color"), QColor(Qt::darkBlue)}});
    }
    Record* systemTag(UiCompany& company, qint64 subtype)
    {
        return company.main().fetchFirst(store::FetchRequest(
            s("Categories"), predicate::literal("type == 1 && subtype == %ld", {subtype})));
    }
    static QStringList tagNames(const Record* record)
    {
        QStringList names;
        for (const Record* tag : record->relatedList(s("tags")))
            names << tag->value(s("name")).toString();
        names.sort();
        return names;
    }
    static QStringList rowTexts(const TagsPopover& popover)
    {
        QStringList texts;
        for (const auto& row : popover.rows())
            texts << (row.selected ? s("[x] ") : s("[ ] ")) + row.name;
        return texts;
    }

private Q_SLOTS:
    // Only the user tags of the record's kind are offered, by name; the record's system tag is
    // neither listed nor touched when a user tag is ticked.
    void togglesUserTags_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("click on the label") << s("click");
        QTest::newRow("space on the current row") << s("space");
    }
    void togglesUserTags()
    {
        QFETCH(QString, how);
        UiCompany company;
        Record* client = company.addClient(s("Acme"));
        Record* company0 = systemTag(company, 0);
        QVERIFY(company0);
        client->addRelated(s("tags"), company0);
        addTag(company, "Zeta", 1);
        addTag(company, "Alpha", 1);
        addTag(company, "Spare parts", 2);

        QWidget window;
        window.resize(300, 200);
        window.show();
        TagsPopover popover(client, &window);
        QSignalSpy changed(&popover, &TagsPopover::tagsChanged);
        popover.showUnder(&window);
        QVERIFY(QTest::qWaitForWindowExposed(&popover));
        QCOMPARE(rowTexts(popover), (QStringList{s("[ ] Alpha"), s("[ ] Zeta")}));

        auto* list = popover.findChild<QListWidget*>(s("tagsList"));
        QVERIFY(list);
        if (how == s("click")) {
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                              list->visualItemRect(list->item(1)).center());
        } else {
            QTest::keyClick(list, Qt::Key_Down);
            QTest::keyClick(list, Qt::Key_Space);
        }
        QCOMPARE(changed.count(), 1);
        QCOMPARE(tagNames(client), (QStringList{company0->value(s("name")).toString(), s("Zeta")}));
        QCOMPARE(rowTexts(popover), (QStringList{s("[ ] Alpha"), s("[x] Zeta")}));

        // The same gesture again takes the tag away and leaves the system tag.
        if (how == s("click"))
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                              list->visualItemRect(list->item(1)).center());
        else
            QTest::keyClick(list, Qt::Key_Space);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(tagNames(client), QStringList{company0->value(s("name")).toString()});
        QVERIFY(popover.isVisible());

        QTest::keyClick(list, Qt::Key_Escape);
        QTRY_VERIFY(!popover.isVisible());
    }

    // A record whose kind has no user tags yet says so instead of an empty list.
    void noTags()
    {
        UiCompany company;
        Record* client = company.addClient(s("Acme"));
        addTag(company, "Spare parts", 2);
        QWidget window;
        window.show();
        TagsPopover popover(client, &window);
        popover.showUnder(&window);
        QVERIFY(popover.rows().isEmpty());
        auto* label = popover.findChild<QLabel*>(s("noTagsLabel"));
        QVERIFY(label && label->isVisible());
        QVERIFY(!popover.findChild<QListWidget*>(s("tagsList"))->isVisible());
    }
};

CORVANTA_UI_TEST_MAIN(TestTagsPopover)
#include "tst_tagspopover.moc"
