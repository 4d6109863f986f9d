// Dialogs that the core asks for. The core prepares every text and takes the answer; the window is
// the toolkit's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

class frmExpressionZoom;

enum class MessageIcon : std::uint8_t { Information, Exclamation, Critical };

/// The table picker. An ampersand in a caption marks the access key.
struct TablesDialog {
  std::string caption;
  std::string tablesTab;
  std::string viewsTab;
  std::string addButton;
  std::string closeButton;
  std::vector<std::string> tables;
  std::vector<std::string> views;
  /// Told while several are added: how many are there already.
  using Progress = std::function<void(std::size_t added)>;
  /// Adds these tables or views to the query and returns how many were added. Tells the user about failures itself;
  /// `progress` may be empty.
  std::function<std::size_t(const std::vector<std::string>& names, const Progress& progress)> add;
};

/// The properties of a join. An ampersand in a caption marks the access key, but not one in a table's name.
struct JoinDialog {
  /// Two columns that a join compares.
  struct Pair {
    std::size_t column1 = 0;     ///< among `columns1`, from 0
    std::size_t comparison = 0;  ///< among `comparisons`, from 0
    std::size_t column2 = 0;     ///< among `columns2`, from 0
    bool turned = false;         ///< whether the second table's column stands before the comparison
    std::size_t origin = 0;      ///< which of the pairs it was when the window opened, from 1; 0 for a new one
    friend bool operator==(const Pair&, const Pair&) = default;
  };

  std::string caption;
  std::string frame;
  std::string allOfTable1;  ///< the text of the first check box
  std::string allOfTable2;  ///< the text of the second one
  std::string acceptButton;
  std::string cancelButton;
  /// What is chosen; set before the dialog opens, and by the user.
  bool table1Checked = false;
  bool table2Checked = false;
  /// The tables' names, as the two texts hold them.
  std::string table1 = {};
  std::string table2 = {};
  /// Says in words which rows a choice returns. Without it the window says nothing.
  std::function<std::string(bool all1, bool all2)> describe = {};
  /// Why a choice cannot be had, "" when it can. Without it every choice can be had.
  std::function<std::string(bool all1, bool all2)> warning = {};

  // What else the join says. A window that shows only the two choices leaves it as it is.

  std::vector<std::string> columns1 = {};     ///< of the first table
  std::vector<std::string> columns2 = {};     ///< of the second one
  std::vector<std::string> comparisons = {};  ///< that can be had, as they are written; equality first
  /// The columns that are compared; set before the dialog opens, and by the user.
  std::vector<Pair> pairs = {};
  /// What is asked besides, as SQL; set before the dialog opens, and by the user.
  std::string condition = {};
  /// What helps to type the condition and checks it. Without it the window shows neither pairs nor condition.
  std::shared_ptr<frmExpressionZoom> conditionForm = {};
  /// Why pairs and condition cannot be taken together, "" when they can; a condition may be half written.
  std::function<std::string(const std::vector<Pair>& pairs, const std::string& condition)> problem = {};
  /// Says in words what a condition does with the rows of a choice.
  std::function<std::string(bool all1, bool all2)> describeCondition = {};

  /// What can be asked instead of returning rows of both tables, as texts: the first is nothing. Without them the
  /// window offers none.
  std::vector<std::string> questions = {};
  /// Which is chosen, from 0; then the two check boxes say nothing.
  std::size_t question = 0;
  /// Says in words which rows a question returns, and what of the query it leaves without effect, "" for nothing.
  std::function<std::string(std::size_t question)> describeQuestion = {};
  std::function<std::string(std::size_t question)> warnOfQuestion = {};

  /// The text of a check box that joins the two tables before all others; "" for none.
  std::string groupText = {};
  /// Why that cannot be had; "" when it can.
  std::string groupProblem = {};
  bool groupChecked = false;

  /// The statement that counts the rows of the query with a choice, as the window opened; "" when there is none.
  std::function<std::string(bool all1, bool all2, std::size_t question)> countStatement = {};
};

/// The prompt that builds a connection string.
struct ConnectionDialog {
  /// The data sources configured on this machine, by name.
  std::vector<std::string> dataSources;
  /// Tries a connection string; returns the driver's message, "" when it connects.
  std::function<std::string(const std::string& connectionString)> test;
};

/// A kind of file: what it is called, and how its names end, without the dot.
struct FileKind {
  std::string name;
  std::string extension;
};

/// Where to save a file.
struct SaveFileDialog {
  std::string caption;
  std::string fileName;         ///< suggested, without an extension
  std::vector<FileKind> kinds;  ///< the first one is suggested
};

