#include "zrqrybld/automation/c_provider.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zrqrybld/automation/c_boundary.h"
#include "zrqrybld/automation/toolkit_object.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/platform/table_row_set.h"

namespace zrqrybld {
namespace {

using Row = std::vector<Variant>;

// More than any source has; what gives more does not end.
constexpr std::size_t kLongestText = std::size_t{1} << 20;
constexpr std::size_t kMostMemory = std::size_t{256} << 20;
constexpr std::size_t kCellMemory = 64;
constexpr std::size_t kLongestMessage = 10'000;
constexpr std::int32_t kTooMuch = 7;

// The fields of a kind of rows, and what they hold: N a name that must be given, s the name of a schema or catalog,
// t text, n a whole number, c the code of a type, b a Boolean.
struct Shape {
  std::int32_t kind;
  std::span<const std::string_view> fields;
  std::string_view holds;
  std::size_t wanted = 0;  // where catalog, schema and table stand that can be asked for
  bool canBeAskedFor = false;
};
constexpr std::string_view kKeywordFields[] = {"KEYWORD"};
constexpr Shape kShapes[] = {
    {ZRQ_KEYWORDS, kKeywordFields, "N"},
    {ZRQ_COLUMNS, kColumnFields, "ssNNnbtnbcnnnt", 0, true},
    {ZRQ_TABLES, kTableFields, "ssNtt", 0, true},
    {ZRQ_TYPES, kProviderTypeFields, "Ncnttb"},
    {ZRQ_FOREIGN_KEYS, kForeignKeyFields, "ssNNssNNnt", 4, true},
    {ZRQ_PRIMARY_KEYS, kPrimaryKeyFields, "ssNNnt", 0, true},
    {ZRQ_LITERALS, kLiteralFields, "Nttt"},
};

const Shape& ShapeOf(std::int32_t kind) {
  const auto* shape = std::ranges::find(kShapes, kind, &Shape::kind);
  if (shape == std::end(kShapes)) throw Error(ErrorSchemaNotSupported, "The provider has no such rows.");
  return *shape;
}

// --- What a provider's function says while it runs ---

// The call of a provider's function that goes on, innermost last.
struct Answer {
  const Shape* shape = nullptr;  // of the rows that are wanted; nothing when none are
  std::vector<Row> rows;
  std::size_t memory = 0;
  std::string message;
};
thread_local std::vector<Answer*> answering;

struct Answering {
  explicit Answering(Answer& answer) { answering.push_back(&answer); }
  Answering(const Answering&) = delete;
  Answering& operator=(const Answering&) = delete;
  ~Answering() { answering.pop_back(); }
  const KeepHandles keep;
};

[[noreturn]] void ThrowBadCell(std::string_view field, const char* wanted) {
  throw Error(ErrorInvalidCall, std::string(field) + " of a provider's row: " + wanted + " is wanted.");
}

Variant CheckedCell(const Variant& value, char holds, std::string_view field) {
  const bool isText = value.IsString();
  if (value.IsBlank() && !isText) {
    if (holds == 'N') ThrowBadCell(field, "a name");
    return holds == 'c' ? Variant(std::int32_t{0}) : Variant::Null();
  }
  switch (holds) {
    case 'N':
    case 's':
    case 't':
      if (!isText || value.Text().find('\0') != std::string::npos) ThrowBadCell(field, "a text");
      if (value.Text().empty() && holds == 'N') ThrowBadCell(field, "a name");
      return value.Text().empty() && holds == 's' ? Variant::Null() : value;
    case 'b':
      if (isText) ThrowBadCell(field, "a Boolean");
      return value.ToBoolean();
    default:
      if (isText) ThrowBadCell(field, "a whole number");
      return value.ToInt32();
  }
}

// Before the value is copied, so that a text without an end costs nothing.
void RequireRoom(Answer& answer, const zrq_value& value) {
  if (value.type == ZRQ_OBJECT || value.type == ZRQ_ARRAY || value.type == ZRQ_DATE) {
    throw Error(ErrorTypeMismatch, "A provider's row holds texts, numbers and Booleans.");
  }
  const std::size_t length = value.type == ZRQ_STRING ? value.as.text.length : 0;
  if (length > kLongestText) throw Error(kTooMuch, "A provider gives a longer text than any source has.");
  answer.memory += length;
}

void AddRow(const zrq_value* values, std::size_t count) {
  if (answering.empty() || !answering.back()->shape) ThrowInvalid("No rows are wanted now.");
  Answer& answer = *answering.back();
  const Shape& shape = *answer.shape;
  if (count > shape.fields.size() || (!values && count > 0)) ThrowInvalid("A provider's row has too many values.");
  Row row;
  row.reserve(shape.fields.size());
  for (std::size_t i = 0; i < shape.fields.size(); ++i) {
    if (i < count) RequireRoom(answer, values[i]);
    row.push_back(CheckedCell(i < count ? FromC(values[i]) : Variant::Null(), shape.holds[i], shape.fields[i]));
  }
  answer.memory += row.size() * kCellMemory;
  if (answer.memory > kMostMemory) throw Error(kTooMuch, "A provider gives more rows than any source has.");
  answer.rows.push_back(std::move(row));
}

// --- The caller's functions ---

// The functions with their context. They end when nobody uses them any more, or when the caller ends them all.
class Calls {
 public:
  Calls(const zrq_provider& functions, void* context) : functions_(functions), context_(context) {
    Living().insert(this);
  }
  Calls(const Calls&) = delete;
  Calls& operator=(const Calls&) = delete;
  ~Calls() { End(); }

