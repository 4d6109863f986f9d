#include "zrqrybld/hub/parameter_form.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/connection_info.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/platform/while_alive.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

// A question of the dialog, and what stands behind it.
struct Question {
  std::string key;  // what it is remembered by; "" for never
  SnapshotType type;
};

class ParameterForm {
 public:
  ParameterForm(qbQueryBuilder& hub, std::string_view sql);

  using Accepted = std::function<void(std::vector<ParameterValue>)>;
  /// The window's functions hold the form, and nothing of them runs without the hub.
  static void Ask(const std::shared_ptr<ParameterForm>& form, Accepted accepted);

 private:
  void Answer(const ParametersDialog& answer, const Accepted& accepted);
  void AddMarker(const qbParameter& parameter);
  ParameterValue ValueOf(std::size_t question, const std::string& typed) const;
  std::vector<ParameterValue> Values(const std::vector<std::string>& typed) const;
  std::string Problem(std::size_t question, const std::string& typed) const;
  std::string Statement(const std::vector<std::string>& typed) const;

  qbQueryBuilder& hub_;
  const std::string sql_;
  LiteralRules rules_;
  std::vector<ParameterField> fields_;
  std::vector<Question> questions_;                          // one a field
  std::vector<std::size_t> ofMarker_;                        // the question of each marker
  std::unordered_map<std::string, std::size_t> questionOf_;  // by key
};

ParameterForm::ParameterForm(qbQueryBuilder& hub, std::string_view sql)
    : hub_(hub), sql_(sql), rules_(LiteralRulesOf(hub)) {
  const Ref<qbParameters> parameters = ScanParameters(sql, hub.Hub()).parameters;
  for (const Ref<qbParameter>& parameter : *parameters) AddMarker(*parameter);
}

void ParameterForm::AddMarker(const qbParameter& parameter) {
  const std::string prompt = parameter.FormatPrompt();
  const std::string name = TypedDefault(parameter.Name);
  const std::string key = FoldCase(name.empty() ? prompt : name);
  if (const auto known = questionOf_.find(key); known != questionOf_.end()) {
    ofMarker_.push_back(known->second);
    return;
  }
  const std::size_t number = questions_.size();
  if (!key.empty()) questionOf_.emplace(key, number);
  ofMarker_.push_back(number);
  questions_.push_back({key, TypeOfParameter(parameter.DataType.Text(), *hub_.DataTypes())});

  ParameterField field;
  field.prompt = !prompt.empty() ? prompt : !name.empty() ? name : hub_.Say({text::ValueNumber, number + 1});
  field.typeName = hub_.Say(TypeInWords(questions_.back().type));
  field.dataType = questions_.back().type.code;
  field.fallback = TypedDefault(parameter.Default.Text());
  const auto remembered = hub_.RememberedValues().find(key);
  field.value = remembered != hub_.RememberedValues().end() ? remembered->second : field.fallback;
  fields_.push_back(std::move(field));
}

// A value that is left blank is the default, as far as there is one.
ParameterValue ParameterForm::ValueOf(std::size_t question, const std::string& typed) const {
  const bool blank = TrimWhite(typed).empty() && !fields_[question].fallback.empty();
  return {.text = blank ? fields_[question].fallback : typed, .type = questions_[question].type};
}

std::vector<ParameterValue> ParameterForm::Values(const std::vector<std::string>& typed) const {
  std::vector<ParameterValue> values;
  values.reserve(ofMarker_.size());
  for (const std::size_t question : ofMarker_) values.push_back(ValueOf(question, typed.at(question)));
  return values;
}

// Why the question's value cannot stand at one of its markers; the others are looked at when they are asked.
std::string ParameterForm::Problem(std::size_t question, const std::string& typed) const {
  std::vector<ParameterValue> values(ofMarker_.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = ValueOf(question, typed);
    values[i].given = ofMarker_[i] == question;
  }
  for (const Phrase& problem : ProblemsOf(sql_, values, rules_)) {
    if (!problem.Empty()) return hub_.Say(problem);
  }
  return {};
}

