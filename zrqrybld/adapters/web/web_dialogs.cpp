#include "zrqrybld/adapters/web/web_dialogs.h"

#include <optional>
#include <utility>
#include <vector>

#include "zrqrybld/expression/expression_builder.h"
#include "zrqrybld/expression/expression_zoom.h"
#include "zrqrybld/host/language_ids.h"

namespace zrqrybld {
namespace {

std::string FlagText(bool flag) { return flag ? "1" : ""; }

// What the page sends may be short of what was expected: the rest is empty.
const std::string& At(const Fields& fields, std::size_t place) {
  static const std::string nothing;
  return place < fields.size() ? fields[place] : nothing;
}

std::size_t NumberOf(const std::string& text) {
  return static_cast<std::size_t>(std::strtoul(text.c_str(), nullptr, 10));
}

std::string PackedPairs(const std::vector<JoinDialog::Pair>& pairs) {
  Fields all;
  for (const JoinDialog::Pair& pair : pairs) {
    all.push_back(Packed({std::to_string(pair.column1), std::to_string(pair.comparison), std::to_string(pair.column2),
                          FlagText(pair.turned), std::to_string(pair.origin)}));
  }
  return Packed(all);
}

std::vector<JoinDialog::Pair> PairsOf(std::string_view text) {
  std::vector<JoinDialog::Pair> pairs;
  for (const std::string& packed : Unpacked(text)) {
    const Fields f = Unpacked(packed);
    pairs.push_back(
        {NumberOf(At(f, 0)), NumberOf(At(f, 1)), NumberOf(At(f, 2)), !At(f, 3).empty(), NumberOf(At(f, 4))});
  }
  return pairs;
}

std::string FaultIn(const std::shared_ptr<frmExpressionZoom>& form, const std::string& text) {
  const std::optional<ExpressionFault> fault = form ? form->Check(text) : std::nullopt;
  return fault ? fault->message : std::string();
}

// Each group with its name before its pieces, and each piece with what is inserted and its hint.
std::string PackedGroups(const frmExpressionBuilder& builder) {
  Fields groups;
  for (const frmExpressionBuilder::Group& group : builder.Groups()) {
    Fields parts{group.name};
    for (const frmExpressionBuilder::Part& part : group.parts) {
      parts.push_back(Packed({part.text, part.insert, part.hint}));
    }
    groups.push_back(Packed(parts));
  }
  return Packed(groups);
}

// What the window asks of a builder: "choose" a piece by its group and its place there, which answers its parameters,
// "set" one of these, "insert" it in place of what is selected, or which pieces a search "finds", by their numbers.
std::string AskBuilder(frmExpressionBuilder& builder, WebTextArea& text, const std::string& what, const Fields& f) {
  if (what == "choose") {
    builder.Choose(NumberOf(At(f, 0)), NumberOf(At(f, 1)));
    Fields names;
    for (const frmExpressionBuilder::Parameter& parameter : builder.Parameters()) names.push_back(parameter.name);
    return Packed(names);
  }
  if (what == "set") builder.SetParameter(NumberOf(At(f, 0)), At(f, 1));
  if (what == "insert" && builder.HasChosen()) text.Insert(builder);
  if (what != "find") return {};
  Fields found;
  std::size_t number = 0;
  for (const frmExpressionBuilder::Group& group : builder.Groups()) {
    for (const frmExpressionBuilder::Part& part : group.parts) {
      if (frmExpressionBuilder::Finds(At(f, 0), group, part)) found.push_back(std::to_string(number));
      ++number;
    }
  }
  return Packed(found);
}

}  // namespace

std::shared_ptr<WebTextArea> WebDialogs::Typed(const std::shared_ptr<frmExpressionZoom>& form) const {
  auto text = std::make_shared<WebTextArea>(home_);
  if (!form) return text;
  text->Suggest(form->Suggestions());
  text->CheckBy([form](const std::string& written) { return form->Check(written); });
  return text;
}

void WebDialogs::Open(const char* kind, const Fields& fields, Window window) {
  const int number = NextPageNumber();
  windows_.emplace(number, std::move(window));
  const std::string text = Packed(fields);
  zrp_dialog(home_->designer, number, kind, text.data(), LengthOf(text));
}

std::string WebDialogs::Ask(int window, const std::string& what, const Fields& arguments) {
  const auto found = windows_.find(window);
  if (found == windows_.end() || !found->second.ask) return {};
  const auto ask = found->second.ask;  // the window may be closed meanwhile
  return ask(what, arguments);
}

void WebDialogs::Answer(int window, bool accepted, const Fields& answer) {
  const auto found = windows_.find(window);
  if (found == windows_.end()) return;
  const Window closed = std::move(found->second);
  windows_.erase(found);
  if (accepted && closed.accepted) closed.accepted(answer);
}

void WebDialogs::ShowMessage(std::string_view text, MessageIcon icon) {
  Open("message", {std::string(text), std::to_string(static_cast<int>(icon))}, {});
}

bool WebDialogs::Confirm(std::string_view question) {
  return zrp_confirm(home_->designer, question.data(), LengthOf(question)) != 0;
}

void WebDialogs::ShowTables(const TablesDialog& dialog) {
  Open("tables",
       {dialog.caption, dialog.tablesTab, dialog.viewsTab, dialog.addButton, dialog.closeButton, Packed(dialog.tables),
        Packed(dialog.views)},
       {.ask = [add = dialog.add](const std::string&, const Fields& names) { return std::to_string(add(names, {})); }});
}

void WebDialogs::AskJoinProperties(JoinDialog dialog, std::function<void(JoinDialog&)> accepted) {
  const std::shared_ptr<WebTextArea> condition = Typed(dialog.conditionForm);
  const Fields fields{dialog.caption,
                      dialog.frame,
                      dialog.allOfTable1,
                      dialog.allOfTable2,
                      dialog.acceptButton,
                      dialog.cancelButton,
                      FlagText(dialog.table1Checked),
                      FlagText(dialog.table2Checked),
                      dialog.table1,
                      dialog.table2,
                      Packed(dialog.columns1),
                      Packed(dialog.columns2),
                      Packed(dialog.comparisons),
                      PackedPairs(dialog.pairs),
                      dialog.condition,
                      std::to_string(condition->Number())};
  Open("join", fields,
       {.ask =
            [dialog](const std::string& what, const Fields& f) {
              const bool all1 = !At(f, 0).empty();
              const bool all2 = !At(f, 1).empty();
              if (what == "describe") return dialog.describe ? dialog.describe(all1, all2) : std::string();
              if (what == "warning") return dialog.warning ? dialog.warning(all1, all2) : std::string();
              const std::string fault = FaultIn(dialog.conditionForm, At(f, 3));
              if (!fault.empty() || !dialog.problem) return fault;
              return dialog.problem(PairsOf(At(f, 2)), At(f, 3));
            },
        .accepted =
            [dialog, accepted = std::move(accepted)](const Fields& f) {
              JoinDialog answer = dialog;
              answer.table1Checked = !At(f, 0).empty();
              answer.table2Checked = !At(f, 1).empty();
              answer.pairs = PairsOf(At(f, 2));
              answer.condition = At(f, 3);
              accepted(answer);
            },
        .text = condition});
}

void WebDialogs::AskExpression(ExpressionDialog dialog, std::function<void(ExpressionDialog&)> accepted) {
  const std::shared_ptr<WebTextArea> text = Typed(dialog.form);
  Fields fields{dialog.caption, dialog.text, dialog.form->AcceptButton(), dialog.form->CancelButton(),
                std::to_string(text->Number())};
  Window window{.accepted =
                    [dialog, accepted = std::move(accepted)](const Fields& f) {
                      ExpressionDialog answer = dialog;
                      answer.text = frmExpressionZoom::OnOneLine(At(f, 0));
                      accepted(answer);
                    },
                .text = text};
  if (const auto builder = std::dynamic_pointer_cast<frmExpressionBuilder>(dialog.form)) {
    fields.insert(fields.end(), {PackedGroups(*builder), builder->InsertToolTip()});
    window.ask = [builder, text](const std::string& what, const Fields& f) {
      return AskBuilder(*builder, *text, what, f);
    };
  }
  Open("expression", fields, std::move(window));
}

void WebDialogs::AskConnection(ConnectionDialog dialog, std::function<void(const std::string&)> accepted) {
  Open("connection", {Packed(dialog.dataSources)},
       {.ask = [test = dialog.test](const std::string&, const Fields& f) { return test(At(f, 0)); },
        .accepted =
            [accepted = std::move(accepted)](const Fields& f) {
              if (!At(f, 0).empty()) accepted(At(f, 0));
            }});
}

// The file is written where only this page sees it, and then handed to the user.
void WebDialogs::AskSaveFile(SaveFileDialog dialog, std::function<void(const std::string& path)> accepted) {
  Fields kinds;
  for (const FileKind& kind : dialog.kinds) kinds.push_back(Packed({kind.name, kind.extension}));
  Open("save", {dialog.caption, dialog.fileName, Packed(kinds)},
       {.accepted = [home = home_, accepted = std::move(accepted)](const Fields& f) {
         std::string name;
         for (const char c : At(f, 0)) name += c == '/' || c == '\0' ? '_' : c;
         const std::string path = "/" + name;
         accepted(path);
         zrp_saved(home->designer, path.data(), LengthOf(path));
       }});
}

void WebDialogs::AskText(TextDialog dialog, std::function<void(const std::string&)> accepted) {
  Open("text", {dialog.caption, dialog.label, dialog.text},
       {.ask = [problem = dialog.problem](const std::string&,
                                          const Fields& f) { return problem ? problem(At(f, 0)) : std::string(); },
        .accepted = [accepted = std::move(accepted)](const Fields& f) { accepted(At(f, 0)); }});
}

void WebDialogs::AskParameters(ParametersDialog dialog, std::function<void(ParametersDialog&)> accepted) {
  Fields fields;
  for (const ParameterField& field : dialog.fields) {
    fields.push_back(
        Packed({field.prompt, field.typeName, field.fallback, field.value, std::to_string(field.dataType)}));
  }
  Open("parameters", {dialog.caption, dialog.statementLabel, dialog.acceptButton, dialog.cancelButton, Packed(fields)},
       {.ask =
            [dialog](const std::string& what, const Fields& f) {
              if (what == "statement") {
                Fields values = f;
                values.resize(dialog.fields.size());
                return dialog.statement(values);
              }
              const std::size_t field = NumberOf(At(f, 0));
              return field < dialog.fields.size() ? dialog.problem(field, At(f, 1)) : std::string();
            },
        .accepted =
            [dialog, accepted = std::move(accepted)](const Fields& f) {
              ParametersDialog answer = dialog;
              for (std::size_t i = 0; i < answer.fields.size(); ++i) answer.fields[i].value = At(f, i);
              accepted(answer);
            }});
}

}  // namespace zrqrybld
