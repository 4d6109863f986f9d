// Scenarios that stand in tests/data/designer.txt and grid_edits.txt: what a user or an application does, and what the
// designer holds after each step.
#include <map>
#include <stdexcept>

#include "tests/data_table.h"
#include "tests/hub/hub_fixture.h"

namespace zrqrybld {
namespace {

using Words = std::vector<std::string>;

class Script : public test::Designer {
 public:
  Script() {
    link_ = hub->Info.Connect([this](QueryBuilderInfoEnum& info, Variant& thing) {
      const auto entity = std::dynamic_pointer_cast<qbEntity>(thing.ToObject());
      infos_ += (infos_.empty() ? "" : " ") + std::to_string(info) + ":" + (entity ? entity->Caption() : thing.Text()) +
                "/" + std::to_string(hub->state());
    });
    editLink_ = grid->AfterEdit.Connect([this](std::int32_t, std::int32_t) { ++edits_; });
    Use();
  }

  // The first cell is an action, the others are checks "name=text".
  void Run(const test::Row& row) {
    infos_.clear();
    error_.clear();
    edits_ = 0;
    toolkit->GetDialogs().messages.clear();
    changes_ = Changes([&] {
      try {
        Words words;
        for (const std::string_view word : Split(row[0], " ")) words.push_back(ReplaceAll(word, "~", " "));
        Act(words);
      } catch (const Error& error) {
        error_ = std::to_string(error.Number());
      }
    });
    bool expectsError = false;
    for (std::size_t i = 1; i < row.cells.size(); ++i) {
      const std::size_t equals = row[i].find('=');
      const std::string name = row[i].substr(0, equals);
      expectsError |= name == "error";
      EXPECT_EQ(Ask(name), row[i].substr(equals + 1)) << name;
    }
    EXPECT_TRUE(expectsError || error_.empty()) << "error " << error_;
    EXPECT_EQ(toolkit->IsBusyPointer(), false);
  }

 private:
  static std::string OrNone(const std::string& word) { return word == "-" ? "" : word; }
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
    links_.push_back(grid->AfterEditExpressionFormat.Connect(
        [this, what](std::int32_t, std::int32_t, const std::string& table, const std::string& field, std::int32_t type,
                     bool isLong, const std::string&, const std::string&, std::string& text, bool& cancel) {
          formatted_ = table + "." + field + " " + std::to_string(type) + " " + Variant(isLong).Text() + " " + text;
          text += what == "keep" ? "!" : "0";
          cancel = what == "keep";
        }));
    if (links_.size() > 1) links_.erase(links_.begin());
  }

