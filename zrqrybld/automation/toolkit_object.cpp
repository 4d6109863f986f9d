#include "zrqrybld/automation/toolkit_object.h"

#include "zrqrybld/automation/convert.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kMessagesKept = 1000;
constexpr std::int32_t kLargestImage = 4096;  // pixels a side

// Shows nothing: hands every dialog to whoever listens.
class ScriptedDialogs final : public Dialogs {
 public:
  explicit ScriptedDialogs(ToolkitObject& owner) : owner_(owner) {}

  void ShowMessage(std::string_view text, MessageIcon icon) override {
    const std::string message(text);
    const auto picture = static_cast<std::int32_t>(icon);
    Record("MessageBox", message, picture);
    owner_.MessageBox.Raise(message, picture);
  }

  void ShowMessageSoon(std::string_view text, MessageIcon icon) override { ShowMessage(text, icon); }

  bool Confirm(std::string_view question) override {
    const std::string text(question);
    Record("Confirm", text);
    bool accepted = false;
    owner_.Confirm.Raise(text, accepted);
    return accepted;
  }

  void ShowTables(const TablesDialog& dialog) override {
    Record("ShowTables", dialog.caption);
    const Shown shown(std::make_shared<TablesDialogObject>(dialog));
    owner_.ShowTables.Raise(shown.object);
  }

  bool ShowJoinProperties(JoinDialog& dialog) override {
    Record("JoinProperties", dialog.caption);
    const Shown shown(std::make_shared<JoinDialogObject>(dialog));
    owner_.JoinProperties.Raise(shown.object);
    return shown.object->Accepted();
  }

  bool ShowExpression(ExpressionDialog& dialog) override {
    Record("Expression", dialog.text);
    const Shown shown(std::make_shared<ExpressionDialogObject>(dialog));
    owner_.Expression.Raise(shown.object);
    return shown.object->Accepted();
  }

  std::string ShowConnectionPrompt(const ConnectionDialog& dialog) override {
    Record("ConnectionPrompt", "");
    const Shown shown(std::make_shared<ConnectionDialogObject>(dialog));
    owner_.ConnectionPrompt.Raise(shown.object);
    return shown.object->ConnectionString();
  }

  std::string ShowSaveFile(const SaveFileDialog& dialog) override {
    Record("SaveFile", dialog.caption);
    const Shown shown(std::make_shared<SaveFileDialogObject>(dialog));
    owner_.SaveFile.Raise(shown.object);
    return shown.object->FullPath();
  }

  std::optional<std::string> ShowTextPrompt(const TextDialog& dialog) override {
    Record("TextPrompt", dialog.caption);
    const Shown shown(std::make_shared<TextDialogObject>(dialog));
    owner_.TextPrompt.Raise(shown.object);
    if (!shown.object->Accepted() || !shown.object->Problem().empty()) return std::nullopt;
    return shown.object->Text();
  }

  bool ShowParameters(ParametersDialog& dialog) override {
    Record("Parameters", dialog.caption);
    const Shown shown(std::make_shared<ParametersDialogObject>(dialog));
    owner_.Parameters.Raise(shown.object);
    return shown.object->Accepted() && shown.object->Problem().empty();
  }

 private:
  // Takes the dialog away from its object when it is answered, also by an error.
  template <class T>
  struct Shown {
    explicit Shown(Ref<T> dialog) : object(std::move(dialog)) {}
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;
    ~Shown() { object->Close(); }
    const Ref<T> object;
  };

  void Record(std::string kind, std::string text, std::int32_t icon = 0) {
    owner_.Messages()->Add(std::make_shared<ToolkitMessage>(std::move(kind), std::move(text), icon));
  }

  ToolkitObject& owner_;
};

class ScriptedToolkit final : public Toolkit {
 public:
  explicit ScriptedToolkit(ToolkitObject& owner) : dialogs_(owner) {}
  Dialogs& GetDialogs() override { return dialogs_; }
  void SetBusyPointer(bool) override {}

 private:
  ScriptedDialogs dialogs_;
};

}  // namespace

void ToolkitMessages::Add(Ref<ToolkitMessage> message) {
  items_.push_back(std::move(message));
  if (items_.size() > kMessagesKept) items_.pop_front();
}

