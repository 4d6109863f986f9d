// Scenarios that stand in tests/data/designer.txt and grid_edits.txt: what a user or an application does, and what the
// designer holds after each step.
#include <stdexcept>

#include "tests/fakes/paint_watch.h"
#include "tests/hub_fixture.h"
#include "tests/player.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/history.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

class Script : public test::Player, public test::Designer {
 public:
  Script() {
    links_.push_back(hub->Info.Connect([this](QueryBuilderInfoEnum& info, Variant& thing) {
      const auto entity = std::dynamic_pointer_cast<qbEntity>(thing.ToObject());
      infos_ += (infos_.empty() ? "" : " ") + std::to_string(info) + ":" + (entity ? entity->Caption() : thing.Text()) +
                "/" + std::to_string(hub->state());
    }));
    links_.push_back(grid->AfterEdit.Connect([this](std::int32_t, std::int32_t) { ++edits_; }));
    links_.push_back(diagram->Entities()->BeforeAdd.Connect(
        [this](const std::string& key, bool& cancel) { cancel = prevented_ && key == "Customers"; }));
    links_.push_back(diagram->BeforeDeleteObject.Connect([this](auto&, bool& cancel) { cancel = prevented_; }));
    links_.push_back(grid->Grid()->BeforeChange.Connect([this](auto, auto, bool& cancel) { cancel = prevented_; }));
    links_.push_back(grid->Grid()->BeforeDelete.Connect([this](auto, auto, bool& cancel) { cancel = prevented_; }));
    hub->SetSaveLoadEntityItems(true);
    hub->Steps().SetClock([this] { return now_; });
    KnowActions();
    KnowHistory();
    KnowText();
    KnowAnswers();
    Use();
  }
  ~Script() override { sql->AttachTextArea(nullptr); }

 private:
  void Around(const std::function<void()>& act) override {
    infos_.clear();
    edits_ = 0;
    toolkit->GetDialogs().messages.clear();
    stepsBefore_ = hub->Steps().Count();
    if (watched_) {
      now_ += std::chrono::seconds(5);
      seenBefore_ = Seen();
    }
    changes_ = Changes(act);
  }
  void CheckAlways() override {
    EXPECT_FALSE(toolkit->IsBusyPointer());
    gridWatch_.Check();
    diagramWatch_.Check();
  }

  static Variant Read(const std::string& word) {
    if (word == "null") return Variant::Null();
    return word.size() == 1 && IsDigit(word[0]) ? Variant(word[0] - '0') : Variant(OrNone(word));
  }
  // The entity with this caption; "last" is the one added last.
  Ref<qbEntity> Entity(const std::string& caption) const {
    const Ref<qbEntities>& all = diagram->Entities();
    const Ref<qbEntity> entity = caption == "last" ? all->Item(all->Count()) : all->Item(caption);
    if (!entity) throw std::runtime_error("no entity " + caption);
    return entity;
  }
  qbRelationships& JoinsOf(const std::string& table) const { return *Entity(table)->Relationships(); }
  // "table.column": the table may hold points.
  static std::pair<std::string, std::string> Split2(const std::string& text) {
    return {text.substr(0, text.rfind('.')), text.substr(text.rfind('.') + 1)};
  }
  void PressHeader(const std::string& row, std::int32_t shift) {
    const PixelRect cell = grid->Grid()->GetRowColumnXY(std::stoi(row), 1);
    grid->Grid()->OnMouseDown({ButtonLeft, shift, {2_px, cell.CenterY()}});
  }

