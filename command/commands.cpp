#include "command/commands.h"

#include <filesystem>
#include <iostream>
#include <iterator>
#include <vector>

#include "command/json.h"
#include "zrqrybld/adapters/files/system_files.h"
#include "zrqrybld/automation/toolkit_object.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/queries.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/parameters.h"
#include "zrqrybld/sql/readable_criteria.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kLargestFile = 64u << 20;

// --- A designer, files
// ---------------------------------------------------------------------------------------------------

Ref<qbQueryBuilder> MakeDesigner() {
  Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  RegisterProviders(*hub->GetToolkit().Providers());
  UseSystemFiles(hub->GetToolkit());
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->SetGridPane(qbGridPane::Create());
  hub->SetSQLPane(qbSQLPane::Create());
  hub->GridPane()->SetShowGroupBy(false);
  hub->SetSaveLoadEntityItems(true);  // a query file's own columns are shown where no source tells them
  hub->SetConnectOnLoad(false);
  return hub;
}

void Connect(qbQueryBuilder& hub, const std::string& connectionString) {
  if (connectionString.empty()) return;
  hub.Connect(connectionString);
  if (hub.LastError()) throw *hub.LastError();
  hub.SetSaveLoadEntityItems(false);
}

std::string ReadText(const std::string& file) {
  if (file != "-") return ReadWholeFile(file, kLargestFile);
  std::cin.unsetf(std::ios::skipws);
  std::string text{std::istreambuf_iterator<char>(std::cin), {}};
  if (text.size() > kLargestFile) throw Error(ErrorFileAccess, "The standard input is too large.");
  return text;
}

// A query file begins with the version that wrote it; no statement does.
bool IsQueryFile(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  constexpr std::string_view kBegin = "Version=";
  return EqualsNoCase(text.substr(0, kBegin.size()), kBegin);
}

// What was not read is not in what comes out either, and a pipeline has nobody to ask.
void RefuseIncomplete(const qbQueryBuilder& hub) {
  if (hub.LoadRemarks().empty()) return;
  throw Error(ErrorLoadingQuery, "The query file is not read completely: " + hub.LoadRemarks().front());
}

// --- Problems
// ------------------------------------------------------------------------------------------------------------

// What is wrong with a file. Line and column are from 1; 0 when the whole file is meant.
struct Problem {
  std::string file;
  TextPlace place{0, 0};
  std::string message;
  bool isRemark = false;  // the file can be used all the same
};

Problem ProblemOf(const std::string& file, std::string_view text, const std::exception& failure) {
  Problem problem{file, {0, 0}, failure.what()};
  if (const auto* syntax = dynamic_cast<const SyntaxError*>(&failure)) {
    problem.place = syntax->Place();
    problem.message = syntax->Message();
    if (!syntax->Expected().empty()) problem.message += " Expected: " + syntax->Expected() + ".";
  } else if (const auto* error = dynamic_cast<const Error*>(&failure); error && error->Offset()) {
    problem.place = PlaceIn(text, *error->Offset());
  }
  for (std::size_t at; (at = problem.message.find("\r\n")) != std::string::npos;) problem.message.replace(at, 2, " ");
  return problem;
}

void Tell(const Problem& problem, std::ostream& errors) {
  errors << problem.file << ':';
  if (problem.place.line != 0) errors << problem.place.line << ':' << problem.place.column << ':';
  errors << (problem.isRemark ? " remark: " : " ") << problem.message << '\n';
}

// What a verb writes, and whether anything went wrong.
struct Outcome {
  std::string text;
  bool failed = false;
  bool hasRemarks = false;
};

// What there is to say about the statement that comes out, one line each; in JSON beside it.
void TellRemarks(const CommandOptions& options, const std::string& file, const qbSQLPane& pane, Outcome& outcome,
                 JsonWriter& json, std::ostream& errors) {
  const std::vector<std::string> remarks = pane.Remarks();
  if (options.json) json.Texts("remarks", remarks);
  for (const std::string& remark : remarks) {
    outcome.hasRemarks = true;
    if (!options.json) Tell({file, {0, 0}, remark, true}, errors);
  }
}

// --- Verbs
// ---------------------------------------------------------------------------------------------------------------

Outcome ListTables(const CommandOptions& options) {
  const Ref<qbQueryBuilder> hub = MakeDesigner();
  Connect(*hub, options.connectionString);
  Outcome outcome;
  JsonWriter json;
  json.BeginArray();
  const std::unique_ptr<RowSet> rows = hub->Connection()->OpenSchema(SchemaKind::Tables);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string schema = rows->Text("TABLE_SCHEMA");
    const std::string type = rows->Text("TABLE_TYPE");
    if (!EqualsNoCase(type, "TABLE") && !EqualsNoCase(type, "VIEW")) continue;
    const std::string name = (schema.empty() ? "" : schema + ".") + rows->Text("TABLE_NAME");
    outcome.text += name + '\t' + type + '\n';
    json.BeginObject();
    json.Text("name", name);
    json.Text("type", type);
    json.EndObject();
  }
  json.EndArray();
  if (options.json) outcome.text = json.Take();
  return outcome;
}

