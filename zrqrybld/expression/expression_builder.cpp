#include "zrqrybld/expression/expression_builder.h"

#include <algorithm>
#include <span>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_expression.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/sql/missing_words.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {

Ref<frmExpressionBuilder> frmExpressionBuilder::Create(const Ref<QueryContext>& context, EditedText kind) {
  return Ref<frmExpressionBuilder>(new frmExpressionBuilder(context, kind));
}

frmExpressionBuilder::frmExpressionBuilder(const Ref<QueryContext>& context, EditedText kind)
    : frmExpressionZoom(context, kind), kind_(kind) {
  AddTables();
  tables_ = groups_.size();
  AddWords();
}

// --- The pieces ---

void frmExpressionBuilder::AddGroup(Group group) {
  if (!group.parts.empty()) groups_.push_back(std::move(group));
}

void frmExpressionBuilder::AddTables() {
  const Ref<QueryContext> context = Context();
  const std::shared_ptr<SchemaCache> facts = context->design.Schema();
  facts->Refresh();
  const NameRules names = CurrentNameRules(*context);
  for (const QueryTableFacts& table : facts->QueryTables()) {
    Group group{table.caption, {}};
    for (const ColumnFacts& column : table.facts->columns) {
      const SqlText name = QuoteWhenNeeded(Identifier(column.name), names);
      group.parts.push_back({column.name, table.qualifier + "." + name.Text(), column.type});
    }
    AddGroup(std::move(group));
  }
}

void frmExpressionBuilder::AddWords() {
  Vocabulary words = ReadVocabulary(*Context());
  AddWindowFunctions(words);
  AddMarkers(words, QueryMarkers(Context()->design.Snapshot()), Context()->source.Say(text::InUse));
  const auto add = [this](TextId name, const std::vector<VocabularyWord>& entries, const auto& fits) {
    Group group{Context()->source.Say(name), {}};
    for (const VocabularyWord& entry : entries) {
      if (!fits(entry)) continue;
      std::string hint = entry.description;
      if (hint.empty() && entry.syntax != entry.name) hint = ReadTemplate(entry.syntax).text;
      group.parts.push_back({entry.name, entry.syntax, std::move(hint)});
    }
    AddGroup(std::move(group));
  };
  const auto any = [](const VocabularyWord&) { return true; };
  add(text::GroupFunctions, words.functions, [](const VocabularyWord& word) { return !word.aggregate; });
  add(text::GroupAggregates, words.functions, [](const VocabularyWord& word) { return word.aggregate; });
  add(text::GroupConditions, words.operators, [](const VocabularyWord& word) { return word.condition; });
  add(text::GroupOperators, words.operators, [](const VocabularyWord& word) { return !word.condition; });
  add(text::GroupKeywords, words.keywords, any);
  add(text::GroupParameters, words.parameters, any);
}

// Of an aggregate the form with one operand, without DISTINCT, which servers refuse before OVER.
void frmExpressionBuilder::AddWindowFunctions(const Vocabulary& words) {
  const std::vector<WindowFunction> made = WindowFunctionsOf(Context()->design.CurrentDialect());
  if (made.empty()) return;
  for (const VocabularyWord& word : words.functions) {
    const bool takesOne = word.syntax.starts_with(word.name + "(@") && word.syntax.find(',') == std::string::npos;
    if (word.aggregate && takesOne) aggregates_.push_back(word.name);
  }
  for (const std::string& name : aggregates_) windowFunctions_.push_back({name});
  windowFunctions_.insert(windowFunctions_.end(), made.begin(), made.end());
}

bool frmExpressionBuilder::Finds(std::string_view wanted, const Group& group, const Part& part) {
  const std::string name = FoldCase(group.name) + " " + FoldCase(part.text);
  const std::string folded = FoldCase(wanted);
  return std::ranges::all_of(Split(folded, " "),
                             [&](std::string_view word) { return name.find(word) != std::string::npos; });
}

// --- Functions over rows ---

std::string frmExpressionBuilder::WhyNoWindows() const {
  return windowFunctions_.empty() ? Context()->source.Say(text::WindowUnknown) : std::string();
}