  static std::unordered_set<Calls*>& Living() {
    static auto* const living = new std::unordered_set<Calls*>();
    return *living;
  }
  // The caller has been told that all went well: from now on the end is told, too.
  void Begin() { begun_ = true; }
  void End() {
    if (std::exchange(ended_, true)) return;
    const KeepHandles keep;
    Living().erase(this);
    if (begun_ && functions_.ended) functions_.ended(context_);
  }

  void* Open(const std::string& connectionString, const std::string& user, const std::string& password) const {
    void* session = nullptr;
    if (!functions_.open) return session;
    Answer answer;
    Run(answer,
        [&] { return functions_.open(context_, connectionString.c_str(), user.c_str(), password.c_str(), &session); });
    return session;
  }
  std::vector<Row> Rows(void* session, const Shape& shape, const zrq_wanted& wanted) const {
    Answer answer;
    answer.shape = &shape;
    Run(answer, [&] { return functions_.rows(context_, session, shape.kind, &wanted); });
    return std::move(answer.rows);
  }
  void Close(void* session) const {
    if (ended_ || !functions_.close) return;
    const KeepHandles keep;
    functions_.close(context_, session);
  }

 private:
  template <class Call>
  void Run(Answer& answer, Call call) const {
    if (ended_) throw Error(ErrorConnectionClosed, "The provider has ended.");
    const Answering scope(answer);
    const std::int32_t number = call();
    if (number == 0) return;
    if (answer.message.empty()) answer.message = "The provider has failed.";
    throw Error(number, answer.message);
  }

  zrq_provider functions_;
  void* context_;
  bool begun_ = false;
  bool ended_ = false;
};

// --- The same as a provider ---

std::string Folded(const Variant& value) { return FoldCase(value.Text()); }

// Rows for other tables are passed over. Names that are equal exactly come first: a source may have two that differ in
// letter case only.
void KeepWanted(std::vector<Row>& rows, const Shape& shape, const SchemaRestrictions& restrictions) {
  const std::optional<std::string>* const wanted[] = {&restrictions.catalog, &restrictions.schema, &restrictions.table};
  const auto differs = [&](const Row& row, auto form) {
    for (std::size_t i = 0; i < std::size(wanted); ++i) {
      const std::optional<std::string>& name = *wanted[i];
      if (name && !name->empty() && form(row[shape.wanted + i]) != form(Variant(*name))) return true;
    }
    return false;
  };
  const auto exactly = [&](const Row& row) { return differs(row, [](const Variant& value) { return value.Text(); }); };
  if (std::ranges::all_of(rows, exactly)) {
    std::erase_if(rows, [&](const Row& row) { return differs(row, Folded); });
  } else {
    std::erase_if(rows, exactly);
  }
}

class CallerSession final : public Session {
 public:
  CallerSession(std::shared_ptr<const Calls> calls, void* session)
      : opened_(std::make_shared<const Opened>(std::move(calls), session)) {}

  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) override {
    const Shape& shape = ShapeOf(static_cast<std::int32_t>(kind));
    return std::make_unique<TableRowSet>(shape.fields, Rows(shape, restrictions));
  }
  std::vector<std::string> Keywords() const override {
    std::vector<std::string> words;
    for (const Row& row : Rows(ShapeOf(ZRQ_KEYWORDS), {})) words.push_back(row.front().Text());
    return words;
  }
  bool KnowsWholeSource(SchemaKind kind) const override { return kind == SchemaKind::ForeignKeys; }

 private:
  struct Opened {
    Opened(std::shared_ptr<const Calls> itsCalls, void* itsSession) : calls(std::move(itsCalls)), session(itsSession) {}
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    ~Opened() { calls->Close(session); }
    const std::shared_ptr<const Calls> calls;
    void* const session;
  };

