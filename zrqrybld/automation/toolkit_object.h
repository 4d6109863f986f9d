// The toolkit of automated designers: no window; dialogs and messages are answered by event handlers.
//
// One toolkit serves all objects that a process makes by name. What nobody answers is cancelled, and
// everything that was shown is recorded in `Messages`.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/platform/image.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

/// One thing that was shown to the user.
class ToolkitMessage final : public Object {
 public:
  ToolkitMessage(std::string kind, std::string text, std::int32_t icon)
      : kind_(std::move(kind)), text_(std::move(text)), icon_(icon) {}
  std::string_view TypeName() const override { return "ToolkitMessage"; }

  /// "MessageBox", "Confirm", "ShowTables", "JoinProperties", "ConnectionPrompt", "Expression", "SaveFile",
  /// "TextPrompt" or "Parameters".
  const std::string& Kind() const { return kind_; }
  /// The message, or the dialog's caption.
  const std::string& Text() const { return text_; }
  /// The picture beside a message: 0 information, 1 exclamation, 2 critical.
  std::int32_t Icon() const { return icon_; }

 private:
  std::string kind_;
  std::string text_;
  std::int32_t icon_;
};

/// What was shown, oldest first, by position from 1; the last 1,000.
class ToolkitMessages final : public Object {
 public:
  std::string_view TypeName() const override { return "ToolkitMessages"; }
  void Add(Ref<ToolkitMessage> message);
  /// Forgets all of them.
  void Clear() { items_.clear(); }
  /// How many there are.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  /// The message at a position from 1. Error 9 when there is none.
  Ref<ToolkitMessage> Item(std::int32_t position) const;

 private:
  std::deque<Ref<ToolkitMessage>> items_;
};

/// A dialog while it is shown: its handler reads what it shows and answers. Used later, every member is error 91.
template <class Dialog>
class DialogObject : public Object {
 public:
  explicit DialogObject(Dialog& dialog) : dialog_(&dialog) {}
  /// The dialog is answered.
  void Close() { dialog_ = nullptr; }

 protected:
  Dialog& Shown() const {
    if (!dialog_) throw Error(ErrorObjectRemoved, "The dialog is not shown any more.");
    return *dialog_;
  }

 private:
  Dialog* dialog_;
};

/// The table picker.
class TablesDialogObject final : public DialogObject<const TablesDialog> {
 public:
  using DialogObject::DialogObject;
  std::string_view TypeName() const override { return "TablesDialog"; }
  /// The title of the window.
  const std::string& Caption() const { return Shown().caption; }
  /// The tables that can be picked.
  const std::vector<std::string>& Tables() const { return Shown().tables; }
  /// The views that can be picked.
  const std::vector<std::string>& Views() const { return Shown().views; }
  /// Adds one or several tables, as the add button does.
  void Add(const std::vector<std::string>& names) { Shown().add(names, {}); }
};

