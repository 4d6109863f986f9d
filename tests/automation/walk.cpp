#include "tests/automation/walk.h"

#include <chrono>
#include <iostream>
#include <set>
#include <utility>

#include "tests/error_of.h"
#include "tests/fakes/fake_connection.h"
#include "zrqrybld/automation/classes.h"
#include "zrqrybld/automation/dispatch.h"
#include "zrqrybld/automation/toolkit_object.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/history.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

void RegisterProviders(ProviderList&) {}  // no source but the one that is written down here
void UseSystemFiles(Toolkit&) {}          // and no file is written

namespace test {
namespace {

using std::chrono::steady_clock;

// They touch files, or are about another thing than the design.
const std::set<std::string_view> kLeftOut = {"SavePicture", "LoadLanguageFile", "OpenSchema", "AboutBox", "Open"};

class Walk {
 public:
  explicit Walk(const WalkChoices& choices) : choices_(choices) {
    source_->Table("Customers", {"CustomerID", "Name"});
    source_->Table("Orders", {"OrderID", "CustomerID", "Total"});
    source_->ForeignKey("Orders", "CustomerID", "Customers", "CustomerID");
    source_->Open("", "");
    hub_->SetConnection(source_);
    GetWhole();
    hub_->GridPane()->SetShowGroupBy(OneIn(3));
    hub_->AddTable("Orders");
    if (OneIn(2)) hub_->AddTable("Customers");
    hub_->RefreshAutoJoins();
    if (OneIn(2)) hub_->Entities()->Item(1)->Items()->Item(2)->SetChecked(true);
    other_->SetDiagramPane(qbDiagramPane::Create());
    other_->Entities()->Add("Elsewhere");
    hub_->Steps().SetClock([this] { return now_; });
  }

  std::string Go() {
    while (choices_.goesOn()) {
      now_ += std::chrono::milliseconds(Below(3) * 700);
      Step();
    }
    GoOn();
    return wrong_;
  }

 private:
  std::size_t Below(std::size_t end) { return choices_.below(end); }
  bool OneIn(std::size_t times) { return Below(times) == 0; }

  // The panes, and columns enough for a query.
  void GetWhole() {
    if (!hub_->DiagramPane()) hub_->SetDiagramPane(qbDiagramPane::Create());
    if (!hub_->SQLPane()) hub_->SetSQLPane(qbSQLPane::Create());
    const Ref<qbGridPane> fresh = qbGridPane::Create();
    const Ref<qbGridPane> grid = hub_->GridPane();
    bool whole = grid && grid->ColumnCount() == fresh->ColumnCount();
    for (std::int32_t i = 1; whole && i <= fresh->ColumnCount(); ++i) {
      const zrGridColumn& column = *grid->Grid()->Columns()->Item(i);
      whole = column.Key() == fresh->Grid()->Columns()->Item(i)->Key() &&
              column.Style() == fresh->Grid()->Columns()->Item(i)->Style();
    }
    if (!whole) hub_->SetGridPane(fresh);
  }

