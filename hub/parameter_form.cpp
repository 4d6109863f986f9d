#include "hub/parameter_form.h"

#include <cstddef>
#include <string>
#include <unordered_map>

#include "base/error.h"
#include "base/text.h"

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

  std::optional<std::vector<ParameterValue>> Ask();

 private:
  void AddMarker(const qbParameter& parameter);
  ParameterValue ValueOf(std::size_t question, const std::string& typed) const;
  std::vector<ParameterValue> Values(const std::vector<std::string>& typed) const;
  std::string Statement(const std::vector<std::string>& typed) const;

  qbQueryBuilder& hub_;
  std::string_view sql_;
  LiteralRules rules_;
  ParametersDialog dialog_;
  std::vector<Question> questions_;                          // one a field
  std::vector<std::size_t> ofMarker_;                        // the question of each marker
  std::unordered_map<std::string, std::size_t> questionOf_;  // by key
};

ParameterForm::ParameterForm(qbQueryBuilder& hub, std::string_view sql)
    : hub_(hub), sql_(sql), rules_(LiteralRulesOf(hub)) {
  const Ref<qbParameters> parameters = ScanParameters(sql, hub.Hub()).parameters;
  for (std::int32_t i = 1; i <= parameters->Count(); ++i) AddMarker(*parameters->Item(i));
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
  field.prompt = !prompt.empty() ? prompt : !name.empty() ? name : "Value " + std::to_string(number + 1);
  field.typeName = TypeInWords(questions_.back().type);
  field.dataType = questions_.back().type.code;
  field.fallback = TypedDefault(parameter.Default.Text());
  const auto remembered = hub_.RememberedValues().find(key);
  field.value = remembered != hub_.RememberedValues().end() ? remembered->second : field.fallback;
  dialog_.fields.push_back(std::move(field));
}

// A value that is left blank is the default, as far as there is one.
ParameterValue ParameterForm::ValueOf(std::size_t question, const std::string& typed) const {
  const bool blank = TrimWhite(typed).empty() && !dialog_.fields[question].fallback.empty();
  return {.text = blank ? dialog_.fields[question].fallback : typed, .type = questions_[question].type};
}

std::vector<ParameterValue> ParameterForm::Values(const std::vector<std::string>& typed) const {
  std::vector<ParameterValue> values;
  values.reserve(ofMarker_.size());
  for (const std::size_t question : ofMarker_) values.push_back(ValueOf(question, typed.at(question)));
  return values;
}

std::string ParameterForm::Statement(const std::vector<std::string>& typed) const {
  std::vector<ParameterValue> values = Values(typed);
  for (ParameterValue& value : values) value.given = ProblemOf(value, rules_).empty();
  return PutInLiterals(sql_, values, rules_);
}

std::optional<std::vector<ParameterValue>> ParameterForm::Ask() {
  if (questions_.empty()) return std::vector<ParameterValue>();
  dialog_.caption = hub_.GetLanguageString(LanguageParametersCaption);
  dialog_.statementLabel = hub_.GetLanguageString(LanguageParametersStatement);
  dialog_.acceptButton = hub_.GetLanguageString(LanguageParametersAcceptButton);
  dialog_.cancelButton = hub_.GetLanguageString(LanguageParametersCancelButton);
  dialog_.problem = [this](std::size_t field, const std::string& value) {
    return ProblemOf(ValueOf(field, value), rules_);
  };
  dialog_.statement = [this](const std::vector<std::string>& values) { return Statement(values); };
  if (!hub_.GetToolkit().GetDialogs().ShowParameters(dialog_)) return std::nullopt;

  std::vector<std::string> typed;
  for (std::size_t i = 0; i < questions_.size(); ++i) {
    typed.push_back(dialog_.fields[i].value);
    const std::string problem = ProblemOf(ValueOf(i, typed[i]), rules_);
    if (!problem.empty()) throw Error(ErrorInvalidPropertyValue, dialog_.fields[i].prompt + ": " + problem);
  }
  for (std::size_t i = 0; i < questions_.size(); ++i) {
    if (!questions_[i].key.empty()) hub_.RememberedValues().insert_or_assign(questions_[i].key, typed[i]);
  }
  return Values(typed);
}

}  // namespace

std::optional<std::vector<ParameterValue>> AskParameters(qbQueryBuilder& hub, std::string_view sql) {
  return ParameterForm(hub, sql).Ask();
}

std::string qbQueryBuilder::AskParameters(const std::string& sql) {
  const auto values = zrqrybld::AskParameters(*this, sql);
  return values ? PutInLiterals(sql, *values, LiteralRulesOf(*this)) : std::string();
}

LiteralRules LiteralRulesOf(const qbQueryBuilder& hub) {
  LiteralRules rules;
  if (const Ref<qbGridPane> grid = hub.GridPane()) {
    rules.dateFormat = grid->DateFormat();
    rules.dateFormatStyle = grid->DateFormatStyle();
  }
  if (const Ref<qbSQLPane> pane = hub.SQLPane()) rules.syntax = pane->SQLSyntax();
  return rules;
}

}  // namespace zrqrybld