  HeadlessSurface& Surface() { return static_cast<HeadlessSurface&>(grid->Grid()->GetSurface()); }
  void Open(const std::string& row, const std::string& column) {
    grid->Grid()->GotoRowCol(std::stoi(row), column);
    ASSERT_TRUE(grid->Grid()->EditCell());
  }
  // "Entry", or "Menu/Entry" of one that opens beside it.
  void RunMenu(const Menu& menu, std::string_view path) {
    for (const MenuEntry& entry : menu) {
      const std::string text = ReplaceAll(ReplaceAll(entry.text, "&", ""), "...", "");
      if (text == path && entry.enabled) return entry.action();
      if (path.starts_with(text + "/")) return RunMenu(entry.entries, path.substr(text.size() + 1));
    }
    ADD_FAILURE() << "no entry " << path;
  }
  void Handle(const std::string& what) {
    format_ = EventConnection(grid->AfterEditExpressionFormat.Connect(
        [this, what](std::int32_t, std::int32_t, const std::string& table, const std::string& field, std::int32_t type,
                     bool isLong, const std::string&, const std::string&, std::string& text, bool& cancel) {
          formatted_ = table + "." + field + " " + std::to_string(type) + " " + Variant(isLong).Text() + " " + text;
          text += what == "keep" ? "!" : "0";
          cancel = what == "keep";
        }));
  }

  std::string Design() const { return hub->SaveQueryToText(); }
  // Which box covers which is no part of a step, so of the picture only its size counts.
  std::string Seen() const { return Design() + std::to_string(diagram->PictureSvg().size()); }
  // The name of the step that the row was, which is undone and redone to see that both designs come back; "-" when it
  // was none.
  std::string Step() {
    if (hub->Steps().Count() == stepsBefore_) return Seen() == seenBefore_ ? "-" : "a change without a step";
    EXPECT_EQ(hub->Steps().Count(), stepsBefore_ + 1);
    const std::string name = hub->UndoText();
    const std::string after = Seen();
    EXPECT_TRUE(hub->Undo());
    EXPECT_EQ(Seen(), seenBefore_);
    EXPECT_EQ(hub->RedoText(), name);
    EXPECT_TRUE(hub->Redo());
    EXPECT_EQ(Seen(), after);
    return name;
  }
  void DragBox(const std::string& table, PixelPoint from, PixelPoint by, bool cancelled) {
    const PixelRect box = ScreenScale{}.ToPixels(Entity(table)->EntityBox()->Bounds());
    const PixelPoint start{box.left + kSurfaceMargin + from.x, box.top + kSurfaceMargin + from.y};
    diagram->OnMouseDown({ButtonLeft, ShiftNone, start});
    for (const double part : {0.5, 1.0}) {
      diagram->OnMouseMove({ButtonLeft, ShiftNone, start + PixelPoint{by.x * part, by.y * part}});
    }
    if (cancelled) diagram->OnKeyDown({KeyCodeEscape, ShiftNone});
    diagram->OnMouseUp({ButtonLeft, ShiftNone, start + by});
  }
  void SelectRows(const Words& w) { grid->Grid()->SelectRows(std::stoul(w[1]), std::stoul(w[2])); }
  Ref<qbRelationship> FirstJoin() const { return diagram->Entities()->Item(1)->Relationships()->Item(1); }

