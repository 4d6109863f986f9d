#include "zrqrybld/expression/expression_builder.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_expression.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {

Ref<frmExpressionBuilder> frmExpressionBuilder::Create(const Ref<QueryContext>& context, EditedText kind) {
  return Ref<frmExpressionBuilder>(new frmExpressionBuilder(context, kind));
}

frmExpressionBuilder::frmExpressionBuilder(const Ref<QueryContext>& context, EditedText kind)
    : frmExpressionZoom(context, kind) {
  AddTables();
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

bool frmExpressionBuilder::Finds(std::string_view wanted, const Group& group, const Part& part) {
  const std::string name = FoldCase(group.name) + " " + FoldCase(part.text);
  const std::string folded = FoldCase(wanted);
  return std::ranges::all_of(Split(folded, " "),
                             [&](std::string_view word) { return name.find(word) != std::string::npos; });
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
