// qbEntityItem: one column of an entity, a thin face over its row in the entity's box.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/diagram/box_rows.h"
#include "zrqrybld/diagram/diagram_state.h"
#include "zrqrybld/host/properties.h"

namespace zrqrybld {

/// Once the item was removed, `Properties` stays readable; every other member is error 91.
class ZRQRYBLD_API qbEntityItem final : public Object {
 public:
  std::string_view TypeName() const override { return "qbEntityItem"; }

  /// Whether the column is ticked in its box. Setting it works as the user's click does.
  bool Checked() const { return Row().Checked(); }
  void SetChecked(bool checked) { Row().SetChecked(checked); }

  /// The position in the list, from 1.
  std::int32_t Index() const { return static_cast<std::int32_t>(Row().Index()); }

  /// The key in the list, "" when it has none. Error 457 when another item has the new key.
  const std::string& Key() const { return Row().Key(); }
  void SetKey(std::string key);

  /// Free facts; the table picker leaves "data_type" and "is_long" here.
  const Ref<qbProperties>& Properties() const { return properties_; }

  /// The text shown, normally the column's name.
  const std::string& Text() const { return Row().Text(); }
  void SetText(std::string text) { Row().SetText(std::move(text)); }

  /// Shown in bold; the table picker sets it for primary keys.
  bool Bold() const { return Row().Bold(); }
  void SetBold(bool bold) { Row().SetBold(bold); }

  /// The text's colour.
  zrqrybld::Color Color() const { return Row().ForeColor(); }
  void SetColor(zrqrybld::Color color) { Row().SetForeColor(color); }

  /// An index or key into the pane's `ItemsImageList`; one that it does not have is ignored. While the pane has no list
  /// the value is kept and shows nothing.
  const Variant& SmallIcon() const { return Row().SmallIcon(); }
  void SetSmallIcon(Variant icon) { Row().SetSmallIcon(std::move(icon)); }

  /// What the column holds; the table picker sets it from the column's type.
  TypeKind Kind() const { return Row().Kind(); }
  void SetKind(TypeKind kind) { Row().SetKind(kind); }

  /// What the row's tool tip says; "" shows the text.
  const std::string& ToolTipText() const { return Row().ToolTipText(); }
  void SetToolTipText(std::string text) { Row().SetToolTipText(std::move(text)); }

  // --- For the model ---

  /// All but its tick, as a value.
  ItemState State() const;

 private:
  friend class qbEntityItems;
  void Restore(const ItemState& state);
  qbEntityItem(KeyedList<Ref<qbEntityItem>>* list, Ref<BoxRow> row) : list_(list), row_(std::move(row)) {}
  BoxRow& Row() const;
  void Detach() {
    list_ = nullptr;
    row_ = nullptr;
  }

  KeyedList<Ref<qbEntityItem>>* list_;  // the list that holds the item; both none once it was removed
  Ref<BoxRow> row_;
  Ref<qbProperties> properties_ = std::make_shared<qbProperties>();
};

}  // namespace zrqrybld
