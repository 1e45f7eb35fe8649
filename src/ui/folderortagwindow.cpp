#include "folderortagwindow.h"

#include "browse/categorytree.h"
#include "sheetbuttons.h"
#include "store/editingcontext.h"
#include "store/record.h"
#include "store/store.h"
#include "support/prompter.h"
#include "taglabel.h"

#include <QApplication>
#include <QButtonGroup>
#include <QColorDialog>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QVBoxLayout>

namespace corvanta::ui {

using browse::CategoryTree;
using browse::FolderOrTagSheet;
using store::Record;
using Mode = FolderOrTagSheet::Mode;

namespace {

QString s(const char* text)
{
    return QString::fromLatin1(text);
}

constexpr int kLevelRole = Qt::UserRole + 1;

int indentation(const QWidget* widget)
{
    const QStyle* style = widget ? widget->style() : QApplication::style();
    return style->pixelMetric(QStyle::PM_TreeViewIndentation, nullptr, widget);
}

// The parent pop-up's list: each container indented by its depth, the selection drawn across
// the whole row. The closed pop-up shows the name alone.
class IndentedEntryDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem entry = option;
        initStyleOption(&entry, index);
        const QWidget* widget = entry.widget;
        const QStyle* style = widget ? widget->style() : QApplication::style();
        style->drawPrimitive(QStyle::PE_PanelItemViewItem, &entry, painter, widget);
        entry.rect.adjust(index.data(kLevelRole).toInt() * indentation(widget), 0, 0, 0);
        style->drawControl(QStyle::CE_ItemViewItem, &entry, painter, widget);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.rwidth() += index.data(kLevelRole).toInt() * indentation(option.widget);
        return size;
    }
};

QColor colourOf(const Record* node, const char* key)
{
    return node ? node->value(s(key)).value<QColor>() : QColor();
}

} // namespace