  // Something in the designer: the way there begins where most of it is.
  Ref<Object> Somewhere() {
    static const std::vector<std::vector<std::string_view>> kWays = {{},
                                                                     {"DiagramPane", "Entities"},
                                                                     {"DiagramPane", "Entities"},
                                                                     {"GridPane", "Grid", "Rows"},
                                                                     {"GridPane", "Grid"},
                                                                     {"GridPane", "Grid", "Columns"},
                                                                     {"GridPane"},
                                                                     {"DiagramPane"},
                                                                     {"SQLPane"}};
    Ref<Object> at = OneIn(12) ? Ref<Object>(other_) : hub_;
    for (const std::string_view part : kWays[Below(kWays.size())]) {
      const Variant next = GetMember(*at, part);
      if (next.IsEmpty()) break;
      at = next.ToObject();
    }
    for (std::size_t depth = Below(4); depth > 0; --depth) {
      const Ref<Object> next = Below(4) == 0 && !kept_.empty() ? kept_[Below(kept_.size())] : Child(*at);
      if (next) at = next;
    }
    return at;
  }
  // An object that a property of this one holds, or an item of a collection.
  Ref<Object> Child(Object& object) {
    const ClassInfo& type = TypeOf(object);
    if (FindMember(type, "Item") && FindMember(type, "Count") && !OneIn(4)) {
      const std::int32_t count = GetMember(object, "Count").ToInt32();
      if (count == 0) return nullptr;
      std::vector<Variant> index{static_cast<std::int32_t>(Below(static_cast<std::size_t>(count))) + 1};
      return GetMember(object, "Item", index).ToObject();
    }
    std::vector<std::string_view> holders;
    for (const Member& member : type.members) {
      const bool isClass = FindClass(member.type) != nullptr;
      if ((member.kinds & MemberGet) != 0 && member.argumentTypes.empty() && isClass) holders.push_back(member.name);
    }
    if (holders.empty()) return nullptr;
    const Variant value = GetMember(object, holders[Below(holders.size())]);
    return value.IsEmpty() ? nullptr : value.ToObject();
  }

  Variant Argument(std::string_view type) {
    static const std::vector<Variant> kTexts = {
        "",           "Orders",   "Customers", "orders.total", "OrderID",   "Total",     "*",
        "column",     "table",    "output",    "criteria",     "sort_type", "Ascending", "1",
        "> 5 or 'x'", "group_by", "a b",       "Sum",          "Count",     "alias",     "Customers.CustomerID"};
    static const std::vector<Variant> kStatements = {
        "SELECT Total FROM Orders", "SELECT * FROM Customers c, Orders o WHERE c.CustomerID = o.CustomerID",
        "SELECT Count(*) FROM Orders GROUP BY CustomerID HAVING Count(*) > 1", "SELECT FROM"};
    if (type == "Boolean") return OneIn(2);
    if (type == "String") return OneIn(6) ? kStatements[Below(kStatements.size())] : kTexts[Below(kTexts.size())];
    if (type == "Single" || type == "Double") return static_cast<double>(Below(4000)) - 500;
    if (FindClass(type) || type == "Object") return OneIn(5) ? Variant() : Variant(OfClass(type));
    if (type == "Variant" && OneIn(3)) return kTexts[Below(kTexts.size())];
    if (type == "Variant" && OneIn(6)) return OneIn(2) ? Variant() : Variant(OneIn(2));
    return OneIn(20) ? Variant(INT32_MAX) : Variant(static_cast<std::int32_t>(Below(13)) - 1);
  }
  Ref<Object> OfClass(std::string_view type) {
    for (int i = 0; i < 8; ++i) {
      const Ref<Object> found = Somewhere();
      if (type == "Object" || found->TypeName() == type) return found;
    }
    const ClassInfo* known = FindClass(type);
    return known && known->create ? known->create() : nullptr;
  }

  void Step() {
    try {
      if (OneIn(6)) {
        CallMember(*hub_, OneIn(2) ? "Undo" : "Redo");
        return;
      }
      const Ref<Object> object = Somewhere();
      if (kept_.size() < 30) kept_.push_back(object);
      const std::span<const Member> members = TypeOf(*object).members;
      Use(object, members[Below(members.size())]);
    } catch (const Error& error) {
      if (error.Number() == 0) wrong_ = "an error without a number";
    }
  }

