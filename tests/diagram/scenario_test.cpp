// What a user does in the diagram with mouse and keys, and what an application does to its model: the scenarios of
// tests/data/diagram.txt.
#include <set>

#include "tests/diagram/diagram_fixture.h"
#include "tests/fakes/paint_watch.h"
#include "tests/player.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/whole_joins.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

// What a menu offers, in order: "-" is disabled, "!" checked, "|" a separator, "(...)" another menu.
std::string Offered(const Menu& menu) {
  std::string text;
  for (const MenuEntry& entry : menu) {
    text += entry.IsSeparator() ? "|" : (entry.enabled ? "" : "-") + std::string(entry.checked ? "!" : "") + entry.text;
    if (!entry.entries.empty()) text += "(" + Offered(entry.entries) + ")";
    text += ";";
  }
  return text;
}

std::string YesNo(bool value) { return value ? "yes" : "no"; }

class DiagramScene : public test::Player, private test::DiagramHands {
 public:
  DiagramScene() {
    Listen();
    KnowModel();
    KnowHands();
    KnowQuestions();
  }

 private:
  void CheckAlways() override { watch_.Check(); }

  // --- What is heard ---

  void Note(const char* kind, const std::string& entry) {
    if (heard_.contains(kind)) log_ += (log_.empty() ? "" : " ") + entry;
  }
  template <class E, class F>
  void On(E& event, F handler) {
    links_.push_back(event.Connect(handler));
  }
  void Listen() {
    On(pane->ObjectActivate, [this](const Ref<Object>& object) { Note("select", "+" + NameOf(object)); });
    On(pane->ObjectDeactivate, [this](const Ref<Object>& object) { Note("select", "-" + NameOf(object)); });
    On(pane->EntityItemClick, [this](auto&, const Ref<qbEntityItem>& item) { Note("click", "click " + item->Text()); });
    On(pane->EntityItemCheck, [this](const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item) {
      Note("check", entity->Caption() + "." + item->Text() + (item->Checked() ? " on" : " off"));
    });
    On(pane->DblClick, [this] { Note("double", "double " + NameOf(pane->SelectedObject())); });
    On(pane->MouseUp, [this](std::int32_t button, auto&&...) { Note("up", "surface" + std::to_string(button)); });
    On(pane->ObjectMouseUp, [this](std::int32_t button, auto&&...) { Note("up", "box" + std::to_string(button)); });
    On(pane->MouseMove, [this](auto&&...) { Note("moves", "surface"); });
    On(pane->ObjectMouseMove, [this](auto&&...) { Note("moves", "box"); });
    On(pane->BeforeContextMenu, [this](auto&&...) { Note("up", "menu"); });
    On(pane->KeyPress, [this](char32_t& character) {
      Note("typed", Variant(static_cast<std::int32_t>(character)).Text());
      if (refused_ == "q" && character == U'q') character = 0;
      if (refused_ == "q" && character == U'x') character = U'ä';
    });
    On(pane->Entities()->EntityAdd, [this](const std::string& key) { Note("model", "added " + key); });
    On(pane->Entities()->EntityRemove, [this](const std::string& key) {
      EXPECT_EQ(pane->Entities()->Item(key), nullptr);
      Note("model", "removed " + key);
    });
    On(pane->Entities()->BeforeAdd, [this](const std::string& key, bool& cancel) { cancel = key == refused_; });
    On(pane->BeforeDeleteObject, [this](auto&, bool& cancel) { cancel = refused_ == "delete"; });
    On(pane->KeyDown, [this](std::int32_t& key, auto) { key = refused_ == "keys" ? 0 : key; });
    On(pane->KeyUp, [this](std::int32_t& key, auto) { key = refused_ == "releases" ? 0 : key; });
  }
  void ListenTo(const Ref<qbEntity>& entity) {
    On(entity->EntityBox()->Move, [this, entity] { Note("lines", entity->Caption() + "m"); });
    On(entity->EntityBox()->RelationshipChange, [this, entity](auto&) { Note("lines", entity->Caption() + "c"); });
    On(entity->EntityBox()->RelationshipRemove,
       [this, caption = entity->Caption()](auto&) { Note("model", "unjoined " + caption); });
  }