  // Everything that makes a step, or must not.
  void KnowHistory() {
    const auto pixels = [](const std::string& text) { return Pixels(std::stod(text)); };
    // A listener does something itself; "-" ends all.
    actions["when"] = [this](const Words& w) {
      const auto act = [this, step = w[2]](auto&&...) { Do(step); };
      whens_.clear();
      if (w[1] == "added") whens_.push_back(diagram->Entities()->EntityAdd.Connect(act));
      if (w[1] == "checked") whens_.push_back(diagram->EntityItemCheck.Connect(act));
      if (w[1] == "edited") whens_.push_back(grid->AfterChange.Connect(act));
      if (w[1] == "moved") whens_.push_back(grid->RowColChange.Connect(act));
      if (w[1] == "written") whens_.push_back(sql->SQLChanged.Connect(act));
      if (w[1] != "joined") return;
      whens_.push_back(hub->Info.Connect([act](QueryBuilderInfoEnum& info, Variant&) {
        if (info == InfoRelationshipAdded) act();
      }));
    };
    actions["watch"] = [this](auto&) { watched_ = true; };
    actions["pass"] = [this](const Words& w) { now_ += std::chrono::milliseconds(std::stoi(w[1])); };
    actions["undo"] = [this](auto&) { done_ = hub->Undo(); };
    actions["redo"] = [this](auto&) { done_ = hub->Redo(); };
    actions["begin"] = [this](const Words& w) { hub->BeginStep(w[1]); };
    actions["end"] = [this](auto&) { hub->EndStep(); };
    actions["forgetsteps"] = [this](auto&) { hub->ClearHistory(); };
    actions["language"] = [this](const Words& w) { hub->SetLanguageString(kStepAddTable.id, w[1]); };
    actions["prevent"] = [this](const Words& w) { prevented_ = w[1] == "yes"; };
    actions["pick"] = [this](const Words& w) { TablePicker(hub).AddTables({w[1]}); };
    actions["select"] = [this](const Words& w) { diagram->SelectObject(Entity(w[1])); };
    actions["zoom"] = [this](const Words& w) { diagram->SetZoom(std::stod(w[1]), {}); };
    actions["arrange"] = [this](auto&) { diagram->Arrange(); };
    actions["drag"] = [this, pixels](const Words& w) {
      DragBox(w[1], {30_px, 10_px}, {pixels(w[2]), pixels(w[3])}, w.size() > 4);
    };
    actions["size"] = [this, pixels](const Words& w) {
      DragBox(w[1], {ScreenScale{}.PixelsX(Entity(w[1])->EntityBox()->Bounds().width), 40_px}, {pixels(w[2]), 0_px},
              false);
    };
    actions["press"] = [this](const Words& w) {
      diagram->SelectObject(Entity(w[1]));
      diagram->OnKeyDown({std::stoi(w[2]), std::stoi(w[3])});
    };
    // A key that is held.
    actions["hold"] = [this](const Words& w) {
      for (int i = 0; i < 20; ++i, now_ += std::chrono::milliseconds(30)) actions["press"](w);
    };
    actions["deleterows"] = [this](const Words& w) { SelectRows(w), grid->Grid()->DeleteSelectedRows(); };
    actions["insertrows"] = [this](const Words& w) { SelectRows(w), grid->Grid()->InsertRows(); };
    // Rows by program.
    actions["norows"] = [this](auto&) { grid->Grid()->Rows()->Clear(); };
    actions["addrow"] = [this](const Words& w) {
      const bool behind = std::stoi(w[1]) > grid->RowCount();
      grid->Grid()->Rows()->Add({}, behind ? Variant::Missing() : Variant(std::stoi(w[1])));
    };
    actions["norow"] = [this](const Words& w) { grid->Grid()->Rows()->Remove(std::stoi(w[1])); };
    actions["moverow"] = [this](const Words& w) { grid->Grid()->Rows()->Move(std::stoi(w[1]), std::stoi(w[2])); };
    actions["moverows"] = [this](const Words& w) { SelectRows(w), grid->Grid()->MoveRows(1); };
    actions["sort"] = [this](const Words& w) {
      hub->SortByColumn(Split2(w[1]).first, Split2(w[1]).second, OrNone(w[2]));
    };
    actions["aggregate"] = [this](const Words& w) { hub->GroupColumn(Split2(w[1]).first, Split2(w[1]).second, w[2]); };
    actions["kindof"] = [this](const Words& w) {
      toolkit->GetDialogs().onShowJoinProperties = [&](JoinDialog& dialog) {
        return dialog.table2Checked = w[1] == "2";
      };
      hub->ShowJoinProperties(FirstJoin());
    };
    actions["asks"] = [this](const Words& w) { FirstJoin()->SetCondition(w[1]); };
    actions["deletejoin"] = [this](auto&) {
      diagram->SelectObject(FirstJoin());
      diagram->OnKeyDown({KeyCodeDelete, ShiftNone});
    };
    actions["load"] = [this](auto&) {
      const std::string text = Design();
      const StepScope step(hub, kStepLoadQuery);
      diagram->Clear();
      hub->SetDistinctRecords(true);
      hub->LoadQuery(text, true);
      hub->AddTable("Orders");
    };
  }