  std::vector<Row> Rows(const Shape& shape, const SchemaRestrictions& restrictions) const {
    const auto opened = opened_;  // the provider's function may close the connection
    const auto text = [](const std::optional<std::string>& name) {
      return name && !name->empty() ? name->c_str() : nullptr;
    };
    const zrq_wanted wanted{text(restrictions.catalog), text(restrictions.schema), text(restrictions.table)};
    std::vector<Row> rows = opened->calls->Rows(opened->session, shape, wanted);
    if (shape.canBeAskedFor) KeepWanted(rows, shape, restrictions);
    return rows;
  }

  std::shared_ptr<const Opened> opened_;
};

class CallerProvider final : public Provider {
 public:
  CallerProvider(std::string name, std::shared_ptr<Calls> calls) : name_(std::move(name)), calls_(std::move(calls)) {}
  void Begin() { calls_->Begin(); }
  std::string_view Name() const override { return name_; }
  bool Accepts(const ConnectionString&) const override { return false; }
  std::unique_ptr<Session> Open(const ConnectionString& connectionString, std::string_view user,
                                std::string_view password) override {
    std::string text;
    for (const auto& [key, value] : connectionString.Parts()) {
      text += (text.empty() ? "" : ";") + key + '=' + ConnectionString::QuoteValue(value);
    }
    void* const session = calls_->Open(text, std::string(user), std::string(password));
    return std::make_unique<CallerSession>(calls_, session);
  }

 private:
  std::string name_;
  std::shared_ptr<Calls> calls_;
};

std::vector<std::shared_ptr<Provider>>& Registered() {
  static auto* const registered = new std::vector<std::shared_ptr<Provider>>();
  return *registered;
}

// The functions as this version of the interface knows them. What a later one adds must not be asked for.
zrq_provider ReadFunctions(const zrq_provider* provider) {
  constexpr std::size_t kFirstVersion = offsetof(zrq_provider, ended) + sizeof(zrq_provider::ended);
  if (!provider || provider->size < kFirstVersion) ThrowInvalid("The provider's size is missing.");
  const auto* const bytes = reinterpret_cast<const char*>(provider);
  if (std::any_of(bytes + std::min(provider->size, sizeof(zrq_provider)), bytes + provider->size,
                  [](char c) { return c != 0; })) {
    ThrowInvalid("The provider is written for a later version of the library.");
  }
  zrq_provider functions{};
  std::memcpy(&functions, provider, std::min(provider->size, sizeof(zrq_provider)));
  if (!functions.rows) ThrowInvalid("A provider needs the function \"rows\".");
  return functions;
}

std::shared_ptr<CallerProvider> MakeProvider(const zrq_provider* provider, void* context) {
  const zrq_provider functions = ReadFunctions(provider);
  std::string name(TextFromC(functions.name));
  if (Trim(name).empty()) ThrowInvalid("A provider needs a name.");
  return std::make_shared<CallerProvider>(std::move(name), std::make_shared<Calls>(functions, context));
}

}  // namespace

void RequireUsable(const Object& object) {
  if (answering.empty()) return;
  const std::string_view name = object.TypeName();
  if (name == "Connection" || name == "RowSet" || name == "Field") return;
  ThrowInvalid("While a provider answers, only connections and their rows can be used.");
}

void RegisterCallerProviders(ProviderList& providers) {
  for (const std::shared_ptr<Provider>& provider : Registered()) providers.Register(provider);
}

void EndCallerProviders() {
  while (!Calls::Living().empty()) (*Calls::Living().begin())->End();
}

}  // namespace zrqrybld

using namespace zrqrybld;

int32_t zrq_connection(const zrq_provider* provider, void* context, zrq_handle* connection) {
  return Guard([&] {
    if (!connection) ThrowInvalid("There is no place for the handle.");
    *connection = 0;
    const auto providers = std::make_shared<ProviderList>();
    const std::shared_ptr<CallerProvider> made = MakeProvider(provider, context);
    providers->Register(made);
    const auto own = std::make_shared<ProviderConnection>(providers);
    own->SetConnectionString("Provider=" + ConnectionString::QuoteValue(made->Name()));
    *connection = Handles().Add(own);
    made->Begin();
  });
}

int32_t zrq_register(const zrq_provider* provider, void* context) {
  return Guard([&] {
    const std::shared_ptr<CallerProvider> made = MakeProvider(provider, context);
    Registered().push_back(made);
    ToolkitObject::Instance()->Services()->Providers()->Register(made);
    made->Begin();
  });
}

int32_t zrq_row(const zrq_value* values, size_t count) {
  return Guard([&] { AddRow(values, count); });
}

int32_t zrq_fail(int32_t number, const char* description) {
  if (number == 0) number = ErrorInvalidCall;
  Guard([&] {
    if (answering.empty()) ThrowInvalid("No provider's function is running.");
    const std::string_view words = TextFromC(description);
    answering.back()->message = words.substr(0, std::min(words.size(), kLongestMessage));
  });
  return number;
}
