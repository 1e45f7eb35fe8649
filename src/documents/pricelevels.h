#pragma once

#include <QList>
#include <QString>
#include <optional>

namespace corvanta::store {
class EditingContext;
class Record;
} // namespace corvanta::store

namespace corvanta::documents {

// The five price levels of a document editor's rows. Each row keeps one price per level in
// `custom_price01` ... `custom_price05`; `unit_price` is the working copy of the active level,
// which starts at the first.
class PriceLevels
{
public:
    static constexpr int kCount = 5;

    int active() const { return m_active; }
    // The row's slot of a level (1 to 5): "custom_price01" ... "custom_price05".
    static QString slotKey(int level);
    // The key the price field of a level edits: `unit_price` for the active level, its own
    // slot for the others.
    QString fieldKey(int level) const;
    // The key of a level's label colour; the active level's label is highlighted.
    static QString labelColorKey(int level) { return QStringLiteral("color_") + slotKey(level); }
    bool isHighlighted(int level) const { return level == m_active; }

    // Makes `level` active (without one, keeps the active level, as every save does): each row
    // first keeps its `unit_price` in the slot of the level active until now, then takes its
    // `unit_price` from the new level's slot, which recomputes it. An invalid level is ignored.
    void defaultPriceChanged(const QList<store::Record*>& rows, std::optional<int> level = std::nullopt);

    // The labels of the five levels: the item price labels ("item_custom_price01" ...).
    static QStringList labels(store::EditingContext& context);

private:
    int m_active = 1;
};

} // namespace corvanta::documents