  // The text of the statement under its user's hands.
  void KnowText() {
    actions["text"] = [this](auto&) { sql->AttachTextArea(&area_); };
    actions["typesql"] = [this](const Words& w) { area_.Type(w[1]); };
    actions["apply"] = [this](const Words& w) {
      area_.Type(w[1]);
      if (!sql->ApplyEditedText()) sql->RevertEditedText();
    };
    actions["leave"] = [this](auto&) { area_.Left.Raise(); };
    actions["command"] = [this](const Words& w) { area_.Commands().at(std::stoul(w[1])).run(); };
    actions["ctrlenter"] = [this](auto&) {
      std::int32_t key = KeyCodeEnter;
      area_.KeyDown.Raise(key, ShiftCtrl);
      EXPECT_EQ(key, 0);
    };
    actions["typecell"] = [this](const Words& w) {
      grid->Grid()->GotoRowCol(std::stoi(w[1]), w[2]);
      grid->Grid()->OnKeyDown({w[3][0], ShiftNone, w[3]});
    };
    actions["like"] = [this](const Words& w) { sql->SetLikeOperator(w[1]); };
    answers["area"] = [this](auto&) { return area_.Text(); };
    answers["edited"] = [this](auto&) { return Variant(sql->IsEdited()).Text(); };
    answers["fault"] = [this](auto&) { return area_.Fault(); };
    answers["commands"] = [this](auto&) { return std::to_string(area_.Commands().size()); };
    answers["remark"] = [this](auto&) { return area_.Remarks().empty() ? "" : area_.Remarks().front(); };
    answers["remarks"] = [this](auto&) { return std::to_string(area_.Remarks().size()); };
    answers["step"] = [this](auto&) { return Step(); };
    answers["condition"] = [this](auto&) { return FirstJoin()->Condition(); };
    answers["steps"] = [this](auto&) { return std::to_string(hub->Steps().Count()); };
    answers["undo"] = [this](auto&) { return hub->UndoText(); };
    answers["redo"] = [this](auto&) { return hub->RedoText(); };
    answers["done"] = [this](auto&) { return Variant(done_).Text(); };
    answers["left"] = [this](const std::string& of) { return Variant(Entity(of)->Left()).Text(); };
    answers["source"] = [this](const std::string& of) {
      std::vector<qbQueryBuilder::DataSourceQuestion> questions{{of, {}}};
      hub->QueryDataSource(questions);
      return questions[0].answer.Text();
    };
  }

