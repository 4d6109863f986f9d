#include "zrqrybld/adapters/qt/name_find_bar.h"

#include "zrqrybld/adapters/qt/control_widget.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/diagram/diagram_pane.h"

namespace zrqrybld {

NameFindBar::NameFindBar(ControlWidget& view, const Ref<qbDiagramPane>& pane)
    : FindFrame(&view), view_(view), pane_(pane) {
  SetTexts(EnglishTexts());
  connect(&Word(), &QLineEdit::textChanged, this, [this] { Look(FindFrom::Here); });
}

void NameFindBar::SetTexts(const TextSource& texts) { SetWords(texts, text::FindNames, text::FindNames); }

void NameFindBar::Open() {
  view_.SetBar(this);
  Word().selectAll();
  Word().setFocus();
}

void NameFindBar::Close() {
  view_.SetBar(nullptr);
  view_.setFocus();
}

void NameFindBar::Look(FindFrom from) {
  const Ref<qbDiagramPane> pane = pane_.lock();
  const FoundNames found = pane ? pane->FindName(ToUtf8(Word().text()), from) : FoundNames{};
  ShowCount(found.place, found.count);
}

}  // namespace zrqrybld
