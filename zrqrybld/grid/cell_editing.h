// CellEditing: the edit of a cell in place, from the opening of an editor until it is taken or given up.
//
// An edit ends once: it is taken out first, and only then is the cell written, so that whatever happens on the way (the
// focus moving, a message) finds no edit any more.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "zrqrybld/grid/cell_editor.h"
#include "zrqrybld/grid/cell_suggestions.h"
#include "zrqrybld/grid/rows.h"

namespace zrqrybld {

/// What an edit asks of its grid, and tells it.
class EditedGrid {
 public:
  EditedGrid() = default;
  EditedGrid(const EditedGrid&) = delete;
  EditedGrid& operator=(const EditedGrid&) = delete;
  virtual ~EditedGrid() = default;

  /// What shows the editors.
  virtual Surface& EditSurface() const = 0;
  /// Where the cell stands, and its editor.
  struct Place {
    PixelRect cell;
    PixelRect editor;
  };
  virtual Place PlaceOfEdit(std::int32_t row, std::int32_t column) const = 0;
  /// The text in the editor is another one.
  virtual void EditChanged() = 0;
  /// The editor was left, or a choice taken; `goesOn` when Enter has taken it.
  virtual void EditDone(bool goesOn) = 0;
  /// A key that the editor has no use for itself. Returns whether it is kept from it.
  virtual bool EditKey(const KeyEvent& key) = 0;
  virtual void EditorDoubleClicked() = 0;
  /// The list of choices is about to open; `cancel` set to true keeps it closed.
  virtual void BeforeListOpens(bool& cancel) = 0;
};

class CellEditing final : private CellEditorOwner {
 public:
  /// What helps with the text of a cell, by its column; nothing for none.
  using SuggestionSource = std::function<Ref<qbIntelliList>(std::int32_t column)>;

  /// `grid` must outlive this.
  explicit CellEditing(EditedGrid& grid) : grid_(grid) {}
  ~CellEditing() override;

  void SetSuggestionSource(SuggestionSource source) { source_ = std::move(source); }
  void SetFont(const Font& font);
  /// The surface is another one, and no edit goes on.
  void SurfaceChanged();

  bool IsOpen() const { return session_.has_value(); }
  /// Opens the editor of a cell. `typed` replaces the cell's text, as if it had been typed into the editor.
  void Open(const Ref<zrGridRow>& row, const Ref<zrGridColumn>& column, const std::string* typed);
  /// Whether the edited row, or the column, has left.
  bool HasLostRow() const { return session_ && session_->row->Index() == 0; }
  bool HasLostColumn() const { return session_ && session_->column->Index() == 0; }
  /// Whether the edited column is hidden.
  bool IsHidden() const { return session_ && session_->column->Width() <= 0; }
  /// Puts the editor where its cell is. Nothing without an edit.
  void Place();

  struct Result {
    Ref<zrGridRow> row;
    Ref<zrGridColumn> column;
    std::string before;  ///< the cell's text
    std::string text;    ///< the editor's
    bool mayBeChoice;    ///< of the column's list
  };
  /// Ends the edit, which goes on.
  Result Take();
  /// Gives the edit up.
  void Drop();

  // --- What reaches the grid while an edit goes on ---

  /// Whether the editor leaves the keyboard to the grid.
  bool LeavesKeyboard() const { return session_ && session_->editor->LeavesKeyboard(); }
  /// A key that the grid got.
  bool OnKeyDown(const KeyEvent& event) { return LeavesKeyboard() && session_->editor->OnKeyDown(event); }
  /// A key for the list of choices.
  void OnListKey(const KeyEvent& event);
  /// Whether the arrows move in the choices.
  bool UsesArrows() const { return session_ && session_->editor->HasChoices(); }
  bool OnMouseDown(const MouseEvent& event) { return session_ && session_->editor->OnMouseDown(event); }
  void OnMouseUp(const MouseEvent& event);
  void Paint(Canvas& canvas, const PixelRect& dirty) const;

 private:
  struct Session {
    Ref<zrGridRow> row;
    Ref<zrGridColumn> column;
    std::string text;  // of the cell before the edit
    CellEditor* editor;
  };

  Surface& EditorSurface() const override { return grid_.EditSurface(); }
  bool OfferKey(const KeyEvent& key) override { return suggestions_ && suggestions_->OnKeyDown(key); }
  bool LeaveKey(const KeyEvent& key) override { return grid_.EditKey(key); }
  void TextChanged() override { grid_.EditChanged(); }
  void EditorDone(bool goesOn) override { grid_.EditDone(goesOn); }
  void EditorDoubleClicked() override { grid_.EditorDoubleClicked(); }
  void BeforeDropDown(bool& cancel) override;
  void Suggest();
  void Close();

  EditedGrid& grid_;
  Font font_;
  TextCellEditor textEditor_{*this};
  ComboCellEditor comboEditor_{*this};
  SuggestionSource source_;
  std::optional<Session> session_;
  std::unique_ptr<CellSuggestions> suggestions_;  // of the edit, when there are any
};

}  // namespace zrqrybld