  void KnowActions() {
    // the source
    actions["table"] = [this](const Words& w) { source->Table(w[2], Words(w.begin() + 3, w.end()), OrNone(w[1])); };
    actions["column"] = [this](const Words& w) {
      const int type = w.size() > 4 ? std::stoi(w[4]) : static_cast<int>(DataTypeCode::Integer);
      source->Column(w[1], w[2], Read(w[3]), {}, static_cast<DataTypeCode>(type));
    };
    actions["forget"] = [this](auto&) { source->Forget(SchemaKind::Columns); };
    actions["fk"] = [this](const Words& w) { source->ForeignKey(w[2], w[3], w[5], w[6], OrNone(w[1]), OrNone(w[4])); };
    actions["literal"] = [this](const Words& w) { source->Literal(w[1], w[2]); };
    actions["source"] = [this](const Words& w) { source->SetConnectionString(w[1]); };
    actions["close"] = [this](auto&) { source->Close(); };
    actions["fail"] = [this](const Words& w) {
      source->failures = {{static_cast<SchemaKind>(std::stoi(w[1])), std::stoi(w[2])}};
    };
    actions["use"] = [this](auto&) { Use(); };
    // the diagram
    actions["add"] = [this](const Words& w) { hub->AddTable(OrNone(w[1])); };
    actions["remove"] = [this](const Words& w) { diagram->Entities()->Remove(w[1]); };
    actions["rename"] = [this](const Words& w) { Entity(w[1])->SetCaption(w[2]); };
    actions["clear"] = [this](auto&) { diagram->Clear(); };
    actions["tick"] = [this](const Words& w) { Tick(Split2(w[1]).first, Split2(w[1]).second); };
    actions["untick"] = [this](const Words& w) { Tick(Split2(w[1]).first, Split2(w[1]).second, false); };
    actions["autojoin"] = [this](auto&) { hub->RefreshAutoJoins(); };
    actions["join"] = [this](const Words& w) { JoinsOf(w[1]).Add(Entity(w[2])); };
    actions["from"] = [this](const Words& w) { JoinsOf(w[1]).Item(1)->SetSourceItemIndex(Read(w[2])); };
    actions["to"] = [this](const Words& w) { JoinsOf(w[1]).Item(1)->SetTargetItemIndex(Read(w[2])); };
    actions["kind"] = [this](const Words& w) { JoinsOf(w[1]).Item(1)->SetItemData(Read(w[2])); };
    actions["unjoin"] = [this](const Words& w) { JoinsOf(w[1]).Remove(1); };
    actions["retext"] = [this](const Words& w) { Item(Split2(w[1]).first, Split2(w[1]).second)->SetText(w[2]); };
    actions["noitem"] = [this](const Words& w) { Entity(Split2(w[1]).first)->Items()->Remove(Split2(w[1]).second); };
    actions["noitems"] = [this](const Words& w) { Entity(w[1])->Items()->Clear(); };
    // the grid
    actions["nogrid"] = [this](auto&) { hub->SetGridPane(nullptr); };
    actions["grid"] = [this](auto&) { hub->SetGridPane(grid); };
    actions["set"] = [this](const Words& w) { Set(std::stoi(w[1]), w[2], w.size() > 3 ? w[3] : ""); };
    actions["output"] = [this](const Words& w) {
      row_ = grid->SetFieldOutput(Split2(w[1]).second, true, Split2(w[1]).first);
    };
    actions["again"] = [this](const Words& w) {
      row_ = grid->SetFieldOutput(Split2(w[1]).second, true, Split2(w[1]).first, {true, 0});
    };
    actions["before"] = [this](const Words& w) {
      row_ = grid->SetFieldOutput(Split2(w[2]).second, true, Split2(w[2]).first, {false, std::stoi(w[1])});
    };
    actions["delete"] = [this](const Words& w) {
      PressHeader(w[1], ShiftNone), PressHeader(w[2], ShiftShift), grid->Grid()->OnKeyDown({KeyCodeDelete, 0});
    };
    actions["edit"] = [this](const Words& w) {
      Open(w[1], w[2]);
      Surface().FocusedEditor()->Type(OrNone(w[3]));
      grid->Grid()->CommitEdit();
    };
    // A cell is open with a text and the caret behind so many of its characters; keys go to its editor.
    actions["open"] = [this](const Words& w) {
      Open(w[1], w[2]);
      Surface().FocusedEditor()->SetText(OrNone(w[3]));
      Surface().FocusedEditor()->Select(std::stoi(w[4]), 0);
    };
    actions["cellkey"] = [this](const Words& w) {
      bool used = false;
      Surface().FocusedEditor()->KeyDown.Raise(test::ReadKey(w[1]), used);
      EXPECT_TRUE(used);
    };
    actions["choices"] = [this](const Words& w) {
      Open(w[1], w[2]);
      grid->Grid()->CancelEdit();
    };
    actions["drop"] = [this](const Words& w) {
      const PixelRect row = grid->Grid()->GetRowColumnXY(std::stoi(w[1]), 1);
      const MouseEvent at{ButtonLeft, ShiftNone, {200_px, row.CenterY()}};
      taken_ = grid->Grid()->OnDragOver(w[2], at);
      if (taken_) grid->Grid()->OnDrop(w[2], at);
    };
    actions["rows"] = [this](const Words& w) {
      std::vector<QueryRow> rows;
      for (auto name = w.begin() + 1; name != w.end(); ++name) {
        rows.push_back({{Split2(*name).second, true, {}, {}, {}}, "", Split2(*name).first});
      }
      grid->AddRows(rows);
    };
    actions["resetrows"] = [this](auto&) { grid->ResetRows(); };
    actions["goto"] = [this](const Words& w) { grid->Grid()->GotoRowCol(std::stoi(w[1]), w[2]); };
    actions["paste"] = [this](const Words& w) { grid->Grid()->PasteText(w[1]); };
    actions["menu"] = [this](const Words& w) {
      grid->Grid()->GotoRowCol(std::stoi(w[1]), w[2]);
      grid->Grid()->OnKeyDown({KeyCodeF1 + 9, ShiftShift});
      RunMenu(Surface().LastMenu(), w[3]);
    };
    actions["answer"] = [this](const Words& w) {
      toolkit->GetDialogs().onShowExpression = [text = w[1]](ExpressionDialog& dialog) {
        dialog.text = text;
        return true;
      };
    };
    actions["handler"] = [this](const Words& w) { Handle(w[1]); };
    actions["ors"] = [this](const Words& w) {
      w[1] == "grow" ? grid->SetGrowOrColumns(true) : grid->SetOrColumns(std::stoi(w[1]));
    };
    actions["group"] = [this](const Words& w) { grid->SetShowGroupBy(w[1] == "on"); };
    actions["width"] = [this](const Words& w) { grid->Grid()->Columns()->Item(w[1])->SetWidth(std::stof(w[2])); };
    actions["function"] = [this](const Words& w) {
      grid->SetGroupByFunction(std::stoi(w[1]), *hub->DBFunctions()->Find(w[2]));
    };
    actions["tables"] = [this](auto&) { grid->RefreshTables(); };
    // the hub and the statement
    actions["top"] = [this](const Words& w) { hub->SetSelectTopRecords(w[1]); };
    actions["distinct"] = [this](auto&) { hub->SetDistinctRecords(true); };
    actions["byordinal"] = [this](const Words& w) {
      hub->SetRetrieveFieldOrder(w[1] == "yes" ? FieldOrderOrdinal : FieldOrderDefault);
    };
    actions["state"] = [this](const Words& w) { hub->SetState(static_cast<QueryBuilderInfoEnum>(std::stoi(w[1]))); };
    actions["unreserve"] = [this](const Words& w) { hub->DBFunctions()->Remove(w[1]); };
    actions["reserve"] = [this](const Words& w) { hub->DBKeywords()->Add(w[1]); };
    actions["force"] = [this](const Words& w) { hub->QuotedIdentifiers()->Add(w[1]); };
    actions["refresh"] = [this](auto&) { sql->Refresh(); };
    actions["type"] = [this](const Words& w) { sql->SetSQLStatement(w[1]); };
    actions["dialect"] = [this](const Words& w) { sql->SetSQLSyntax(FindDialect(w[1])->syntax); };
    actions["where"] = [this](const Words& w) { where_ = sql->AddWhereClause(w[1]); };
  }