  // --- Names ---

  Ref<qbEntity> Table(const std::string& caption) const {
    const Ref<qbEntity> entity = pane->Entities()->Item(Value(caption));
    if (!entity) throw std::runtime_error("there is no box " + caption);
    return entity;
  }
  Ref<qbRelationship> JoinAt(const std::string& name) const {
    const std::size_t sign = name.find('>');
    return Table(name.substr(0, sign))->Relationships()->Item(std::stoi(name.substr(sign + 1)));
  }
  // "a", "a>1" (its first join), "a.id" (its column) or "-".
  Ref<Object> ObjectAt(const std::string& name) const {
    if (name == "-") return nullptr;
    return name.find('>') != std::string::npos ? Ref<Object>(JoinAt(name)) : Table(name);
  }
  std::string NameOf(const Ref<Object>& object) const {
    if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) return entity->Caption();
    const auto join = std::dynamic_pointer_cast<qbRelationship>(object);
    return join ? join->Source() ? join->Source()->Caption() + ">" + std::to_string(join->Index()) : "join" : "-";
  }

  // "a" is a caption, "a.2" a row, "a.2!" its check box, "a-" the minimise button, "a>1" a join's line, "a]" the right
  // edge, "a_" and "a^" are near the ends of the list, "a%30" is on the track of its mark; "700,5" is a place of the
  // pane, "+9,9" of the pointer; "empty" has no box.
  PixelPoint At(const std::string& place) const {
    const auto number = [](const std::string& text) { return Pixels(std::stod(text)); };
    if (const std::size_t comma = place.find(','); comma != std::string::npos) {
      const bool byPointer = place.front() == '+';
      const PixelPoint given{number(place.substr(byPointer ? 1 : 0)), number(place.substr(comma + 1))};
      return byPointer ? at_ + given : given;
    }
    if (place == "empty") return {700_px, 500_px};
    if (place.find('>') != std::string::npos) return OnLine(*JoinAt(place));
    const std::size_t sign = std::min(place.find_first_of(".-%_^]"), place.size());
    const qbEntity& table = *Table(place.substr(0, sign));
    const PixelRect box = Place(table);
    const std::string rest = place.substr(std::min(sign + 1, place.size()));
    switch (sign < place.size() ? place[sign] : ' ') {
      case '.':
        return rest.ends_with('!') ? OnCheckBox(table, std::stoul(rest)) : OnRow(table, std::stoul(rest));
      case '-':
        return OnMinimizeButton(table);
      case '%':
        return OnPane({box.Right() - 5_px, box.top + 27_px + number(rest)});
      case '_':
        return OnPane({box.CenterX(), box.Bottom() - 8_px});
      case '^':
        return OnPane({box.CenterX(), box.top + 34_px});
      case ']':
        return OnPane({box.Right() - 1_px, box.top + 50_px});
      default:
        return OnCaption(table);
    }
  }
  static std::int32_t ButtonOf(const Words& w, std::size_t index) {
    if (w.size() <= index) return ButtonLeft;
    return w[index] == "right" ? ButtonRight : ButtonMiddle;
  }
  static Variant Value(const std::string& word) {
    if (word == "null") return Variant::Null();
    if (word == "empty") return {};
    const std::optional<double> number = Variant(word).Number();
    return number ? Variant(static_cast<std::int32_t>(*number)) : Variant(OrNone(word));
  }

  // --- What is done ---

  void KnowModel() {
    actions["box"] = [this](const Words& w) {
      std::vector<std::string> columns{"id", "name"};
      if (w.size() > 2) columns.assign(w.begin() + 2, w.end());
      if (columns.size() == 1 && IsDigit(columns[0][0])) columns = Columns(std::stoi(columns[0]));
      if (const Ref<qbEntity> added = pane->Entities()->Add(w[1])) {
        added->Items()->Add("*", "*");
        for (const std::string& column : columns) added->Items()->Add(column, column);
        pane->Entities()->Fit(*added);
        ListenTo(added);
      }
    };
    actions["at"] = [this](const Words& w) {
      Table(w[1])->SetLeft(15 * std::stof(w[2]));
      Table(w[1])->SetTop(15 * std::stof(w[3]));
    };
    actions["rename"] = [this](const Words& w) { Table(w[1])->SetCaption(OrNone(w[2])); };
    actions["remove"] = [this](const Words& w) { pane->Entities()->Remove(w[1]); };
    actions["clear"] = [this](const Words&) { pane->Clear(); };
    actions["join"] = [this](const Words& w) { Join(Table(w[1]), std::stoi(w[2]), Table(w[3]), std::stoi(w[4])); };
    actions["newjoin"] = [this](const Words& w) { Table(w[1])->Relationships()->Add(Table(w[2])); };
    actions["unjoin"] = [this](const Words& w) { Table(w[1])->Relationships()->Clear(); };
    actions["from"] = [this](const Words& w) { JoinAt(w[1])->SetSourceItemIndex(Value(w[2])); };
    actions["to"] = [this](const Words& w) { JoinAt(w[1])->SetTargetItemIndex(Value(w[2])); };
    actions["mark"] = [this](const Words& w) { JoinAt(w[1])->SetLeftIndicator(IndicatorImage); };
    actions["compare"] = [this](const Words& w) { JoinAt(w[1])->SetComparison(JoinComparisonAt(std::stoi(w[2]))); };
    actions["ask"] = [this](const Words& w) { JoinAt(w[1])->SetCondition(OrNone(w[2])); };
    actions["kind"] = [this](const Words& w) { JoinAt(w[1])->SetItemData(Value(w[2])); };
    actions["item"] = [this](const Words& w) { Table(w[1])->Items()->Add(w[2], w[w.size() > 3 ? 3 : 2]); };
    actions["noitem"] = [this](const Words& w) { Table(w[1])->Items()->Remove(Value(w[2])); };
    actions["noitems"] = [this](const Words& w) { Table(w[1])->Items()->Clear(); };
    actions["itemkey"] = [this](const Words& w) { Table(w[1])->Items()->Item(w[2])->SetKey(w[3]); };
    actions["bold"] = [this](const Words& w) { Table(w[1])->Items()->Item(Value(w[2]))->SetBold(true); };
    actions["row"] = [this](const Words& w) { Table(w[1])->EntityBox()->SetSelectedRow(std::stoul(w[2])); };
    actions["scroll"] = [this](const Words& w) { Table(w[1])->EntityBox()->ScrollTo(std::stoul(w[2])); };
    actions["nobutton"] = [this](const Words& w) { Table(w[1])->SetShowMinimizeButton(false); };
    actions["select"] = [this](const Words& w) { pane->SelectObject(ObjectAt(w[1])); };
    actions["zoom"] = [this](const Words& w) { pane->SetZoom(std::stod(w[1]), {}); };
    actions["hear"] = [this](const Words& w) { heard_ = {w.begin() + 1, w.end()}; };
    actions["refuse"] = [this](const Words& w) { refused_ = OrNone(w[1]); };
    // A listener does something itself, in which "%" is the name of what it is told; "-" ends it.
    actions["when"] = [this](const Words& w) {
      const auto listener = [this, step = w[2]](const std::string& name) { Do(ReplaceAll(step, "%", name)); };
      whens_.clear();
      if (w[1] == "deselected") {
        whens_.push_back(pane->ObjectDeactivate.Connect([=, this](const Ref<Object>& one) { listener(NameOf(one)); }));
      } else if (w[1] == "adding") {
        whens_.push_back(pane->Entities()->BeforeAdd.Connect([=](const std::string& key, bool&) { listener(key); }));
      } else if (w[1] == "removed") {
        whens_.push_back(pane->Entities()->EntityRemove.Connect([=](const std::string& key) { listener(key); }));
      } else if (w[1] == "deleting") {
        whens_.push_back(pane->BeforeDeleteObject.Connect([=, this](auto& one, bool&) { listener(NameOf(one)); }));
      }
    };
    actions["once"] = [this](const Words& w) {
      whens_.clear();
      pane->Entities()->Add(w[1]);
    };
    actions["times"] = [this](const Words& w) {
      for (int i = std::stoi(w[1]); i > 0; --i) Do(w[2]);
    };
  }

  void KnowHands() {
    actions["down"] = [this](const Words& w) { Down(at_ = At(w[1]), ButtonOf(w, 2)); };
    actions["move"] = [this](const Words& w) { Move(at_ = At(w[1])); };
    actions["up"] = [this](const Words& w) { Up(at_ = At(w[1]), ButtonOf(w, 2)); };
    actions["aim"] = [this](const Words& w) { at_ = At(w[1]); };
    actions["click"] = [this](const Words& w) { Click(at_ = At(w[1]), ButtonOf(w, 2)); };
    actions["drag"] = [this](const Words& w) {
      Down(at_ = At(w[1]), ButtonOf(w, 3));
      Move(at_ = At(w[2]), ButtonOf(w, 3));
      Up(at_, ButtonOf(w, 3));
    };
    actions["double"] = [this](const Words& w) { pane->OnDoubleClick({ButtonLeft, ShiftNone, at_ = At(w[1])}); };
    actions["wheel"] = [this](const Words& w) {
      pane->OnWheel({w.size() > 3 ? ShiftShift : ShiftNone, At(w[1]), 0, std::stod(w[2])});
    };
    actions["key"] = [this](const Words& w) {
      const KeyEvent key = test::ReadKey(w[1]);
      used_ = pane->OnKeyDown(key);
      pane->OnKeyUp(key);
    };
    actions["hold"] = [this](const Words& w) { used_ = pane->OnKeyDown(test::ReadKey(w[1])); };
    actions["let"] = [this](const Words& w) { pane->OnKeyUp(test::ReadKey(w[1])); };
    actions["lose"] = [this](const Words&) { pane->OnFocusChanged(false); };
    // From the first row of a box that has just been selected.
    actions["find"] = [this](const Words& w) {
      pane->SelectObject(nullptr);
      pane->SelectObject(Table(w[1]));
      Table(w[1])->EntityBox()->SetSelectedRow(1);
      for (auto word = w.begin() + 2; word != w.end(); ++word) {
        const char first = UpperAscii(word->front());  // only plain letters have a key code
        EXPECT_TRUE(pane->OnKeyDown({first >= 'A' && first <= 'Z' ? first : 0, ShiftNone, *word}));
      }
    };
    actions["look"] = [this](const Words& w) {
      const FindFrom from = w[2] == "next" ? FindFrom::Next : w[2] == "here" ? FindFrom::Here : FindFrom::Previous;
      found_ = pane->FindName(OrNone(w[1]), from);
    };
    actions["ticks"] = [this](const Words& w) {
      for (int i = std::stoi(w[1]); i > 0; --i) pane->OnTick();
    };
    actions["scrollto"] = [this](const Words& w) {
      Scroll(Orientation::Horizontal, std::stoi(w[1]));
      Scroll(Orientation::Vertical, std::stoi(w[2]));
    };
    // The surface is scrolled so that the place stands in the middle, and the pointer waits there for five ticks.
    actions["wait"] = [this](const Words& w) {
      const auto by = [](Pixels at) { return static_cast<int>(at.Value()) - 300; };
      Scroll(Orientation::Horizontal, Surface().ScrollBar(Orientation::Horizontal).value + by(At(w[1]).x));
      Scroll(Orientation::Vertical, Surface().ScrollBar(Orientation::Vertical).value + by(At(w[1]).y));
      Move(At(w[1]));
      for (int i = 0; i < 5; ++i) pane->OnTick();
    };
    actions["menu"] = [this](const Words& w) { Click(at_ = At(w[1]), ButtonRight); };
    actions["choose"] = [this](const Words& w) {
      Click(at_ = At(w[1]), ButtonRight);
      Menu menu = Surface().LastMenu();
      for (const std::string_view step : Split(w[2], "/")) {
        const auto entry = std::ranges::find_if(menu, [&](const MenuEntry& one) { return one.text.starts_with(step); });
        ASSERT_TRUE(entry != menu.end() && entry->enabled) << step;
        if (entry->action) entry->action();
        menu = Menu(entry->entries);
      }
    };
  }

  // --- What can be seen ---

  void KnowQuestions() {
    answers["captions"] = [this](auto&) { return Captions(); };
    answers["joins"] = [this](auto&) { return Joins(); };
    // "a b 2 5": whether a join of these columns is there, whichever collection is asked.
    answers["exists"] = [this](const std::string& of) {
      const std::vector<std::string_view> words = Split(of, " ");
      const auto table = [&](std::size_t i) { return pane->Entities()->Item(std::string(words[i])); };
      const auto column = [&](std::size_t i) { return Value(std::string(words[i])); };
      return YesNo(Table("c")->Relationships()->Exists(table(0), table(1), column(2), column(3)));
    };
    answers["ends"] = [this](const std::string& of) { return Ends(*JoinAt(of)); };
    answers["selected"] = [this](auto&) { return NameOf(pane->SelectedObject()); };
    answers["heard"] = [this](auto&) { return std::exchange(log_, ""); };
    answers["used"] = [this](auto&) { return YesNo(used_); };
    answers["captured"] = [this](auto&) { return YesNo(Surface().IsCaptured()); };
    answers["ticking"] = [this](auto&) { return YesNo(Surface().IsTicking()); };
    answers["dragged"] = [this](auto&) {
      const std::string text = Surface().DraggedText();
      pane->GetSurface().DragText("");
      return text;
    };
    answers["cursor"] = [this](auto&) {
      const Cursor cursor = Surface().CurrentCursor();
      return std::string(cursor == Cursor::Arrow    ? "arrow"
                         : cursor == Cursor::Join   ? "join"
                         : cursor == Cursor::NoDrop ? "no drop"
                                                    : "another");
    };
    answers["scrolled"] = [this](auto&) {
      return std::to_string(Surface().ScrollBar(Orientation::Horizontal).value) + "," +
             std::to_string(Surface().ScrollBar(Orientation::Vertical).value);
    };
    answers["zoom"] = [this](auto&) { return Variant(pane->Zoom()).Text(); };
    answers["offered"] = [this](auto&) { return Offered(Surface().LastMenu()); };
    // How many lines of the drawing begin and end as "begin*end" says.
    answers["drawn"] = [this](const std::string& of) {
      const std::string begin = of.substr(0, of.find('*')), end = of.substr(of.find('*') + 1);
      return std::to_string(std::ranges::count_if(
          Drawn(), [&](const std::string& line) { return line.starts_with(begin) && line.ends_with(end); }));
    };
    answers["place"] = [this](const std::string& of) {
      const PixelRect at = Place(*Table(of));
      const auto text = [](Pixels value) { return Variant(value.Value()).Text(); };
      return text(at.left) + "," + text(at.top) + " " + text(at.width) + "x" + text(at.height);
    };
    answers["where"] = [this](const std::string& of) {
      return Variant(At(of).x.Value()).Text() + "," + Variant(At(of).y.Value()).Text();
    };
    answers["first"] = [this](const std::string& of) {
      return std::to_string(Table(of)->EntityBox()->FirstVisibleRow());
    };
    answers["visible"] = [this](const std::string& of) {
      return std::to_string(Table(of)->EntityBox()->VisibleRowCount());
    };
    answers["current"] = [this](const std::string& of) {
      const Ref<qbEntityItem> item = Table(of)->SelectedItem();
      return item ? item->Text() : "-";
    };
    answers["at"] = [this](auto&) {
      const auto at = std::dynamic_pointer_cast<qbEntity>(pane->SelectedObject());
      const std::string row = at && at->SelectedItem() ? "." + at->SelectedItem()->Text() : "";
      return at->Caption() + row + " " + std::to_string(found_.place) + "/" + std::to_string(found_.count);
    };
    answers["low"] = [this](const std::string& of) { return YesNo(Table(of)->EntityBox()->Minimized()); };
    answers["ticked"] = [this](const std::string& of) {
      std::string text;
      const qbEntityItems& items = *Table(of)->Items();
      for (std::int32_t i = 1; i <= items.Count(); ++i) text += items.Item(i)->Checked() ? "x" : "-";
      return text;
    };
    answers["items"] = [this](const std::string& of) {
      std::string text;
      const qbEntityItems& items = *Table(of)->Items();
      for (std::int32_t i = 1; i <= items.Count(); ++i) text += (i > 1 ? " " : "") + items.Item(i)->Text();
      return text;
    };
    // "a key": the place of the item with this key, 0 without one.
    answers["item"] = [this](const std::string& of) {
      const Ref<qbEntityItem> item = Table(of.substr(0, 1))->Items()->Item(of.substr(2));
      return std::to_string(item ? item->Index() : 0);
    };
    answers["index"] = [this](const std::string& of) {
      const Ref<qbEntity> entity = pane->Entities()->Item(of);
      return std::to_string(entity ? entity->Index() : 0);
    };
    answers["tag"] = [this](const std::string& of) { return Table(of)->TagVariant().Text(); };
    answers["tip"] = [this](const std::string& of) { return pane->ToolTipAt(At(of)); };
    answers["wholes"] = [this](auto&) { return std::to_string(pane->WholeJoins()->Count()); };
    answers["whole"] = [this](const std::string& of) { return WholeOf(*JoinAt(of))->Text(); };
    answers["kind"] = [this](const std::string& of) { return std::to_string(JoinAt(of)->Kind().Bits()); };
  }

  // "a2>b3", and behind it the kind and the sides that are marked.
  std::string Joins() const {
    std::string text;
    for (std::int32_t i = 1; i <= pane->Entities()->Count(); ++i) {
      const Ref<qbEntity> entity = pane->Entities()->Item(i);
      for (std::int32_t j = 1; j <= entity->Relationships()->Count(); ++j) {
        const qbRelationship& join = *entity->Relationships()->Item(j);
        text += (text.empty() ? "" : " ") + entity->Caption() + join.SourceItemIndex().Text() + ">" +
                join.Target()->Caption() + join.TargetItemIndex().Text();
        if (join.Comparison() != JoinEqual) text += std::string(SignOf(join.Comparison()));
        if (!join.Condition().empty()) text += "?";
        if (join.Kind() != JoinKind()) text += ":" + std::to_string(join.Kind().Bits());
        text += join.LeftIndicator() == IndicatorImage ? "L" : "";
        text += join.RightIndicator() == IndicatorImage ? "R" : "";
      }
    }
    return text;
  }
  // What the line's ends are level with.
  static std::string Ends(const qbRelationship& join) {
    const std::vector<PixelPoint>& points = join.Line()->Points({});
    const auto end = [](const qbEntity& entity, const Variant& index, Pixels y) {
      const auto row = static_cast<std::size_t>(index.ToInt32());
      if (y == PlaceOfRow(entity, row).CenterY()) return "row " + std::to_string(row);
      return std::string(y == Place(entity).top + 14_px ? "caption" : "nothing");
    };
    return end(*join.Source(), join.SourceItemIndex(), points.front().y) + ", " +
           end(*join.Target(), join.TargetItemIndex(), points.back().y);
  }

  test::PaintWatch watch_{*pane};
  std::vector<EventConnection> links_, whens_;
  std::set<std::string, std::less<>> heard_;
  std::string log_;
  std::string refused_;
  PixelPoint at_;
  bool used_ = false;
  FoundNames found_;
};

[[maybe_unused]] const bool kScenarios = test::RegisterScenarios<DiagramScene>("DiagramScenario", "diagram.txt");

}  // namespace
}  // namespace zrqrybld