/// A line of text to be typed.
struct TextDialog {
  std::string caption;
  std::string label;  ///< an ampersand marks the access key
  std::string text;   ///< at first
  /// Why a text cannot be taken, "" when it can. Without it every text can.
  std::function<std::string(const std::string& text)> problem = {};
};

/// The window for an expression that is too long for its cell.
struct ExpressionDialog {
  std::string caption;
  std::string text;  ///< the expression; set before the window opens, and by the user
  /// What the window shows beside the text, and helps with; one that builds expressions has pieces to insert. Never
  /// nothing.
  std::shared_ptr<frmExpressionZoom> form = {};
};

/// One value that a statement wants before it runs.
struct ParameterField {
  std::string prompt;         ///< what is asked for; an ampersand is one
  std::string typeName;       ///< what fits, in words; "" when anything does
  std::int32_t dataType = 0;  ///< the `DataTypeCode`, which chooses the editor; 0 for any text
  std::string fallback;       ///< taken when the value is left blank; "" for none
  std::string value;          ///< set before the dialog opens, and by the user
};

/// The values of a statement's parameters. An ampersand in a caption marks the access key.
struct ParametersDialog {
  std::string caption;
  std::string statementLabel;
  std::string acceptButton;
  std::string cancelButton;
  std::vector<ParameterField> fields;
  /// Why a value of a field, counted from 0, cannot be taken, as a sentence; "" when it can.
  std::function<std::string(std::size_t field, const std::string& value)> problem;
  /// The statement with values of all fields in place; those that cannot be taken leave their markers.
  std::function<std::string(const std::vector<std::string>& values)> statement;
};

/// The windows that stop the user until they are answered. The library asks by `Ask...`; a toolkit whose windows wait
/// for their answer implements `Show...` and leaves those as they are.
class ZRQRYBLD_API Dialogs {
 public:
  Dialogs() = default;
  Dialogs(const Dialogs&) = delete;
  Dialogs& operator=(const Dialogs&) = delete;
  virtual ~Dialogs() = default;

  /// Shows a message and waits until the user has closed it.
  virtual void ShowMessage(std::string_view text, MessageIcon icon) = 0;

  /// Shows such a message as soon as no mouse button is held, and returns at once: for messages about what the user has
  /// just left, while the next thing may be under the hand already.
  virtual void ShowMessageSoon(std::string_view text, MessageIcon icon) = 0;

  /// Asks a question that a careless answer could cost something. Only true when somebody has said yes; a toolkit that
  /// cannot ask says no.
  virtual bool Confirm([[maybe_unused]] std::string_view question) { return false; }

  /// Lets the user pick tables until the dialog is closed. A toolkit that cannot wait copies the dialog.
  virtual void ShowTables(const TablesDialog& dialog) = 0;

  /// Lets the user edit a join. Returns whether it was accepted; the window cannot be closed otherwise than by its
  /// two buttons.
  virtual bool ShowJoinProperties(JoinDialog& dialog) = 0;

  /// Lets the user edit an expression. Returns whether it was accepted.
  virtual bool ShowExpression(ExpressionDialog& dialog) = 0;

  /// Lets the user build a connection string. "" when cancelled.
  virtual std::string ShowConnectionPrompt(const ConnectionDialog& dialog) = 0;

  /// Asks where to save a file. Returns its path in UTF-8, with the extension of the kind that was chosen when the user
  /// has typed none; "" when cancelled. Whether a file may be replaced has been asked.
  virtual std::string ShowSaveFile(const SaveFileDialog& dialog) = 0;

  /// Lets the user type a text that has no problem. None when cancelled.
  virtual std::optional<std::string> ShowTextPrompt(const TextDialog& dialog) = 0;

  /// Lets the user give values that have no problem. Returns whether they were accepted.
  virtual bool ShowParameters(ParametersDialog& dialog) = 0;

  /// The same for whoever goes on when the user has accepted; nothing is called when the user cancels. They wait for
  /// the answer of the function above. A toolkit that cannot wait, such as a page in a browser, overrides them and
  /// returns at once: who has asked may be gone when the answer comes.
  virtual void AskJoinProperties(JoinDialog dialog, std::function<void(JoinDialog&)> accepted);
  virtual void AskExpression(ExpressionDialog dialog, std::function<void(ExpressionDialog&)> accepted);
  virtual void AskConnection(ConnectionDialog dialog, std::function<void(const std::string&)> accepted);
  virtual void AskSaveFile(SaveFileDialog dialog, std::function<void(const std::string& path)> accepted);
  virtual void AskText(TextDialog dialog, std::function<void(const std::string&)> accepted);
  virtual void AskParameters(ParametersDialog dialog, std::function<void(ParametersDialog&)> accepted);
};

}  // namespace zrqrybld