std::string Translate(const Ref<qbQueryBuilder>& hub, const CommandOptions& options, const std::string& statement) {
  hub->SQLPane()->SetSQLSyntax(options.from);
  hub->SQLPane()->ParseSQLStatement(statement);
  hub->SQLPane()->SetSQLSyntax(options.to);
  hub->SQLPane()->Refresh();
  std::string translated = hub->SQLPane()->SQLStatement();
  const std::vector<std::string> remarks = hub->SQLPane()->Remarks();
  if (translated.empty() && !remarks.empty()) throw Error(ErrorParsingText, remarks.front());
  return translated;
}

Outcome TranslateFiles(const CommandOptions& options, std::ostream& errors) {
  const bool intoFolder = options.files.size() > 1 && !options.output.empty();
  if (intoFolder) std::filesystem::create_directories(PathOf(options.output));
  Outcome outcome;
  JsonWriter json;
  json.BeginArray();
  for (const std::string& file : options.files) {
    std::string text;
    json.BeginObject();
    json.Text("file", file);
    try {
      text = ReadText(file);
      // A designer of its own for each file: no statement meets what another has left.
      const Ref<qbQueryBuilder> hub = MakeDesigner();
      Connect(*hub, options.connectionString);
      const std::string translated = Translate(hub, options, text);
      if (intoFolder) {
        const std::filesystem::path target = PathOf(options.output) / PathOf(file).filename();
        WriteWholeFile(Utf8Of(target), translated + '\n', hub->GetToolkit().Files());
      } else if (options.files.size() > 1) {
        outcome.text += "-- " + file + '\n' + translated + "\n\n";
      } else {
        outcome.text += translated + '\n';
      }
      json.Text("sql", translated);
      TellRemarks(options, file, *hub->SQLPane(), outcome, json, errors);
    } catch (const std::exception& failure) {
      const Problem problem = ProblemOf(file, text, failure);
      outcome.failed = true;
      if (!options.json) Tell(problem, errors);
      json.Text("error", problem.message);
      json.Number("line", static_cast<std::int64_t>(problem.place.line));
      json.Number("column", static_cast<std::int64_t>(problem.place.column));
    }
    json.EndObject();
  }
  json.EndArray();
  if (options.json) outcome.text = json.Take();
  return outcome;
}

Ref<qbQueryBuilder> LoadFile(const CommandOptions& options, std::string* statement) {
  const std::string text = ReadText(options.files[0]);
  if (!IsQueryFile(text)) throw Error(ErrorLoadingQuery, options.files[0] + " is no query file.");
  const Ref<qbQueryBuilder> hub = MakeDesigner();
  Connect(*hub, options.connectionString);
  hub->LoadQuery(text, true, false, statement);
  RefuseIncomplete(*hub);
  return hub;
}

// The tree of the queries; nothing of a single one.
void TellQueries(qbQueryBuilder& hub, std::string& text, JsonWriter& json) {
  constexpr std::string_view kKinds[] = {"", "FROM", "WITH"};
  if (hub.Queries()->Count() < 2) return;
  text += "Queries:\n";
  json.BeginArray("queries");
  for (const Ref<qbQuery>& query : *hub.Queries()) {
    const bool isMember = query->Kind() == QueryMember;
    const std::string kind(isMember ? NameOf(query->Operator()) : kKinds[query->Kind()]);
    std::string indent;
    for (Ref<qbQuery> parent = query; parent; parent = parent->Parent()) indent += "  ";
    json.BeginObject();
    json.Number("id", query->Id());
    if (const Ref<qbQuery> parent = query->Parent()) json.Number("parent", parent->Id());
    json.Text("kind", kind);
    json.Text("name", query->Name());
    json.EndObject();
    const std::string name = query->Kind() == QueryMain ? "SELECT" : query->Name();
    text += indent + kind + (kind.empty() || name.empty() ? "" : " ") + name + '\n';
  }
  json.EndArray();
}