  void KnowAnswers() {
    answers["changes"] = [this](auto&) { return std::to_string(changes_); };
    answers["infos"] = [this](auto&) { return infos_; };
    answers["state"] = [this](auto&) { return std::to_string(hub->state()); };
    answers["captions"] = [this](auto&) { return Captions(); };
    answers["joins"] = [this](auto&) { return Joins(); };
    answers["items"] = [this](const std::string& of) { return Items(*Entity(of)); };
    answers["tag"] = [this](const std::string& of) { return Entity(of)->TagVariant().Text(); };
    answers["has"] = [this](const std::string& of) { return Variant(hub->HasTable(of)).Text(); };
    answers["asked"] = [this](const std::string& of) { return std::to_string(source->Asked(of)); };
    answers["flags"] = [this](auto&) { return hub->Properties()->Find("_QBDSFLAGS")->Text(); };
    answers["rows"] = [this](auto&) { return Rows() + (LastRowIsEmpty() ? "" : " and no empty row"); };
    answers["row"] = [this](auto&) { return std::to_string(row_); };
    answers["count"] = [this](auto&) { return std::to_string(grid->RowCount()); };
    answers["ors"] = [this](auto&) { return std::to_string(grid->OrColumns()); };
    answers["cell"] = [this](const std::string& of) { return Cell(std::stoi(of), of.substr(of.find(' ') + 1)); };
    answers["next"] = [this](const std::string& of) {
      return std::to_string(grid->NextSortOrder(of.empty() ? 0 : std::stoi(of)));
    };
    answers["width"] = [this](const std::string& of) {
      return Variant(grid->Grid()->Columns()->Item(of)->Width()).Text();
    };
    answers["distinct"] = [this](auto&) { return Variant(hub->DistinctRecords()).Text(); };
    answers["top"] = [this](auto&) { return hub->SelectTopRecords(); };
    answers["sql"] = [this](auto&) { return Sql(); };
    answers["where"] = [this](auto&) { return ReplaceAll(ReplaceAll(where_, "\r\n", ""), "\t", ""); };
    answers["cartesian"] = [this](auto&) { return Variant(sql->Cartesian()).Text(); };
    answers["ticked"] = [this](auto&) { return Ticked(); };
    answers["groups"] = [this](auto&) { return Groups(); };
    answers["list"] = [this](const std::string& of) { return List(of.empty() ? "table" : of); };
    answers["offered"] = [this](auto&) {
      const std::shared_ptr<HeadlessPopupList> list = Surface().LastPopupList();
      return list && list->IsOpen() ? list->Texts().front() : std::string();
    };
    answers["taken"] = [this](auto&) { return Variant(taken_).Text(); };
    answers["edits"] = [this](auto&) { return std::to_string(edits_); };
    answers["formatted"] = [this](auto&) { return formatted_; };
    answers["hint"] = [this](const std::string& of) {
      return grid->Grid()->Rows()->Item(std::stoi(of))->Hint(of.substr(of.find(' ') + 1));
    };
    answers["messages"] = [this](auto&) {
      std::string all;
      for (const auto& message : toolkit->GetDialogs().messages) all += message.text;
      return all;
    };
    answers["icon"] = [this](auto&) {
      return std::to_string(static_cast<int>(toolkit->GetDialogs().messages.at(0).icon));
    };
  }

