// CellSuggestions: predictive text in the editor of a cell.
//
// It lives as long as one edit. The grid offers it the editor's keys first; its list opens below the cell, never over
// the text. In a combo there is one list at a time: the combo's own while an item begins with what is typed, otherwise
// this one, and this one always on Ctrl+Space.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/expression/predictive_typing.h"
#include "zrqrybld/platform/editors.h"
#include "zrqrybld/platform/surface.h"

namespace zrqrybld {

class CellSuggestions final : private SuggestedText {
 public:
  /// What it needs of the cell's editor. The editor must outlive this; `closeOther` closes the list of a combo.
  struct Cell {
    Surface& surface;
    TextEditor& editor;
    zrqrybld::Font font;
    std::function<bool()> isOtherOpen;
    std::function<void()> closeOther;
  };
  CellSuggestions(Cell cell, Ref<qbIntelliList> list);

  /// Where the editor stands, in pixels of the surface; an open list closes.
  void SetBounds(const PixelRect& bounds);
  /// A key, before the editor acts on it. Returns whether it was used here.
  bool OnKeyDown(const KeyEvent& event);
  /// Another list opens.
  void Close() { typing_.List()->Close(); }

 private:
  std::string Text() const override { return cell_.editor.Text(); }
  TextRange Selection() const override;
  void Select(TextRange part) override;
  void Replace(TextRange part, const std::string& text) override;
  void ShowList(const qbIntelliList& list) override;
  void OnChanged();

  Cell cell_;
  PixelRect bounds_{};
  std::shared_ptr<PopupList> popup_;  // made on first use
  bool typed_ = false;                // the key that is going down types something
  PredictiveTyping typing_;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
