#include "zrqrybld/adapters/web/web_editors.h"

#include "zrqrybld/adapters/web/fields.h"
#include "zrqrybld/adapters/web/web_canvas.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

std::string PackedEntries(const std::vector<ListEntry>& entries) {
  Fields fields;
  for (const ListEntry& entry : entries) fields.push_back(Packed({entry.text, entry.detail}));
  return Packed(fields);
}

}  // namespace

WebTextEditor::WebTextEditor(EditorGround ground) : Numbered(ground.home), ground_(std::move(ground)) {
  zrp_editor_make(Number(), ground_.surface);
}

WebTextEditor::~WebTextEditor() { zrp_editor_end(Number()); }

void WebTextEditor::SetBounds(const PixelRect& bounds) {
  const PixelRect place = ground_.inElement(bounds);
  zrp_editor_place(Number(), place.left.Value(), place.top.Value(), place.width.Value(), place.height.Value());
}

void WebTextEditor::SetVisible(bool visible) {
  const std::string name = visible ? ground_.name() : std::string();
  zrp_editor_show(Number(), visible, name.data(), LengthOf(name));
}

void WebTextEditor::SetFont(const Font& font) { zrp_editor_font(Number(), CssFont(font).c_str()); }

void WebTextEditor::SetText(std::string_view text) {
  if (text == Text()) return;
  zrp_editor_set(Number(), text.data(), LengthOf(text));
  Changed.Raise();
}

std::string WebTextEditor::SelText() const {
  const std::string text = Text();
  const auto place = [&](std::int32_t units) {
    std::size_t at = 0;
    while (units > 0 && at < text.size()) units -= DecodeUtf8(text, at) > 0xFFFF ? 2 : 1;
    return at;
  };
  const std::size_t from = place(SelStart());
  return text.substr(from, place(SelStart() + SelLength()) - from);
}

void WebTextEditor::SetSelText(std::string_view text) {
  zrp_editor_replace(Number(), text.data(), LengthOf(text));
  Changed.Raise();
}

void WebPopupList::Open(const PixelRect& owner, std::vector<ListEntry> entries, std::int32_t highlighted) {
  open_ = true;
  highlighted_ = highlighted;
  const std::string fields = PackedEntries(entries);
  const PixelRect place = ground_.inElement(owner);
  zrp_list_open(Number(), ground_.surface, place.left.Value(), place.top.Value(), place.width.Value(),
                place.height.Value(), fields.data(), LengthOf(fields), highlighted);
}

void WebPopupList::OpenAt(int character, const std::vector<ListEntry>& entries, std::int32_t highlighted) {
  open_ = true;
  highlighted_ = highlighted;
  const std::string fields = PackedEntries(entries);
  zrp_list_open_at(Number(), area_, character, fields.data(), LengthOf(fields), highlighted);
}

void WebPopupList::Close() {
  if (std::exchange(open_, false)) zrp_list_close(Number());
}

void WebPopupList::Highlight(std::int32_t index) {
  highlighted_ = index;
  if (open_) zrp_list_highlight(Number(), index);
}

}  // namespace zrqrybld