Ref<ToolkitMessage> ToolkitMessages::Item(std::int32_t position) const {
  if (position < 1 || position > Count()) ThrowNoSuchItem();
  return items_[static_cast<std::size_t>(position - 1)];
}

void JoinDialogObject::SetQuestion(std::int32_t question) {
  const bool isOne = question >= 0 && static_cast<std::size_t>(question) < Shown().questions.size();
  Shown().question = isOne ? static_cast<std::size_t>(question) : 0;
}

std::string JoinDialogObject::Description() const {
  const JoinDialog& dialog = Shown();
  if (dialog.question != 0) return dialog.describeQuestion(dialog.question);
  return dialog.describe ? dialog.describe(dialog.table1Checked, dialog.table2Checked) : std::string();
}

std::string JoinDialogObject::Warning() const {
  const JoinDialog& dialog = Shown();
  if (dialog.question != 0) return dialog.warnOfQuestion(dialog.question);
  return dialog.warning ? dialog.warning(dialog.table1Checked, dialog.table2Checked) : std::string();
}

std::vector<std::string> SaveFileDialogObject::Extensions() const {
  std::vector<std::string> extensions;
  for (const FileKind& kind : Shown().kinds) extensions.push_back(kind.extension);
  return extensions;
}

std::string SaveFileDialogObject::FullPath() const {
  const std::string_view name = std::string_view(path_).substr(path_.find_last_of("/\\") + 1);
  if (name.empty() || name.find('.') != std::string_view::npos || Shown().kinds.empty()) return path_;
  return path_ + "." + Shown().kinds.front().extension;
}

std::vector<std::string> ParametersDialogObject::Prompts() const {
  std::vector<std::string> prompts;
  for (const ParameterField& field : Shown().fields) prompts.push_back(field.prompt);
  return prompts;
}

std::vector<std::string> ParametersDialogObject::Types() const {
  std::vector<std::string> types;
  for (const ParameterField& field : Shown().fields) types.push_back(field.typeName);
  return types;
}

std::string& ParametersDialogObject::Field(std::int32_t position) const {
  std::vector<ParameterField>& fields = Shown().fields;
  if (position < 1 || position > static_cast<std::int32_t>(fields.size())) ThrowNoSuchItem();
  return fields[static_cast<std::size_t>(position - 1)].value;
}

std::string ParametersDialogObject::Problem() const {
  const ParametersDialog& dialog = Shown();
  for (std::size_t i = 0; i < dialog.fields.size() && dialog.problem; ++i) {
    const std::string problem = dialog.problem(i, dialog.fields[i].value);
    if (!problem.empty()) return dialog.fields[i].prompt + ": " + problem;
  }
  return {};
}

std::string ParametersDialogObject::Statement() const {
  const ParametersDialog& dialog = Shown();
  std::vector<std::string> values;
  for (const ParameterField& field : dialog.fields) values.push_back(field.value);
  return dialog.statement ? dialog.statement(values) : std::string();
}

std::string TextDialogObject::Problem() const { return Shown().problem ? Shown().problem(text_) : std::string(); }

Ref<Image> ToolkitObject::CreateImage(std::int32_t width, std::int32_t height, const std::vector<Variant>& pixels) {
  const bool sane = width > 0 && height > 0 && width <= kLargestImage && height <= kLargestImage;
  if (!sane || pixels.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
    throw Error(ErrorInvalidPropertyValue, "Invalid Property Value.");
  }
  std::vector<std::uint32_t> values;
  values.reserve(pixels.size());
  for (const Variant& pixel : pixels) values.push_back(Convert<Color>::From(pixel).value);
  return std::make_shared<Image>(width, height, std::move(values));
}

ToolkitObject::ToolkitObject() : services_(std::make_shared<ScriptedToolkit>(*this)) {
  RegisterProviders(*services_->Providers());
  UseSystemFiles(*services_);
}

const Ref<ToolkitObject>& ToolkitObject::Instance() {
  // Never destroyed: objects that a caller has not released may use it until the process ends.
  static const auto* const instance = new Ref<ToolkitObject>(new ToolkitObject());
  return *instance;
}

}  // namespace zrqrybld
