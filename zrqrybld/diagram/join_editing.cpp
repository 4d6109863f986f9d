#include "zrqrybld/diagram/join_editing.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/platform/while_alive.h"
#include "zrqrybld/sql/count_statement.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_comparison.h"
#include "zrqrybld/sql/join_condition.h"

namespace zrqrybld {
namespace {

// The text with the tables' captions in the places of their markers; a marker in a caption is a part of its name.
std::string NameTables(std::string_view text, const std::string& table1, const std::string& table2) {
  constexpr std::string_view kTable1 = "%TABLE1%";
  constexpr std::string_view kTable2 = "%TABLE2%";
  std::string named;
  while (true) {
    const std::size_t first = FindNoCase(text, kTable1);
    const std::size_t second = FindNoCase(text, kTable2);
    const std::size_t at = std::min(first, second);
    if (at == std::string_view::npos) return named.append(text);
    named.append(text.substr(0, at)).append(first < second ? table1 : table2);
    text.remove_prefix(at + kTable1.size());
  }
}

struct Columns {
  std::vector<std::string> names;
  std::vector<std::int32_t> items;  // their positions in the entity
};

// All but "*", which no join compares.
Columns ColumnsOf(const qbEntity& entity) {
  Columns columns;
  for (const Ref<qbEntityItem>& item : *entity.Items()) {
    if (item->Text() == "*") continue;
    columns.names.push_back(item->Text());
    columns.items.push_back(item->Index());
  }
  return columns;
}

// The questions stand in the window in the order of their numbers.
JoinKind QuestionAt(std::size_t question) {
  return JoinKind::Asking(JoinExistenceAt(static_cast<std::int32_t>(std::min<std::size_t>(question, 5))));
}

// What a join is while its window is open: its first table is the one where the relationship that was chosen ends.
class JoinEditor {
 public:
  JoinEditor(QueryContext& context, const qbRelationship& chosen, Ref<qbWholeJoin> whole)
      : context_(context),
        table1_(chosen.Target()),
        table2_(chosen.Source()),
        whole_(std::move(whole)),
        members_(whole_->Relationships()),
        columns1_(ColumnsOf(*table1_)),
        columns2_(ColumnsOf(*table2_)) {
    ListComparisons();
  }

  void Fill(JoinDialog& dialog) const;
  /// What can be asked, and how the two stand among others. `now` is the kind of a join from the second table to the
  /// first.
  void FillKinds(JoinDialog& dialog, JoinKind now) const;
  /// Error 40002 for a condition that cannot be read: nothing was changed then.
  void Apply(const JoinDialog& dialog);

 private:
  void ListComparisons();
  bool IsGroup() const;
  bool ShowsColumnsOf(const std::string& caption) const;
  std::string CountWith(JoinKind kind) const;
  std::optional<JoinDialog::Pair> PairOf(std::size_t member) const;
  void ApplyPair(const JoinDialog::Pair& pair);
  void KeepOneForCondition();
  void ApplyCondition(const std::string& condition);
  void Remove(const qbRelationship& join) const;