Outcome ShowQuery(const CommandOptions& options, std::ostream& errors) {
  std::string saved;
  const Ref<qbQueryBuilder> hub = LoadFile(options, &saved);
  const std::string statement = hub->SQLPane()->SQLStatement();
  Outcome outcome;
  JsonWriter json;
  json.BeginObject();
  json.Text("statement", statement);
  outcome.text = statement + "\n\nTables:\n";
  json.BeginArray("tables");
  const Ref<qbEntities> entities = hub->DiagramPane()->Entities();
  for (const Ref<qbEntity>& entity : *entities) {
    json.BeginObject();
    json.Text("caption", entity->Caption());
    json.Text("table", entity->TagVariant().Text());
    json.EndObject();
    const bool named = entity->TagVariant().Text() != entity->Caption();
    outcome.text += "  " + entity->Caption() + (named ? "  (" + entity->TagVariant().Text() + ")" : "") + '\n';
  }
  json.EndArray();
  TellQueries(*hub, outcome.text, json);
  json.BeginArray("parameters");
  outcome.text += "Parameters:\n";
  const Ref<qbParameters> parameters = ScanParameters(saved, hub).parameters;
  for (const Ref<qbParameter>& parameter : *parameters) {
    json.BeginObject();
    json.Text("name", parameter->Name);
    json.Text("prompt", parameter->FormatPrompt());
    json.Text("default", parameter->Default.Text());
    json.Text("type", parameter->DataType.Text());
    json.EndObject();
    outcome.text += "  " + (parameter->Name.empty() ? parameter->FormatPrompt() : parameter->Name) + '\n';
  }
  json.EndArray();
  TellRemarks(options, options.files[0], *hub->SQLPane(), outcome, json, errors);
  json.EndObject();
  if (options.json) outcome.text = json.Take();
  try {
    RequireReadableCriteria(*hub->SQLPane());
  } catch (const Error& failure) {  // it is shown, but nobody should run it
    Tell(ProblemOf(options.files[0], "", failure), errors);
    outcome.failed = true;
  }
  return outcome;
}

Outcome DrawPicture(const CommandOptions& options) { return {LoadFile(options, nullptr)->DiagramPane()->PictureSvg()}; }

// Reads a file as far as it can be read without harm; what is wrong with it, or surprising.
std::vector<Problem> CheckFile(const CommandOptions& options, const std::string& file) {
  std::string text;
  std::vector<Problem> problems;
  try {
    text = ReadText(file);
    const Ref<qbQueryBuilder> hub = MakeDesigner();
    Connect(*hub, options.connectionString);
    if (IsQueryFile(text)) {
      hub->LoadQuery(text, true);
      RefuseIncomplete(*hub);
      RequireReadableCriteria(*hub->SQLPane());
    } else if (options.connectionString.empty()) {
      ParseSelect(text, OptionsFor(DialectFor(options.from)));
    } else {
      hub->SQLPane()->SetSQLSyntax(options.from);
      hub->SQLPane()->ParseSQLStatement(text);
    }
    for (std::string& remark : hub->SQLPane()->Remarks()) problems.push_back({file, {0, 0}, std::move(remark), true});
  } catch (const std::exception& failure) {
    problems.push_back(ProblemOf(file, text, failure));
  }
  return problems;
}

Outcome CheckFiles(const CommandOptions& options, std::ostream& errors) {
  Outcome outcome;
  JsonWriter json;
  json.BeginArray();
  for (const std::string& file : options.files) {
    for (const Problem& problem : CheckFile(options, file)) {
      (problem.isRemark ? outcome.hasRemarks : outcome.failed) = true;
      if (!options.json) Tell(problem, errors);
      json.BeginObject();
      json.Text("file", problem.file);
      json.Number("line", static_cast<std::int64_t>(problem.place.line));
      json.Number("column", static_cast<std::int64_t>(problem.place.column));
      json.Text(problem.isRemark ? "remark" : "message", problem.message);
      json.EndObject();
    }
  }
  json.EndArray();
  if (options.json) outcome.text = json.Take();
  return outcome;
}

Outcome Run(const CommandOptions& options, std::ostream& errors) {
  switch (options.verb) {
    case Verb::Help:
      return {HelpText()};
    case Verb::Version:
      return {"zrqb " ZRQRYBLD_VERSION "\n"};
    case Verb::Tables:
      return ListTables(options);
    case Verb::Translate:
      return TranslateFiles(options, errors);
    case Verb::Show:
      return ShowQuery(options, errors);
    case Verb::Picture:
      return DrawPicture(options);
    case Verb::Check:
      return CheckFiles(options, errors);
  }
  return {};
}

}  // namespace

int RunCommand(const CommandOptions& options, std::ostream& out, std::ostream& errors) {
  const Outcome outcome = Run(options, errors);
  const bool writtenAlready = options.verb == Verb::Translate && options.files.size() > 1 && !options.json;
  if (options.output.empty() || (writtenAlready && outcome.text.empty())) {
    out << outcome.text << std::flush;
    if (!out) throw Error(ErrorFileAccess, "The standard output cannot be written.");
  } else {
    WriteWholeFile(options.output, outcome.text, *SystemFiles());
  }
  constexpr int kFailed = 1;
  constexpr int kRemarks = 3;  // 2 is a command line that makes no sense
  return outcome.failed ? kFailed : outcome.hasRemarks ? kRemarks : 0;
}

}  // namespace zrqrybld
