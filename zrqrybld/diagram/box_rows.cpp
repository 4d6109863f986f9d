#include "zrqrybld/diagram/box_rows.h"

#include <utility>

namespace zrqrybld {

void BoxRow::Changed() const {
  if (!list_) return;
  list_->Note(*this);
  list_->Changed();
}

void BoxRow::SetText(std::string text) {
  const Ref<Object> alive = shared_from_this();
  const bool tells = list_ && checked_ && text != text_;
  if (!tells) {
    text_ = std::move(text);
    Changed();
  } else {
    list_->Change(true, [&] { Rename(std::move(text)); });
  }
}

void BoxRow::Rename(std::string text) {
  const std::string before = std::exchange(text_, std::move(text));
  Changed();
  if (list_->onRenamed) list_->onRenamed(before, text_);
}

void BoxRow::SetKey(std::string key) {
  if (list_) list_->rows_.Rekey(Index(), key);
  key_ = std::move(key);
  if (!list_) return;
  list_->Note(*this);
  list_->Revised();
}

void BoxRow::SetChecked(bool checked) {
  if (checked_ == checked) return;
  checked_ = checked;
  if (!list_) return;
  try {
    list_->TicksChanged();
  } catch (const std::bad_alloc&) {
    TakeTickBack();
    throw;
  }
  if (list_) list_->onChecked(RefTo(*this));
}

void BoxRow::SetBold(bool bold) {
  bold_ = bold;
  Changed();
}

void BoxRow::SetForeColor(Color color) {
  foreColor_ = color;
  Changed();
}

void BoxRow::SetSmallIcon(Variant icon) {
  if (list_ && list_->images_ && !icon.IsBlank() && !list_->images_->Item(icon)) return;
  smallIcon_ = std::move(icon);
  if (list_ && !smallIcon_.IsBlank()) list_->haveIcons_ = true;
  Changed();
}

Ref<Image> BoxRow::Picture() const {
  return list_ && list_->images_ && !smallIcon_.IsBlank() ? list_->images_->Item(smallIcon_) : nullptr;
}

void BoxRow::SetKind(TypeKind kind) {
  kind_ = kind;
  if (list_ && kind != TypeKind::None) list_->haveIcons_ = true;
  Changed();
}

void BoxRow::SetNote(ColumnNote note) {
  if (note == note_) return;
  note_ = std::move(note);
  if (list_) list_->onChanged();
}

void BoxRow::SetToolTipText(std::string text) {
  toolTipText_ = std::move(text);
  if (list_) list_->Revised();
}

void BoxRows::Revised() {
  ++revision_;
  onTouched();
}

void BoxRows::Changed() {
  Revised();
  onChanged();
}

void BoxRows::TicksChanged() {
  onTouched();
  onChanged();
}

void BoxRows::SetTicks(const std::vector<bool>& ticks) {
  bool changed = false;
  for (std::size_t i = 0; i < ticks.size() && i < Count(); ++i) {
    BoxRow& row = **rows_.At(i + 1);
    changed = changed || row.checked_ != ticks[i];
    row.checked_ = ticks[i];
  }
  if (changed) TicksChanged();
}

Ref<BoxRow> BoxRows::Add(std::string text, std::string key) {
  const Ref<BoxRow> row(new BoxRow(std::move(text), std::move(key)));
  rows_.Insert(row, row->key_);
  row->mark_ = rows_.MarkAt(rows_.Count());
  row->list_ = this;
  Note(*row);
  Changed();
  return row;
}

void BoxRows::Detach() {
  for (std::size_t i = 1; i <= rows_.Count(); ++i) (*rows_.At(i))->list_ = nullptr;
}

void BoxRows::Change(bool ticked, const std::function<void()>& work) {
  if (ticked && inStep) {
    inStep(work);
  } else {
    work();
  }
}

// The last first: so they leave the query at its end.
void BoxRows::TellLost(const std::vector<std::string>& texts) {
  const auto tell = onTickLost;
  for (auto text = texts.rbegin(); tell && text != texts.rend(); ++text) tell(*text);
}

void BoxRows::Clear() {
  std::vector<std::string> ticked;
  for (std::size_t i = 1; i <= rows_.Count(); ++i) {
    if ((*rows_.At(i))->Checked()) ticked.push_back((*rows_.At(i))->Text());
  }
  Change(!ticked.empty(), [&] {
    Detach();
    rows_.Clear();
    Changed();
    onRemoved();
    TellLost(ticked);
  });
}

void BoxRows::RemoveAt(std::size_t position) {
  std::vector<std::string> ticked;
  if ((*rows_.At(position))->Checked()) ticked.push_back((*rows_.At(position))->Text());
  Change(!ticked.empty(), [&] {
    rows_.RemoveAt(position)->list_ = nullptr;
    Changed();
    onRemoved();
    TellLost(ticked);
  });
}

}  // namespace zrqrybld