  void Use(const Ref<Object>& object, const Member& member) {
    if (kLeftOut.contains(member.name)) return;
    if (choices_.traces) std::cerr << std::string(depth_, ' ') << object->TypeName() << "." << member.name;
    if ((member.kinds & MemberEvent) != 0) return Listen(*object, member);
    std::vector<Variant> arguments;
    for (const ArgumentType& argument : member.argumentTypes) arguments.push_back(Argument(argument.type));
    // No file is read or written.
    if (member.name == "LoadQuery") arguments[0] = saved_;
    if (member.name == "SaveQuery" || member.name == "LoadQuery") arguments[1] = true;
    const bool assigns = (member.kinds & (MemberLet | MemberSet)) != 0 && !OneIn(4);
    Variant value = assigns ? Argument(member.type) : Variant();
    if (choices_.traces) {
      for (const Variant& argument : arguments) std::cerr << " " << Shown(argument);
      std::cerr << (assigns ? " = " + Shown(value) : "") << std::endl;
    }
    if (assigns) {
      LetMember(*object, member.name, value, arguments);
    } else if ((member.kinds & MemberCall) != 0) {
      const Variant result = CallMember(*object, member.name, arguments);
      if (member.name == "SaveQuery") saved_ = arguments[0].Text();
      if (result.Type() == VariantType::Object && kept_.size() < 30) kept_.push_back(result.ToObject());
    } else {
      GetMember(*object, member.name, arguments);
    }
  }
  static std::string Shown(const Variant& value) {
    if (value.Type() == VariantType::Object) return std::string(value.ToObject() ? value.ToObject()->TypeName() : "-");
    return "\"" + value.Text().substr(0, 60) + "\"";
  }

  // The handler takes a step or two of its own, a few times.
  void Listen(Object& object, const Member& member) {
    if (choices_.traces) std::cerr << " (listening)" << std::endl;
    if (links_.size() >= 6) links_.erase(links_.begin());
    links_.push_back(Subscribe(object, member.name, [this, left = 4, name = member.name](auto) mutable {
      if (depth_ >= 2 || left-- <= 0) return;
      if (choices_.traces) std::cerr << std::string(depth_, ' ') << "on " << name << std::endl;
      ++depth_;
      Step();
      --depth_;
    }));
  }

  std::string Saved() { return hub_->SaveQueryToText(); }

  void GoOn() {
    if (choices_.traces) std::cerr << "going on" << std::endl;
    links_.clear();
    kept_.clear();
    GetWhole();
    hub_->SetState(InfoDone);
    while (ErrorOf([this] { hub_->EndStep(); }) == 0) continue;
    hub_->SQLPane()->Refresh();
    // From the beginning to the end, twice: the design is what it was. What was changed outside of steps, in tables
    // that steps make and remove, is gone the first time.
    std::string end;
    while (hub_->Redo()) continue;
    for (int round = 0; round < 2; ++round) {
      std::size_t undone = 0;
      while (undone <= History::kMostSteps && hub_->Undo()) ++undone;
      Expect(undone <= History::kMostSteps, "undoing has no end");
      while (hub_->Redo()) --undone;
      Expect(undone == 0, "not as many steps redone as undone");
      if (round == 0) end = Saved();
    }
    Expect(Saved() == end, "another design after undo and redo");
    Expect(hub_->DiagramPane()->Entities()->Add("Behind all") != nullptr, "no table can be added");
    Expect(hub_->Undo() && Saved() == end, "the table behind all is not undone");
  }
  void Expect(bool holds, const char* otherwise) {
    if (!holds) wrong_ = otherwise;
  }

  const WalkChoices& choices_;
  std::string wrong_;
  steady_clock::time_point now_;
  Ref<FakeConnection> source_ = std::make_shared<FakeConnection>();
  Ref<qbQueryBuilder> hub_ = qbQueryBuilder::Create();
  Ref<qbQueryBuilder> other_ = qbQueryBuilder::Create();
  std::vector<Ref<Object>> kept_;  // what a caller holds, also when it has left the designer
  std::string saved_;
  std::size_t depth_ = 0;
  std::vector<EventConnection> links_;
};

}  // namespace

std::string TakeWalk(const WalkChoices& choices) { return Walk(choices).Go(); }

}  // namespace test
}  // namespace zrqrybld