  void Act(const Words& w) {
    const std::map<std::string, std::function<void()>> actions = {
        // the source
        {"table", [&] { source->Table(w[2], Words(w.begin() + 3, w.end()), OrNone(w[1])); }},
        {"column", [&] { source->Column(w[1], w[2], Read(w[3])); }},
        {"forget", [&] { source->Forget(SchemaKind::Columns); }},
        {"fk", [&] { source->ForeignKey(w[2], w[3], w[5], w[6], OrNone(w[1]), OrNone(w[4])); }},
        {"literal", [&] { source->Literal(w[1], w[2]); }},
        {"source", [&] { source->SetConnectionString(w[1]); }},
        {"close", [&] { source->Close(); }},
        {"fail",
         [&] {
           source->failures = {{static_cast<SchemaKind>(std::stoi(w[1])), std::stoi(w[2])}};
         }},
        {"use", [&] { Use(); }},
        // the diagram
        {"add", [&] { hub->AddTable(OrNone(w[1])); }},
        {"remove", [&] { diagram->Entities()->Remove(w[1]); }},
        {"rename", [&] { Entity(w[1])->SetCaption(w[2]); }},
        {"clear", [&] { diagram->Clear(); }},
        {"tick", [&] { Tick(Split2(w[1]).first, Split2(w[1]).second); }},
        {"untick", [&] { Tick(Split2(w[1]).first, Split2(w[1]).second, false); }},
        {"autojoin", [&] { hub->RefreshAutoJoins(); }},
        {"join", [&] { JoinsOf(w[1]).Add(Entity(w[2])); }},
        {"from", [&] { JoinsOf(w[1]).Item(1)->SetSourceItemIndex(Read(w[2])); }},
        {"to", [&] { JoinsOf(w[1]).Item(1)->SetTargetItemIndex(Read(w[2])); }},
        {"kind", [&] { JoinsOf(w[1]).Item(1)->SetItemData(Read(w[2])); }},
        {"unjoin", [&] { JoinsOf(w[1]).Remove(1); }},
        // the grid
        {"set", [&] { Set(std::stoi(w[1]), w[2], w.size() > 3 ? w[3] : ""); }},
        {"output", [&] { row_ = grid->SetFieldOutput(Split2(w[1]).second, true, Split2(w[1]).first); }},
        {"again",
         [&] {
           row_ = grid->SetFieldOutput(Split2(w[1]).second, true, Split2(w[1]).first, {true, 0});
         }},
        {"before",
         [&] {
           row_ = grid->SetFieldOutput(Split2(w[2]).second, true, Split2(w[2]).first, {false, std::stoi(w[1])});
         }},
        {"delete",
         [&] {
           PressHeader(w[1], ShiftNone), PressHeader(w[2], ShiftShift), grid->Grid()->OnKeyDown({KeyCodeDelete, 0});
         }},
        {"edit",
         [&] {
           Open(w[1], w[2]);
           Surface().FocusedEditor()->Type(OrNone(w[3]));
           grid->Grid()->CommitEdit();
         }},
        {"choices",
         [&] {
           Open(w[1], w[2]);
           grid->Grid()->CancelEdit();
         }},
        {"drop",
         [&] {
           const PixelRect row = grid->Grid()->GetRowColumnXY(std::stoi(w[1]), 1);
           const MouseEvent at{ButtonLeft, ShiftNone, {200_px, row.CenterY()}};
           taken_ = grid->Grid()->OnDragOver(w[2], at);
           if (taken_) grid->Grid()->OnDrop(w[2], at);
         }},
        {"rows",
         [&] {
           std::vector<qbGridPane::RowContent> rows;
           for (auto name = w.begin() + 1; name != w.end(); ++name) {
             rows.push_back({Split2(*name).second, "", Split2(*name).first, true, "", "", "", {}});
           }
           grid->AddRows(rows);
         }},
        {"goto", [&] { grid->Grid()->GotoRowCol(std::stoi(w[1]), w[2]); }},
        {"paste", [&] { grid->Grid()->PasteText(w[1]); }},
        {"menu",
         [&] {
           grid->Grid()->GotoRowCol(std::stoi(w[1]), w[2]);
           grid->Grid()->OnKeyDown({KeyCodeF1 + 9, ShiftShift});
           RunMenu(Surface().LastMenu(), w[3]);
         }},
        {"answer",
         [&] {
           toolkit->GetDialogs().onShowExpression = [text = w[1]](ExpressionDialog& dialog) {
             dialog.text = text;
             return true;
           };
         }},
        {"handler", [&] { Handle(w[1]); }},
        {"group", [&] { grid->SetShowGroupBy(w[1] == "on"); }},
        {"width", [&] { grid->Grid()->Columns()->Item(w[1])->SetWidth(std::stof(w[2])); }},
        {"function", [&] { grid->SetGroupByFunction(std::stoi(w[1]), *hub->DBFunctions()->Find(w[2])); }},
        {"tables", [&] { grid->RefreshTables(); }},
        // the hub and the statement
        {"top", [&] { hub->SetSelectTopRecords(w[1]); }},
        {"distinct", [&] { hub->SetDistinctRecords(true); }},
        {"byordinal", [&] { hub->SetRetrieveFieldOrder(w[1] == "yes" ? FieldOrderOrdinal : FieldOrderDefault); }},
        {"state", [&] { hub->SetState(static_cast<QueryBuilderInfoEnum>(std::stoi(w[1]))); }},
        {"unreserve", [&] { hub->DBFunctions()->Remove(w[1]); }},
        {"reserve", [&] { hub->DBKeywords()->Add(w[1]); }},
        {"force", [&] { hub->QuotedIdentifiers()->Add(w[1]); }},
        {"refresh", [&] { sql->Refresh(); }},
        {"type", [&] { sql->SetSQLStatement(w[1]); }},
        {"dialect", [&] { sql->SetSQLSyntax(FindDialect(w[1])->syntax); }},
        {"where", [&] { where_ = sql->AddWhereClause(w[1]); }},
    };
    actions.at(w[0])();
  }