std::string ParameterForm::Statement(const std::vector<std::string>& typed) const {
  std::vector<ParameterValue> values = Values(typed);
  const std::vector<Phrase> problems = ProblemsOf(sql_, values, rules_);
  for (std::size_t i = 0; i < values.size(); ++i) values[i].given = problems[i].Empty();
  return PutInLiterals(sql_, values, rules_);
}

void ParameterForm::Ask(const std::shared_ptr<ParameterForm>& form, Accepted accepted) {
  if (form->questions_.empty()) return accepted({});
  const qbQueryBuilder& hub = form->hub_;
  const std::weak_ptr<Object> link = form->hub_.weak_from_this();
  ParametersDialog dialog;
  dialog.fields = form->fields_;
  dialog.caption = hub.GetLanguageString(LanguageParametersCaption);
  dialog.statementLabel = hub.GetLanguageString(LanguageParametersStatement);
  dialog.acceptButton = hub.GetLanguageString(LanguageParametersAcceptButton);
  dialog.cancelButton = hub.GetLanguageString(LanguageParametersCancelButton);
  dialog.problem =
      WhileAlive(link, [form](std::size_t field, const std::string& value) { return form->Problem(field, value); });
  dialog.statement =
      WhileAlive(link, [form](const std::vector<std::string>& values) { return form->Statement(values); });
  form->hub_.GetToolkit().GetDialogs().AskParameters(
      std::move(dialog), WhileAlive(link, [form, accepted = std::move(accepted)](const ParametersDialog& answer) {
        form->Answer(answer, accepted);
      }));
}

void ParameterForm::Answer(const ParametersDialog& answer, const Accepted& accepted) {
  std::vector<std::string> typed;
  for (const ParameterField& field : answer.fields) typed.push_back(field.value);
  const std::vector<Phrase> problems = ProblemsOf(sql_, Values(typed), rules_);
  for (std::size_t i = 0; i < problems.size(); ++i) {
    const std::string& prompt = fields_[ofMarker_[i]].prompt;
    if (!problems[i].Empty()) throw Error(ErrorInvalidPropertyValue, Phrase(text::AboutValue, prompt, problems[i]));
  }
  for (std::size_t i = 0; i < questions_.size(); ++i) {
    if (!questions_[i].key.empty()) hub_.RememberedValues().insert_or_assign(questions_[i].key, typed[i]);
  }
  accepted(Values(typed));
}

}  // namespace

void AskParameters(qbQueryBuilder& hub, std::string_view sql,
                   std::function<void(std::vector<ParameterValue>)> accepted) {
  ParameterForm::Ask(std::make_shared<ParameterForm>(hub, sql), std::move(accepted));
}

std::optional<std::vector<ParameterValue>> AskParameters(qbQueryBuilder& hub, std::string_view sql) {
  const auto given = std::make_shared<std::optional<std::vector<ParameterValue>>>();
  AskParameters(hub, sql, [given](std::vector<ParameterValue> values) { *given = std::move(values); });
  return std::move(*given);
}

std::string qbQueryBuilder::AskParameters(const std::string& sql) {
  const auto values = zrqrybld::AskParameters(*this, sql);
  return values ? PutInLiterals(sql, *values, LiteralRulesOf(*this)) : std::string();
}

LiteralRules LiteralRulesOf(const qbQueryBuilder& hub) {
  LiteralRules rules;
  if (const Ref<qbGridPane> grid = hub.GridPane()) {
    rules.dateFormat = grid->DateFormat();
    rules.dateFormatChosen = grid->Dates().chosen;
    rules.dateFormatStyle = grid->DateFormatStyle();
  }
  if (const Ref<qbSQLPane> pane = hub.SQLPane()) rules.syntax = pane->SQLSyntax();
  rules.source = hub.SourceDialect();
  if (const std::optional<TextReading> reading = SourceReading(hub)) {
    rules.readings.push_back(*reading);
  } else if (hub.IsConnected()) {
    for (const KnownReading& known : KnownReadings()) rules.readings.push_back(known.text);
  }
  return rules;
}

}  // namespace zrqrybld