FolderOrTagWindow::FolderOrTagWindow(store::EditingContext& scratch, Mode mode, Record* node, Record* parent,
                                     support::Prompter& prompter, QWidget* parentWidget)
    : QDialog(parentWidget)
    , m_scratch(scratch)
    , m_mode(mode)
    , m_node(node)
    , m_prompter(prompter)
{
    setObjectName(s("FolderOrTagWindow"));
    setWindowModality(Qt::WindowModal);

    m_titleLabel = new QLabel(this);
    m_titleLabel->setObjectName(s("titleLabel"));
    QFont bold = m_titleLabel->font();
    bold.setBold(true);
    m_titleLabel->setFont(bold);
    m_informativeLabel = new QLabel(this);
    m_informativeLabel->setObjectName(s("informativeLabel"));
    m_informativeLabel->setWordWrap(true);
    // Wide enough for a folder's line to fit on one line and a tag's on two.
    m_informativeLabel->setMinimumWidth(fontMetrics().averageCharWidth() * 64);

    m_nameEdit = new QLineEdit(node ? node->value(s("name")).toString() : QString(), this);
    m_nameEdit->setObjectName(s("nameEdit"));
    m_parentPopup = new QComboBox(this);
    m_parentPopup->setObjectName(s("parentPopup"));
    m_parentPopup->setItemDelegate(new IndentedEntryDelegate(m_parentPopup));
    m_parentPopup->setPlaceholderText(tr("Top level"));
    m_parentPopup->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    fillParents(node ? node->related(s("parent")) : parent);

    auto* form = new QFormLayout;
    auto* nameLabel = new QLabel(tr("&Name:"), this);
    nameLabel->setBuddy(m_nameEdit);
    form->addRow(nameLabel, m_nameEdit);
    auto* parentLabel = new QLabel(tr("&Inside:"), this);
    parentLabel->setBuddy(m_parentPopup);
    form->addRow(parentLabel, m_parentPopup);

    if (isTag()) {
        m_tagTypes = new QButtonGroup(this);
        auto* types = new QHBoxLayout;
        types->setSpacing(0);
        types->addWidget(addTagTypeButton(1, tr("Clients"), "tagTypeClients"));
        types->addWidget(addTagTypeButton(2, tr("Items"), "tagTypeItems"));
        types->addWidget(addTagTypeButton(3, tr("Documents"), "tagTypeDocuments"));
        types->addWidget(addTagTypeButton(4, tr("ToDos"), "tagTypeToDos"));
        types->addStretch(1);
        auto* typeLabel = new QLabel(tr("Tag &type:"), this);
        typeLabel->setBuddy(m_tagTypeButtons.constFirst());
        form->addRow(typeLabel, types);
        if (node) {
            if (QAbstractButton* current = m_tagTypes->button(node->value(s("type")).toInt()))
                current->setChecked(true);
            // The program files records under its own tags by their kind: that stays.
            for (QToolButton* button : std::as_const(m_tagTypeButtons))
                button->setEnabled(!CategoryTree::isSystemNode(node));
            m_foreground = colourOf(node, "foreground_color");
            m_background = colourOf(node, "background_color");
        } else {
            // The colours a new tag gets are the tree's to give; a tag made and dropped in a
            // context of its own tells them.
            std::unique_ptr<store::EditingContext> probe = scratch.store().newContext();
            const Record* sample = CategoryTree(*probe).newTag(QString(), 1, nullptr);
            m_foreground = colourOf(sample, "foreground_color");
            m_background = colourOf(sample, "background_color");
        }

        m_backgroundButton = makeColorButton("backgroundColorButton", tr("Choose Background Color"));
        m_foregroundButton = makeColorButton("fontColorButton", tr("Choose Font Color"));
        connect(m_backgroundButton, &QPushButton::clicked, this, [this] { chooseColor(true); });
        connect(m_foregroundButton, &QPushButton::clicked, this, [this] { chooseColor(false); });
        auto* backgroundLabel = new QLabel(tr("&Background color:"), this);
        backgroundLabel->setBuddy(m_backgroundButton);
        form->addRow(backgroundLabel, m_backgroundButton);
        auto* foregroundLabel = new QLabel(tr("&Font color:"), this);
        foregroundLabel->setBuddy(m_foregroundButton);
        form->addRow(foregroundLabel, m_foregroundButton);

        m_preview = new TagLabelWidget(this);
        m_preview->setObjectName(s("tagPreview"));
        form->addRow(tr("Preview:"), m_preview);
        connect(m_nameEdit, &QLineEdit::textChanged, this, &FolderOrTagWindow::updatePreview);
        updateColorButtons();
        updatePreview();
    }

    const SheetButtons sheetButtons = SheetButtons::make(this);
    m_cancelButton = sheetButtons.cancel;
    m_saveButton = sheetButtons.save;
    connect(m_saveButton, &QPushButton::clicked, this, &FolderOrTagWindow::save);
    QHBoxLayout* buttons = sheetButtons.layout;

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_titleLabel);
    layout->addWidget(m_informativeLabel);
    layout->addSpacing(style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing, nullptr, this));
    layout->addLayout(form);
    layout->addStretch(1);
    layout->addLayout(buttons);

    connect(m_parentPopup, &QComboBox::currentIndexChanged, this, &FolderOrTagWindow::updateTexts);
    updateTexts();
    m_nameEdit->setFocus(Qt::OtherFocusReason);
}

bool FolderOrTagWindow::isTag() const
{
    return m_mode == Mode::NewTag || m_mode == Mode::EditTag;
}

void FolderOrTagWindow::fillParents(Record* current)
{
    m_parents = CategoryTree(m_scratch).containers();
    // An edited folder cannot go inside itself; the tree says which places it refuses.
    if (m_node) {
        m_parents.removeIf([this](const Record* container) {
            return CategoryTree::dropRefusal({m_node}, container) != CategoryTree::DropRefusal::None;
        });
    }
    const QStringList entries = FolderOrTagSheet::parentEntries(m_parents);
    for (const QString& entry : entries) {
        qsizetype level = 0;
        while (level < entry.size() && entry.at(level) == QLatin1Char('\t'))
            ++level;
        m_parentPopup->addItem(entry.mid(level));
        m_parentPopup->setItemData(m_parentPopup->count() - 1, int(level), kLevelRole);
    }
    m_parentPopup->setCurrentIndex(int(m_parents.indexOf(current)));
}

Record* FolderOrTagWindow::chosenParent() const
{
    return m_parents.value(m_parentPopup->currentIndex(), nullptr);
}

void FolderOrTagWindow::updateTexts()
{
    const Record* parent = chosenParent();
    const QString parentName =
        parent ? parent->value(s("name")).toString() : m_parentPopup->placeholderText();
    const QString title = FolderOrTagSheet::title(m_mode);
    setWindowTitle(title);
    m_titleLabel->setText(title);
    m_informativeLabel->setText(FolderOrTagSheet::informativeText(m_mode, parentName));
}