  QueryContext& context_;
  const Ref<qbEntity> table1_;
  const Ref<qbEntity> table2_;
  const Ref<qbWholeJoin> whole_;
  const std::vector<Ref<qbRelationship>> members_;
  const Columns columns1_;
  const Columns columns2_;
  std::vector<JoinComparisonEnum> comparisons_;
};

// Those of the dialect, and those that the join has.
void JoinEditor::ListComparisons() {
  for (std::int32_t i = JoinEqual; i <= JoinSame; ++i) {
    const JoinComparisonEnum comparison = JoinComparisonAt(i);
    const bool used = std::ranges::any_of(members_, [&](const Ref<qbRelationship>& join) {
      return join->Comparison() == comparison || Mirrored(join->Comparison()) == comparison;
    });
    if (used || !SignOf(comparison, context_.design.CurrentDialect()).empty()) comparisons_.push_back(comparison);
  }
}

// None for a relationship that lacks a column.
std::optional<JoinDialog::Pair> JoinEditor::PairOf(std::size_t member) const {
  const qbRelationship& join = *members_[member];
  const bool from1 = join.Source() == table1_;
  const Ref<qbEntityItem> item1 = from1 ? join.SourceItem() : join.TargetItem();
  const Ref<qbEntityItem> item2 = from1 ? join.TargetItem() : join.SourceItem();
  if (!item1 || !item2) return std::nullopt;
  const auto place = [](const auto& list, auto value) {
    return static_cast<std::size_t>(std::ranges::find(list, value) - list.begin());
  };
  const std::optional<JoinComparisonEnum> seen = from1 ? std::optional(join.Comparison()) : Mirrored(join.Comparison());
  JoinDialog::Pair pair{place(columns1_.items, item1->Index()), place(comparisons_, seen.value_or(join.Comparison())),
                        place(columns2_.items, item2->Index()), !seen, member + 1};
  if (pair.column1 == columns1_.items.size() || pair.column2 == columns2_.items.size()) return std::nullopt;
  return pair;
}

void JoinEditor::Fill(JoinDialog& dialog) const {
  dialog.columns1 = columns1_.names;
  dialog.columns2 = columns2_.names;
  for (const JoinComparisonEnum comparison : comparisons_) {
    const std::string_view sign = SignOf(comparison, context_.design.CurrentDialect());
    dialog.comparisons.emplace_back(sign.empty() ? SignOf(comparison) : sign);
  }
  for (std::size_t i = 0; i < members_.size(); ++i) {
    if (const std::optional<JoinDialog::Pair> pair = PairOf(i)) dialog.pairs.push_back(*pair);
  }
  dialog.condition = ConditionOf(members_);
  dialog.problem = [this](const std::vector<JoinDialog::Pair>& pairs, const std::string& condition) {
    const bool empty = pairs.empty() && TrimWhite(condition).empty();
    return empty ? context_.source.Say(text::JoinAsksNothing) : std::string();
  };
  dialog.describeCondition = [this](bool all1, bool all2) {
    if (all1 && all2) return context_.source.Say(text::ConditionOfFull);
    if (!all1 && !all2) return context_.source.Say(text::ConditionOfInner);
    return context_.source.Say(
        {text::ConditionOfOuter, (all1 ? table1_ : table2_)->Caption(), (all1 ? table2_ : table1_)->Caption()});
  };
}

void JoinEditor::FillKinds(JoinDialog& dialog, JoinKind now) const {
  const std::string& name1 = table1_->Caption();
  const std::string& name2 = table2_->Caption();
  const auto say = [this](const Phrase& phrase) { return context_.source.Say(phrase); };
  dialog.questions = {say(text::ReturnsBoth), say({text::ReturnsWith, name2, name1}),
                      say({text::ReturnsWithout, name2, name1}), say({text::ReturnsWith, name1, name2}),
                      say({text::ReturnsWithout, name1, name2})};
  dialog.question = static_cast<std::size_t>(now.existence);
  dialog.describeQuestion = [=, this](std::size_t question) {
    return context_.source.Say(DescribeJoin(name2, name1, QuestionAt(question)));
  };
  dialog.warnOfQuestion = [=, this](std::size_t question) {
    const std::string& asked = QuestionAt(question).AsksTarget() ? name1 : name2;
    return ShowsColumnsOf(asked) ? context_.source.Say({text::QuestionLeavesOut, asked}) : std::string();
  };
  dialog.groupText = say(text::JoinFirst);
  dialog.groupChecked = IsGroup();
  if (!context_.design.CurrentDialect().hasJoinGroups) dialog.groupProblem = say(text::JoinFirstMissing);
  dialog.countStatement = [this](bool all1, bool all2, std::size_t question) {
    const JoinKind kinds{.allOfTarget = all1, .allOfSource = all2};
    return CountWith(question == 0 ? kinds : QuestionAt(question));
  };
}

bool JoinEditor::IsGroup() const { return !members_.empty() && members_.front()->GroupLevel() > 0; }

bool JoinEditor::ShowsColumnsOf(const std::string& caption) const {
  const QuerySnapshot query = context_.design.Snapshot();
  return std::ranges::any_of(query.rows, [&](const SnapshotRow& row) {
    return row.table && row.output && query.tables[*row.table].caption.Name() == caption;
  });
}

// The kind is that of a join from the second table to the first.
std::string JoinEditor::CountWith(JoinKind kind) const {
  QuerySnapshot query = context_.design.Snapshot();
  const auto isTable = [&](std::size_t table, const Ref<qbEntity>& entity) {
    return query.tables[table].caption.Name() == entity->Caption();
  };
  for (SnapshotJoin& join : query.joins) {
    if (isTable(join.source, table2_) && isTable(join.target, table1_)) join.kind = kind;
    if (isTable(join.source, table1_) && isTable(join.target, table2_)) join.kind = kind.Reversed();
  }
  return CountStatement(std::move(query), context_.design.CurrentDialect());
}

void JoinEditor::Apply(const JoinDialog& dialog) {
  const std::string condition = JoinConditionText(dialog.condition);
  std::vector<bool> stays(members_.size());
  for (const JoinDialog::Pair& pair : dialog.pairs) {
    if (pair.origin >= 1 && pair.origin <= members_.size()) stays[pair.origin - 1] = true;
    ApplyPair(pair);
  }
  if (dialog.pairs.empty() && !condition.empty()) KeepOneForCondition();
  for (std::size_t i = 0; i < members_.size(); ++i) {
    if (!stays[i] && PairOf(i)) Remove(*members_[i]);
  }
  ApplyCondition(condition);
  const JoinKind kinds{.allOfTarget = dialog.table1Checked, .allOfSource = dialog.table2Checked};
  whole_->SetKindFrom(table2_, dialog.question == 0 ? kinds : QuestionAt(dialog.question));
  if (dialog.groupChecked == IsGroup() || !dialog.groupProblem.empty()) return;
  for (const Ref<qbRelationship>& join : whole_->Relationships()) join->SetGroupLevel(dialog.groupChecked ? 1 : 0);
}

// Where no pair is left the join still asks its condition: one of its relationships stays for it, without columns.
void JoinEditor::KeepOneForCondition() {
  const auto asks = std::ranges::find_if(members_, [](const auto& join) { return !join->Condition().empty(); });
  const Ref<qbRelationship>& kept = asks == members_.end() ? members_.front() : *asks;
  kept->SetComparison(JoinEqual);
  kept->SetSourceItemIndex({});
  kept->SetTargetItemIndex({});
}

// A relationship that runs the other way says the same the other way round, where it can.
void JoinEditor::ApplyPair(const JoinDialog::Pair& pair) {
  if (pair.column1 >= columns1_.items.size() || pair.column2 >= columns2_.items.size() ||
      pair.comparison >= comparisons_.size()) {
    return;
  }
  const bool known = pair.origin >= 1 && pair.origin <= members_.size();
  if (known && PairOf(pair.origin - 1) == pair) return;
  const JoinComparisonEnum wanted = comparisons_[pair.comparison];
  const Ref<qbEntity>& first = pair.turned ? table2_ : table1_;
  Ref<qbRelationship> join = known ? members_[pair.origin - 1] : nullptr;
  if (join && !join->Line()) return;  // a listener has removed it
  const Ref<qbRelationship> gone = join && join->Source() != first && !Mirrored(wanted) ? join : nullptr;
  if (gone) join = nullptr;
  const bool isNew = !join;
  if (!join) {
    const bool from2 = pair.turned || Mirrored(wanted);
    join = (from2 ? table2_ : table1_)->Relationships()->Add(from2 ? table1_ : table2_);
    join->SetCondition(gone ? gone->Condition() : std::string());
    join->SetGroupLevel(members_.front()->GroupLevel());
  }
  const bool from1 = join->Source() == table1_;
  join->SetComparison(join->Source() == first ? wanted : *Mirrored(wanted));
  const std::int32_t item1 = columns1_.items[pair.column1];
  const std::int32_t item2 = columns2_.items[pair.column2];
  join->SetSourceItemIndex(from1 ? item1 : item2);
  join->SetTargetItemIndex(from1 ? item2 : item1);
  if (gone) Remove(*gone);
  if (isNew) context_.steps.RaiseInfo(InfoRelationshipAdded, Ref<Object>(join));
}

// The first pair asks it; one that is there only for a condition goes when there are pairs.
void JoinEditor::ApplyCondition(const std::string& condition) {
  const std::vector<Ref<qbRelationship>> now = whole_->Relationships();
  const auto pair = std::ranges::find_if(now, [](const auto& join) { return !IsConditionAlone(*join); });
  const bool anyAlone = std::ranges::any_of(now, [](const auto& join) { return IsConditionAlone(*join); });
  if (condition == ConditionOf(now) && (!anyAlone || pair == now.end())) return;
  const Ref<qbRelationship> asks = pair != now.end() ? *pair : now.empty() ? nullptr : now.front();
  for (const Ref<qbRelationship>& join : now) {
    if (join != asks && IsConditionAlone(*join)) {
      Remove(*join);
    } else {
      join->SetCondition(join == asks ? condition : std::string());
    }
  }
}

void JoinEditor::Remove(const qbRelationship& join) const {
  if (const Ref<qbEntity> source = join.Source()) source->Relationships()->Remove(join.Index());
}

}  // namespace

void EditJoin(const Ref<QueryContext>& context, qbRelationship& relationship,
              const std::shared_ptr<frmExpressionZoom>& conditionForm, std::function<void()> accepted) {
  const Ref<qbEntity> source = relationship.Source();
  const Ref<qbEntity> target = relationship.Target();
  const Ref<qbWholeJoin> whole = WholeOf(relationship);
  if (!source || !target || !whole) return;
  const auto text = [&](LanguageIDEnum id) {
    return NameTables(context->source.GetLanguageString(id), target->Caption(), source->Caption());
  };
  JoinDialog dialog;
  dialog.caption = text(LanguageJoinCaption);
  dialog.frame = text(LanguageJoinFrameCaption);
  dialog.allOfTable1 = text(LanguageJoinTable1);
  dialog.allOfTable2 = text(LanguageJoinTable2);
  dialog.acceptButton = text(LanguageJoinAcceptButton);
  dialog.cancelButton = text(LanguageJoinCancelButton);
  const JoinKind kind = whole->KindFor(relationship);
  dialog.table1Checked = kind.allOfTarget;
  dialog.table2Checked = kind.allOfSource;
  dialog.table1 = target->Caption();
  dialog.table2 = source->Caption();
  const WeakRef<QueryContext> link(context);
  dialog.describe = WhileAlive(link, [&shared = *context, source, target](bool all1, bool all2) {
    return shared.source.Say(
        DescribeJoin(source->Caption(), target->Caption(), {.allOfTarget = all1, .allOfSource = all2}));
  });
  dialog.warning = WhileAlive(link, [&shared = *context](bool all1, bool all2) {
    return all1 && all2 && !shared.design.HasFullJoin() ? shared.source.Say(text::NoFullJoin) : std::string();
  });
  // The window's functions hold the editor, and nothing of them runs without the designer.
  const auto editor = std::make_shared<JoinEditor>(*context, relationship, whole);
  editor->Fill(dialog);
  editor->FillKinds(dialog, kind);
  dialog.problem =
      WhileAlive(link, [editor, problem = std::move(dialog.problem)](const auto& pairs, const auto& condition) {
        return problem(pairs, condition);
      });
  dialog.describeCondition = WhileAlive(link, [editor, describe = std::move(dialog.describeCondition)](
                                                  bool all1, bool all2) { return describe(all1, all2); });
  dialog.describeQuestion = WhileAlive(link, [editor, describe = std::move(dialog.describeQuestion)](
                                                 std::size_t question) { return describe(question); });
  dialog.warnOfQuestion = WhileAlive(
      link, [editor, warn = std::move(dialog.warnOfQuestion)](std::size_t question) { return warn(question); });
  dialog.countStatement =
      WhileAlive(link, [editor, count = std::move(dialog.countStatement)](bool all1, bool all2, std::size_t question) {
        return count(all1, all2, question);
      });
  dialog.conditionForm = conditionForm;
  const auto apply = [link, editor, whole, accepted = std::move(accepted)](const JoinDialog& answer) {
    if (whole->Count() == 0) return;  // it has gone while the window was open
    const StepScope step(link.lock(), kStepEditJoin);
    editor->Apply(answer);
    accepted();
  };
  context->source.GetToolkit().GetDialogs().AskJoinProperties(std::move(dialog), WhileAlive(link, apply));
}

}  // namespace zrqrybld