bool frmExpressionBuilder::MissesWindowWord(std::string_view word) const {
  return Misses(Context()->design.CurrentDialect(), word);
}

std::string frmExpressionBuilder::ProblemOf(const WindowCall& call) const {
  switch (FaultOf(call, Context()->design.CurrentDialect())) {
    case WindowCallFault::None:
      return {};
    case WindowCallFault::GroupsWithoutOrder:
      return Context()->source.Say(text::WindowGroupsWithoutOrder);
    case WindowCallFault::DistanceWithoutOrder:
      return Context()->source.Say(text::WindowDistanceWithoutOrder);
    case WindowCallFault::EndsBeforeItBegins:
      return Context()->source.Say(text::WindowEndsFirst);
    case WindowCallFault::DistanceInValues:
      return Context()->source.Say(text::WindowDistanceInValues);
  }
  return {};
}

WindowCall frmExpressionBuilder::NewWindowCall(std::size_t function, std::string_view text) const {
  WindowCall call;
  const std::string operand = Check(text) ? std::string() : OnOneLine(text);
  if (function >= windowFunctions_.size()) return call;
  const WindowFunction& chosen = windowFunctions_[function];
  call.arguments = operand;
  SetFunction(call, {}, chosen);
  if (!chosen.takesOperand && !operand.empty()) call.orders.push_back({operand});
  return call;
}

WindowCall frmExpressionBuilder::WithFunction(WindowCall call, std::size_t function) const {
  if (function >= windowFunctions_.size()) return call;
  const std::size_t before = WindowFunctionAt(call.function);
  SetFunction(call, before < windowFunctions_.size() ? windowFunctions_[before] : WindowFunction(),
              windowFunctions_[function]);
  return call;
}

std::size_t frmExpressionBuilder::WindowFunctionAt(std::string_view name) const {
  const auto found = std::ranges::find_if(
      windowFunctions_, [name](const WindowFunction& function) { return EqualsNoCase(function.name, name); });
  return static_cast<std::size_t>(found - windowFunctions_.begin());
}

std::vector<std::string> frmExpressionBuilder::Columns() const {
  std::vector<std::string> columns;
  for (const Group& group : std::span(groups_).first(tables_)) {
    for (const Part& part : group.parts) columns.push_back(part.insert);
  }
  return columns;
}

// --- The chosen piece ---

void frmExpressionBuilder::Choose(std::size_t group, std::size_t part) {
  const bool exists = group < groups_.size() && part < groups_[group].parts.size();
  chosen_ = exists ? &groups_[group].parts[part] : nullptr;
  pattern_ = chosen_ ? ReadTemplate(chosen_->insert) : TextTemplate();
  parameters_.clear();
  for (const TextRange& field : pattern_.fields) {
    parameters_.push_back({pattern_.text.substr(field.start + 1, field.length - 1), {}});
  }
}

void frmExpressionBuilder::SetParameter(std::size_t index, const std::string& value) {
  if (index >= parameters_.size()) ThrowNoSuchItem();
  parameters_[index].value = value;
}

TextReplacement frmExpressionBuilder::Insertion(std::string_view text, std::size_t from, std::size_t to) const {
  TextReplacement result{from, to, {}};
  if (!chosen_) return {from, from, {}};
  const bool apartBefore = from > 0 && !IsWhite(text[from - 1]) && text[from - 1] != '(';
  const bool apartBehind = to < text.size() && !IsWhite(text[to]) && text[to] != ')' && text[to] != ',';
  TextTemplate& written = result.text;
  if (apartBefore) written.text = " ";
  std::size_t done = 0;
  for (std::size_t i = 0; i < pattern_.fields.size(); ++i) {
    const TextRange& field = pattern_.fields[i];
    written.text += pattern_.text.substr(done, field.start - done);
    if (parameters_[i].value.empty()) written.fields.push_back({written.text.size(), field.length});
    written.text +=
        parameters_[i].value.empty() ? pattern_.text.substr(field.start, field.length) : parameters_[i].value;
    done = field.start + field.length;
  }
  written.text += pattern_.text.substr(done);
  if (apartBehind) written.text += " ";
  return result;
}

}  // namespace zrqrybld