/// The properties of a join. Accepted only when the handler says so.
class JoinDialogObject final : public DialogObject<JoinDialog> {
 public:
  using DialogObject::DialogObject;
  std::string_view TypeName() const override { return "JoinDialog"; }
  /// The title of the window.
  const std::string& Caption() const { return Shown().caption; }
  /// The title of the frame around the two check boxes.
  const std::string& Frame() const { return Shown().frame; }
  /// The text of the first check box.
  const std::string& Table1Text() const { return Shown().allOfTable1; }
  /// The text of the second check box.
  const std::string& Table2Text() const { return Shown().allOfTable2; }
  /// Whether all rows of the first table are chosen.
  bool Table1Checked() const { return Shown().table1Checked; }
  void SetTable1Checked(bool checked) { Shown().table1Checked = checked; }
  /// Whether all rows of the second table are chosen.
  bool Table2Checked() const { return Shown().table2Checked; }
  void SetTable2Checked(bool checked) { Shown().table2Checked = checked; }
  /// What is asked besides the columns, as SQL; "" for nothing. One that cannot be read makes the call that has shown
  /// the dialog fail with error 40002.
  const std::string& Condition() const { return Shown().condition; }
  void SetCondition(const std::string& condition) { Shown().condition = condition; }
  /// What the choice returns, in words; "" when the dialog says nothing.
  std::string Description() const;
  /// Why the choice cannot be had in the dialect; "" when it can.
  std::string Warning() const;
  /// The answer; False cancels.
  bool Accepted() const { return accepted_; }
  void SetAccepted(bool accepted) { accepted_ = accepted; }
  /// What can be asked instead of returning rows of both tables; the first is nothing.
  const std::vector<std::string>& Questions() const { return Shown().questions; }
  /// Which of them is chosen, from 0; a number that is none counts as 0.
  std::int32_t Question() const { return static_cast<std::int32_t>(Shown().question); }
  void SetQuestion(std::int32_t question);
  /// Whether the two tables are joined before all others, in parentheses. A dialect that cannot say it ignores it.
  bool GroupChecked() const { return Shown().groupChecked; }
  void SetGroupChecked(bool checked) { Shown().groupChecked = checked; }

 private:
  bool accepted_ = false;
};

/// The prompt that builds a connection string.
class ConnectionDialogObject final : public DialogObject<const ConnectionDialog> {
 public:
  using DialogObject::DialogObject;
  std::string_view TypeName() const override { return "ConnectionDialog"; }
  /// The data sources that are configured on this machine.
  const std::vector<std::string>& DataSources() const { return Shown().dataSources; }
  /// Tries a connection string; the driver's message, "" when it connects.
  std::string Test(const std::string& connectionString) { return Shown().test(connectionString); }
  /// The answer; "" cancels.
  const std::string& ConnectionString() const { return connectionString_; }
  void SetConnectionString(std::string value) { connectionString_ = std::move(value); }

 private:
  std::string connectionString_;
};

/// The window for a long expression.
class ExpressionDialogObject final : public DialogObject<ExpressionDialog> {
 public:
  using DialogObject::DialogObject;
  std::string_view TypeName() const override { return "ExpressionDialog"; }
  /// The caption of the cell's column.
  const std::string& Caption() const { return Shown().caption; }
  /// The expression, which the answer may replace.
  const std::string& Text() const { return Shown().text; }
  void SetText(std::string text) { Shown().text = std::move(text); }
  /// Whether the answer counts; False at first.
  bool Accepted() const { return accepted_; }
  void SetAccepted(bool accepted) { accepted_ = accepted; }

 private:
  bool accepted_ = false;
};

/// Where to save a file.
class SaveFileDialogObject final : public DialogObject<const SaveFileDialog> {
 public:
  using DialogObject::DialogObject;
  std::string_view TypeName() const override { return "SaveFileDialog"; }
  /// The title of the window.
  const std::string& Caption() const { return Shown().caption; }
  /// The name that is suggested, without an extension.
  const std::string& FileName() const { return Shown().fileName; }
  /// The extensions that can be chosen, without the dot; the first one is suggested.
  std::vector<std::string> Extensions() const;
  /// The answer; "" cancels. A name without an extension gets the suggested one.
  const std::string& Path() const { return path_; }
  void SetPath(std::string path) { path_ = std::move(path); }
  /// The answer with its extension.
  std::string FullPath() const;

 private:
  std::string path_;
};

/// A line of text to be typed. Accepted only when the handler says so, and when the text has no problem.
class TextDialogObject final : public DialogObject<const TextDialog> {
 public:
  explicit TextDialogObject(const TextDialog& dialog) : DialogObject(dialog), text_(dialog.text) {}
  std::string_view TypeName() const override { return "TextDialog"; }
  /// The title of the window.
  const std::string& Caption() const { return Shown().caption; }
  /// What stands before the text.
  const std::string& Label() const { return Shown().label; }
  /// The text, which the answer may replace.
  const std::string& Text() const { return text_; }
  void SetText(std::string text) { text_ = std::move(text); }
  /// Why the text cannot be taken as it is now; "" when it can.
  std::string Problem() const;
  /// Whether the answer counts; False at first.
  bool Accepted() const { return accepted_; }
  void SetAccepted(bool accepted) { accepted_ = accepted; }