  // The grouping of the first three rows: text/tag.
  std::string Groups() const {
    std::string text;
    for (std::int32_t i = 1; i <= 3; ++i) {
      text += Cell(i, "group_by") + "/" + grid->Grid()->Rows()->Item(i)->TagVariant("group_by").Text() + ";";
    }
    return text;
  }
  std::string List(const std::string& column) const {
    std::string text;
    const Ref<zrGridComboItems>& list = grid->Grid()->Columns()->Item(column)->ComboItems();
    for (std::int32_t i = 1; i <= list->Count(); ++i) text += (i > 1 ? " " : "") + list->Item(i)->Text();
    return text;
  }

  test::PaintWatch gridWatch_{*grid->Grid()}, diagramWatch_{*diagram};
  EventConnection format_;
  std::vector<EventConnection> links_, whens_;
  std::string formatted_;
  int edits_ = 0;
  std::string infos_;
  std::string where_;
  int changes_ = 0;
  std::int32_t row_ = 0;
  bool taken_ = false;
  bool prevented_ = false;
  bool watched_ = false;
  bool done_ = false;
  std::size_t stepsBefore_ = 0;
  std::string seenBefore_;
  std::chrono::steady_clock::time_point now_;
  HeadlessTextArea area_;
};

[[maybe_unused]] const bool kScenarios = test::RegisterScenarios<Script>("DesignerScenario", "designer.txt") &&
                                         test::RegisterScenarios<Script>("HistoryScenario", "history.txt") &&
                                         test::RegisterScenarios<Script>("TypedSqlScenario", "typed_sql.txt") &&
                                         test::RegisterScenarios<Script>("GridEditScenario", "grid_edits.txt");

}  // namespace
}  // namespace zrqrybld