  std::string Ask(const std::string& name) {
    const std::size_t colon = name.find(':');
    const std::string of = colon == std::string::npos ? "" : name.substr(colon + 1);
    const std::map<std::string, std::function<std::string()>> answers = {
        {"error", [&] { return error_; }},
        {"changes", [&] { return std::to_string(changes_); }},
        {"infos", [&] { return infos_; }},
        {"state", [&] { return std::to_string(hub->state()); }},
        {"captions", [&] { return Captions(); }},
        {"joins", [&] { return Joins(); }},
        {"items", [&] { return Items(*Entity(of)); }},
        {"tag", [&] { return Entity(of)->TagVariant().Text(); }},
        {"has", [&] { return Variant(hub->HasTable(of)).Text(); }},
        {"asked", [&] { return std::to_string(source->Asked(of)); }},
        {"flags", [&] { return hub->Properties()->Find("_QBDSFLAGS")->Text(); }},
        {"rows", [&] { return Rows() + (LastRowIsEmpty() ? "" : " and no empty row"); }},
        {"row", [&] { return std::to_string(row_); }},
        {"count", [&] { return std::to_string(grid->RowCount()); }},
        {"cell", [&] { return Cell(std::stoi(of), of.substr(of.find(' ') + 1)); }},
        {"next", [&] { return std::to_string(grid->NextSortOrder(of.empty() ? 0 : std::stoi(of))); }},
        {"width", [&] { return Variant(grid->Grid()->Columns()->Item(of)->Width()).Text(); }},
        {"top", [&] { return hub->SelectTopRecords(); }},
        {"sql", [&] { return Sql(); }},
        {"where", [&] { return ReplaceAll(ReplaceAll(where_, "\r\n", ""), "\t", ""); }},
        {"cartesian", [&] { return Variant(sql->Cartesian()).Text(); }},
        {"ticked", [&] { return Ticked(); }},
        {"groups", [&] { return Groups(); }},
        {"list", [&] { return List(of.empty() ? "table" : of); }},
        {"taken", [&] { return Variant(taken_).Text(); }},
        {"edits", [&] { return std::to_string(edits_); }},
        {"formatted", [&] { return formatted_; }},
        {"hint", [&] { return grid->Grid()->Rows()->Item(std::stoi(of))->Hint(of.substr(of.find(' ') + 1)); }},
        {"messages",
         [&] {
           std::string all;
           for (const auto& message : toolkit->GetDialogs().messages) all += message.text;
           return all;
         }},
        {"icon", [&] { return std::to_string(static_cast<int>(toolkit->GetDialogs().messages.at(0).icon)); }},
    };
    return answers.at(name.substr(0, colon))();
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

  EventConnection link_;
  EventConnection editLink_;
  std::vector<EventConnection> links_;
  std::string formatted_;
  int edits_ = 0;
  std::string infos_;
  std::string error_;
  std::string where_;
  int changes_ = 0;
  std::int32_t row_ = 0;
  bool taken_ = false;
};

class Scripts : public testing::TestWithParam<const char*> {};

TEST_P(Scripts, DoWhatTheySay) {
  std::unique_ptr<Script> script;
  for (const test::Row& row : test::ReadRows(GetParam())) {
    SCOPED_TRACE(row.place + " " + row[0]);
    if (row[0].starts_with("---")) {
      script = std::make_unique<Script>();
    } else {
      script->Run(row);
    }
    if (testing::Test::HasFatalFailure()) return;
  }
}
INSTANTIATE_TEST_SUITE_P(Designer, Scripts, testing::Values("designer.txt", "grid_edits.txt"));

}  // namespace
}  // namespace zrqrybld
