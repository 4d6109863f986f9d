// The members of connections, fonts and the toolkit.
#include <cmath>

#include "zrqrybld/automation/binding.h"
#include "zrqrybld/automation/classes.h"
#include "zrqrybld/automation/menu_object.h"
#include "zrqrybld/automation/row_set_object.h"
#include "zrqrybld/automation/toolkit_object.h"
#include "zrqrybld/platform/database.h"

namespace zrqrybld {

ZRQRYBLD_PUBLIC_AS(ConnectionDialogObject, "ConnectionDialog");
ZRQRYBLD_PUBLIC_AS(ExpressionDialogObject, "ExpressionDialog");
ZRQRYBLD_PUBLIC_AS(JoinDialogObject, "JoinDialog");
ZRQRYBLD_PUBLIC_AS(ParametersDialogObject, "ParametersDialog");
ZRQRYBLD_PUBLIC_AS(SaveFileDialogObject, "SaveFileDialog");
ZRQRYBLD_PUBLIC_AS(TablesDialogObject, "TablesDialog");
ZRQRYBLD_PUBLIC_AS(TextDialogObject, "TextDialog");
ZRQRYBLD_PUBLIC(ToolkitMessage);
ZRQRYBLD_PUBLIC(ToolkitMessages);

constexpr std::int32_t kErrorNoCurrentRow = 3021;

std::string FieldObject::Name() const { return std::string(rows_->Rows().FieldName(index_)); }

Variant FieldObject::Value() const {
  if (rows_->Eof()) throw Error(kErrorNoCurrentRow, "There is no current row.");
  return rows_->Rows().Value(index_);
}

Ref<FieldObject> RowSetObject::Fields(const Variant& index) {
  std::optional<std::size_t> found;
  if (const std::string* name = index.StringIf()) {
    found = rows_->FindField(*name);
  } else if (const auto number = Convert<std::int32_t>::From(index); number >= 0 && number < FieldCount()) {
    found = static_cast<std::size_t>(number);
  }
  if (!found) ThrowNoSuchItem();
  return std::make_shared<FieldObject>(RefTo(*this), *found);
}

namespace {

// --- Connection ---

void Open(Connection& connection, const std::optional<std::string>& connectionString, const std::string& user,
          const std::string& password) {
  if (connectionString) connection.SetConnectionString(*connectionString);
  connection.Open(user, password);
}

// Restrictions as they stand in the data access layer's array: catalog, schema, table; for foreign keys those of the
// referencing table stand behind those of the referenced one. Empty and "" mean any.
Ref<RowSetObject> OpenSchema(Connection& connection, std::int32_t kind, const Variant& restrictions) {
  SchemaRestrictions wanted;
  if (!restrictions.IsMissing()) {
    const std::vector<Variant> given = Convert<std::vector<Variant>>::From(restrictions);
    const std::size_t first = kind == static_cast<std::int32_t>(SchemaKind::ForeignKeys) && given.size() > 3 ? 3 : 0;
    const auto at = [&](std::size_t place) -> std::optional<std::string> {
      if (first + place >= given.size() || given[first + place].IsBlank()) return std::nullopt;
      return Convert<std::string>::From(given[first + place]);
    };
    wanted = {at(0), at(1), at(2)};
  }
  return std::make_shared<RowSetObject>(connection.OpenSchema(static_cast<SchemaKind>(kind), wanted));
}

constexpr Member kConnection[] = {
    ReadWrite<Connection, &Connection::ConnectionString, &Connection::SetConnectionString>("ConnectionString"),
    Method<Connection, &Open>("Open", "[ConnectionString], [UserID], [Password]"),
    Method<Connection, &Connection::Close>("Close"),
    ReadOnly<Connection, &Connection::State>("State"),
    Method<Connection, &OpenSchema>("OpenSchema", "Kind, [Restrictions]"),
};

constexpr Member kRowSet[] = {
    ReadOnly<RowSetObject, &RowSetObject::Eof>("EOF"),
    ReadOnly<RowSetObject, &RowSetObject::FieldCount>("FieldCount"),
    ReadOnly<RowSetObject, &RowSetObject::Fields>("Fields", "Index"),
    Method<RowSetObject, &RowSetObject::MoveNext>("MoveNext"),
    Method<RowSetObject, &RowSetObject::Close>("Close"),
};

constexpr Member kField[] = {
    ReadOnly<FieldObject, &FieldObject::Name>("Name"),
    ReadOnly<FieldObject, &FieldObject::Value>("Value"),
};

// --- Fonts and pictures ---

constexpr Member kFont[] = {
    ReadWrite<FontObject, &FontObject::Name, &FontObject::SetName>("Name"),
    ReadWrite<FontObject, &FontObject::Size, &FontObject::SetSize>("Size"),
    ReadWrite<FontObject, &FontObject::Bold, &FontObject::SetBold>("Bold"),
    ReadWrite<FontObject, &FontObject::Italic, &FontObject::SetItalic>("Italic"),
};

std::int32_t ImageWidth(const Image& image) { return image.Width(); }
std::int32_t ImageHeight(const Image& image) { return image.Height(); }

constexpr Member kImage[] = {
    ReadOnly<Image, &ImageWidth>("Width"),
    ReadOnly<Image, &ImageHeight>("Height"),
};

constexpr Member kImageList[] = {
    Method<ImageList, &ImageList::Add>("Add", "Picture, [Key]"),
    ReadOnly<ImageList, &ImageList::Count>("Count"),
    ReadOnly<ImageList, &ImageList::Item>("Item", "Index"),
};

// --- The toolkit ---

Ref<Image> CreateImage(ToolkitObject&, std::int32_t width, std::int32_t height, const std::vector<Variant>& pixels) {
  return ToolkitObject::CreateImage(width, height, pixels);
}

constexpr Member kToolkit[] = {
    ReadOnly<ToolkitObject, &ToolkitObject::Messages>("Messages"),
    Method<ToolkitObject, &CreateImage>("CreateImage", "Width, Height, Pixels"),
    Raised<ToolkitObject, &ToolkitObject::MessageBox>("MessageBox", "Text, Icon"),
    Raised<ToolkitObject, &ToolkitObject::ShowTables>("ShowTables", "Dialog"),
    Raised<ToolkitObject, &ToolkitObject::JoinProperties>("JoinProperties", "Dialog"),
    Raised<ToolkitObject, &ToolkitObject::ConnectionPrompt>("ConnectionPrompt", "Dialog"),
    Raised<ToolkitObject, &ToolkitObject::Expression>("Expression", "Dialog"),
    Raised<ToolkitObject, &ToolkitObject::SaveFile>("SaveFile", "Dialog"),
    Raised<ToolkitObject, &ToolkitObject::TextPrompt>("TextPrompt", "Dialog"),
    Raised<ToolkitObject, &ToolkitObject::Parameters>("Parameters", "Dialog"),
    Raised<ToolkitObject, &ToolkitObject::Confirm>("Confirm", "Question, Accepted"),
};

constexpr Member kMessages[] = {
    Method<ToolkitMessages, &ToolkitMessages::Clear>("Clear"),
    ReadOnly<ToolkitMessages, &ToolkitMessages::Count>("Count"),
    ReadOnly<ToolkitMessages, &ToolkitMessages::Item>("Item", "Index"),
};

constexpr Member kMessage[] = {
    ReadOnly<ToolkitMessage, &ToolkitMessage::Kind>("Kind"),
    ReadOnly<ToolkitMessage, &ToolkitMessage::Text>("Text"),
    ReadOnly<ToolkitMessage, &ToolkitMessage::Icon>("Icon"),
};

// --- Menus and dialogs ---

constexpr Member kMenu[] = {
    Method<MenuObject, &MenuObject::Add>("Add", "Text, [Before]"),
    Method<MenuObject, &MenuObject::Clear>("Clear"),
    ReadOnly<MenuObject, &MenuObject::Count>("Count"),
    ReadOnly<MenuObject, &MenuObject::Item>("Item", "Index"),
    Method<MenuObject, &MenuObject::Remove>("Remove", "Index"),
};

constexpr Member kMenuItem[] = {
    ReadWrite<MenuItemObject, &MenuItemObject::Text, &MenuItemObject::SetText>("Text"),
    ReadOnly<MenuItemObject, &MenuItemObject::Shortcut>("Shortcut"),
    ReadWrite<MenuItemObject, &MenuItemObject::Enabled, &MenuItemObject::SetEnabled>("Enabled"),
    ReadWrite<MenuItemObject, &MenuItemObject::Checked, &MenuItemObject::SetChecked>("Checked"),
    ReadOnly<MenuItemObject, &MenuItemObject::Entries>("Entries"),
    Method<MenuItemObject, &MenuItemObject::Choose>("Choose"),
    Raised<MenuItemObject, &MenuItemObject::Click>("Click"),
};

using Tables = TablesDialogObject;
constexpr Member kTablesDialog[] = {
    ReadOnly<Tables, &Tables::Caption>("Caption"),
    ReadOnly<Tables, &Tables::Tables>("Tables"),
    ReadOnly<Tables, &Tables::Views>("Views"),
    Method<Tables, &Tables::Add>("Add", "Names"),
};

using Join = JoinDialogObject;
constexpr Member kJoinDialog[] = {
    ReadOnly<Join, &Join::Caption>("Caption"),
    ReadOnly<Join, &Join::Frame>("Frame"),
    ReadOnly<Join, &Join::Table1Text>("Table1Text"),
    ReadOnly<Join, &Join::Table2Text>("Table2Text"),
    ReadWrite<Join, &Join::Table1Checked, &Join::SetTable1Checked>("Table1Checked"),
    ReadWrite<Join, &Join::Table2Checked, &Join::SetTable2Checked>("Table2Checked"),
    ReadWrite<Join, &Join::Condition, &Join::SetCondition>("Condition"),
    ReadOnly<Join, &Join::Description>("Description"),
    ReadOnly<Join, &Join::Warning>("Warning"),
    ReadWrite<Join, &Join::Accepted, &Join::SetAccepted>("Accepted"),
    ReadOnly<Join, &Join::Questions>("Questions"),
    ReadWrite<Join, &Join::Question, &Join::SetQuestion>("Question"),
    ReadWrite<Join, &Join::GroupChecked, &Join::SetGroupChecked>("GroupChecked"),
};

using ExpressionWindow = ExpressionDialogObject;
constexpr Member kExpressionDialog[] = {
    ReadOnly<ExpressionWindow, &ExpressionWindow::Caption>("Caption"),
    ReadWrite<ExpressionWindow, &ExpressionWindow::Text, &ExpressionWindow::SetText>("Text"),
    ReadWrite<ExpressionWindow, &ExpressionWindow::Accepted, &ExpressionWindow::SetAccepted>("Accepted"),
};

using Prompt = ConnectionDialogObject;
constexpr Member kConnectionDialog[] = {
    ReadOnly<Prompt, &Prompt::DataSources>("DataSources"),
    Method<Prompt, &Prompt::Test>("Test", "ConnectionString"),
    ReadWrite<Prompt, &Prompt::ConnectionString, &Prompt::SetConnectionString>("ConnectionString"),
};

using FilePrompt = SaveFileDialogObject;
constexpr Member kSaveFileDialog[] = {
    ReadOnly<FilePrompt, &FilePrompt::Caption>("Caption"),
    ReadOnly<FilePrompt, &FilePrompt::FileName>("FileName"),
    ReadOnly<FilePrompt, &FilePrompt::Extensions>("Extensions"),
    ReadWrite<FilePrompt, &FilePrompt::Path, &FilePrompt::SetPath>("Path"),
};

using Line = TextDialogObject;
constexpr Member kTextDialog[] = {
    ReadOnly<Line, &Line::Caption>("Caption"),
    ReadOnly<Line, &Line::Label>("Label"),
    ReadWrite<Line, &Line::Text, &Line::SetText>("Text"),
    ReadOnly<Line, &Line::Problem>("Problem"),
    ReadWrite<Line, &Line::Accepted, &Line::SetAccepted>("Accepted"),
};

using Values = ParametersDialogObject;
constexpr Member kParametersDialog[] = {
    ReadOnly<Values, &Values::Caption>("Caption"),
    ReadOnly<Values, &Values::Prompts>("Prompts"),
    ReadOnly<Values, &Values::Types>("Types"),
    ReadWrite<Values, &Values::Value, &Values::SetValue>("Value", "Position"),
    ReadOnly<Values, &Values::Problem>("Problem"),
    ReadOnly<Values, &Values::Statement>("Statement"),
    ReadWrite<Values, &Values::Accepted, &Values::SetAccepted>("Accepted"),
};

Ref<Object> MakeConnection() {
  return std::make_shared<ProviderConnection>(ToolkitObject::Instance()->Services()->Providers());
}

const ClassInfo kClasses[] = {
    {"Connection", kConnection, "ConnectionString", &MakeConnection},
    {"RowSet", kRowSet, "Fields"},
    {"Field", kField, "Value"},
    {"Font", kFont, "Name", [] { return Ref<Object>(std::make_shared<FontObject>()); }},
    {"Image", kImage, ""},
    {"ImageList", kImageList, "Item", [] { return Ref<Object>(std::make_shared<ImageList>()); }},
    {"Toolkit", kToolkit, "", [] { return Ref<Object>(ToolkitObject::Instance()); }},
    {"ToolkitMessages", kMessages, "Item"},
    {"ToolkitMessage", kMessage, "Text"},
    {"ContextMenu", kMenu, "Item"},
    {"MenuItem", kMenuItem, "Text"},
    {"TablesDialog", kTablesDialog, ""},
    {"JoinDialog", kJoinDialog, ""},
    {"ConnectionDialog", kConnectionDialog, "ConnectionString"},
    {"ExpressionDialog", kExpressionDialog, "Text"},
    {"SaveFileDialog", kSaveFileDialog, "Path"},
    {"TextDialog", kTextDialog, "Text"},
    {"ParametersDialog", kParametersDialog, "Value"},
};

}  // namespace

std::span<const ClassInfo> PlatformClasses() { return kClasses; }

}  // namespace zrqrybld