 private:
  std::string text_;
  bool accepted_ = false;
};

/// The values of a statement's parameters. Accepted only when the handler says so, and when no value has a problem.
class ParametersDialogObject final : public DialogObject<ParametersDialog> {
 public:
  using DialogObject::DialogObject;
  std::string_view TypeName() const override { return "ParametersDialog"; }
  /// The title of the window.
  const std::string& Caption() const { return Shown().caption; }
  /// What is asked for, one text a value.
  std::vector<std::string> Prompts() const;
  /// What fits, in words, one text a value; "" where anything does.
  std::vector<std::string> Types() const;
  /// A value by its position from 1, which the answer may replace. Error 9 when there is none.
  const std::string& Value(std::int32_t position) const { return Field(position); }
  void SetValue(std::int32_t position, std::string value) { Field(position) = std::move(value); }
  /// Why the values cannot be taken as they are now; "" when they can.
  std::string Problem() const;
  /// The statement with the values in place; those that cannot be taken leave their markers.
  std::string Statement() const;
  /// Whether the answer counts; False at first.
  bool Accepted() const { return accepted_; }
  void SetAccepted(bool accepted) { accepted_ = accepted; }

 private:
  std::string& Field(std::int32_t position) const;
  bool accepted_ = false;
};

/// The toolkit as scripts see it.
class ToolkitObject final : public Object {
 public:
  /// The one toolkit of the process.
  static const Ref<ToolkitObject>& Instance();
  std::string_view TypeName() const override { return "Toolkit"; }

  /// A message: its text and picture (see `ToolkitMessage::Icon`).
  Event<const std::string&, std::int32_t> MessageBox;
  /// A question that a careless answer could cost something; the second argument set to true says yes.
  Event<const std::string&, bool&> Confirm;
  /// The table picker: the dialog, which the handler answers.
  Event<const Ref<TablesDialogObject>&> ShowTables;
  /// A join's properties: the dialog, which the handler answers.
  Event<const Ref<JoinDialogObject>&> JoinProperties;
  /// The prompt for a connection string: the dialog, which the handler answers.
  Event<const Ref<ConnectionDialogObject>&> ConnectionPrompt;
  /// The window for a long expression: the dialog, which the handler answers.
  Event<const Ref<ExpressionDialogObject>&> Expression;
  /// Where to save a file: the dialog, which the handler answers.
  Event<const Ref<SaveFileDialogObject>&> SaveFile;
  /// A line of text to be typed: the dialog, which the handler answers.
  Event<const Ref<TextDialogObject>&> TextPrompt;
  /// The values of a statement's parameters: the dialog, which the handler answers.
  Event<const Ref<ParametersDialogObject>&> Parameters;

  /// A picture for icons: its size in pixels, at most 4,096 each, and the pixels row by row from the top, each
  /// 0xAARRGGBB. Error 40005 when the number of pixels is another.
  static Ref<Image> CreateImage(std::int32_t width, std::int32_t height, const std::vector<Variant>& pixels);

  /// What was shown so far.
  const Ref<ToolkitMessages>& Messages() const { return messages_; }

  /// What designers are made with.
  const std::shared_ptr<Toolkit>& Services() const { return services_; }

 private:
  ToolkitObject();

  Ref<ToolkitMessages> messages_ = std::make_shared<ToolkitMessages>();
  std::shared_ptr<Toolkit> services_;
};

/// Registers the data source providers that this build of the library has: defined beside the adapters, which this
/// room does not know.
void RegisterProviders(ProviderList& providers);
/// Has the toolkit write files as the system keeps them; defined there, too.
void UseSystemFiles(Toolkit& toolkit);

}  // namespace zrqrybld