void FolderOrTagWindow::updatePreview()
{
    if (!m_preview)
        return;
    m_preview->setText(FolderOrTagSheet::previewName(m_nameEdit->text()));
    // A tag without colours of its own is drawn in the window's.
    m_preview->setColors(m_foreground.isValid() ? m_foreground : palette().color(QPalette::WindowText),
                         m_background.isValid() ? m_background : palette().color(QPalette::Button));
}

QToolButton* FolderOrTagWindow::addTagTypeButton(int type, const QString& text, const char* name)
{
    auto* button = new QToolButton(this);
    button->setObjectName(s(name));
    button->setText(text);
    button->setCheckable(true);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setFocusPolicy(Qt::StrongFocus);
    m_tagTypes->addButton(button, type);
    m_tagTypeButtons << button;
    return button;
}

QPushButton* FolderOrTagWindow::makeColorButton(const char* name, const QString& toolTip)
{
    auto* button = new QPushButton(this);
    button->setObjectName(s(name));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoDefault(false);
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    const int height = fontMetrics().height();
    button->setIconSize(QSize(height * 3, height));
    return button;
}

void FolderOrTagWindow::updateColorButtons()
{
    const auto swatch = [this](QPushButton* button, const QColor& colour) {
        QPixmap pixmap(button->iconSize() * devicePixelRatio());
        pixmap.setDevicePixelRatio(devicePixelRatio());
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        const QRect area(QPoint(0, 0), button->iconSize() - QSize(1, 1));
        painter.setPen(palette().color(QPalette::Mid));
        if (colour.isValid())
            painter.setBrush(colour);
        painter.drawRect(area);
        painter.end();
        button->setIcon(QIcon(pixmap));
        // The colour in words too, for whoever cannot see the swatch.
        button->setAccessibleDescription(colour.isValid() ? colour.name().toUpper() : tr("None"));
    };
    swatch(m_backgroundButton, m_background);
    swatch(m_foregroundButton, m_foreground);
}

void FolderOrTagWindow::chooseColor(bool background)
{
    QColor& target = background ? m_background : m_foreground;
    const QColor before = target;
    auto* dialog = new QColorDialog(before.isValid() ? before : Qt::white, this);
    dialog->setObjectName(s("colorDialog"));
    dialog->setWindowTitle(background ? tr("Background Color") : tr("Font Color"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // The preview follows the colour as it is chosen, and goes back when the choice is cancelled.
    connect(dialog, &QColorDialog::currentColorChanged, this, [this, &target](const QColor& colour) {
        target = colour;
        updatePreview();
    });
    connect(dialog, &QColorDialog::colorSelected, this, [this, &target](const QColor& colour) {
        target = colour;
        updateColorButtons();
        updatePreview();
    });
    connect(dialog, &QDialog::rejected, this, [this, &target, before] {
        target = before;
        updatePreview();
    });
    dialog->setWindowModality(Qt::WindowModal);
    dialog->open();
}

void FolderOrTagWindow::save()
{
    const int type = isTag() ? m_tagTypes->checkedId() : 0;
    if (!FolderOrTagSheet::checkTagType(m_mode, type, m_prompter))
        return;
    CategoryTree tree(m_scratch);
    Record* parent = chosenParent();
    const QString name = m_nameEdit->text();
    if (!m_node) {
        m_node = isTag() ? tree.newTag(name, type, parent) : tree.newFolder(name, parent);
    } else {
        // A node made by an earlier, failed save is updated like an edited one.
        if (m_node->related(s("parent")) != parent)
            tree.move({m_node}, parent, -1);
        m_node->setValue(s("name"), name);
        if (isTag())
            m_node->setValue(s("type"), type);
    }
    // A tag keeps no colour it never had unless one is chosen.
    if (isTag()) {
        if (m_foreground.isValid() && m_foreground != colourOf(m_node, "foreground_color"))
            m_node->setValue(s("foreground_color"), m_foreground);
        if (m_background.isValid() && m_background != colourOf(m_node, "background_color"))
            m_node->setValue(s("background_color"), m_background);
    }
    store::StoreError error;
    if (!m_scratch.save(&error)) {
        m_prompter.alert(tr("Cannot Save"), error.message(), {tr("OK")});
        return;
    }
    accept();
}

} // namespace corvanta::ui
