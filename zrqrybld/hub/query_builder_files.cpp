// The query's way into a file and back.
#include <functional>
#include <unordered_map>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/hub_parts.h"
#include "zrqrybld/hub/query_file_reader.h"
#include "zrqrybld/hub/query_file_writer.h"
#include "zrqrybld/hub/read_queries.h"
#include "zrqrybld/hub/statement_loader.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/source_rules.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

void qbQueryBuilder::SaveQuery(const std::string& filename) {
  RunOperation(text::StepSave, InfoSavingQuery, [&] {
    RaiseInfo(InfoSavingQuery, filename);
    const std::string text = QueryFileWriter(*this).Write();
    const bool holdsPassword = options_.saveConnectionString && savePassword_;
    WriteWholeFile(filename, text + "\r\n", GetToolkit().Files(), holdsPassword);
  });
}

std::string qbQueryBuilder::SaveQueryToText() {
  std::string written;
  RunOperation(text::StepSave, InfoSavingQuery, [&] {
    RaiseInfo(InfoSavingQuery, std::string());
    written = QueryFileWriter(*this).Write();
  });
  return written;
}

// What the file's query can name is there before its boxes are, and what names it comes last.
bool qbQueryBuilder::ReadWithInner(QueryFileReader& reader, std::string_view text,
                                   const std::vector<InnerQueryInFile>& inner) {
  RequireStill();
  TouchQueries();
  const ScopedValue loading(loadsQueries_, true);
  QuerySet& set = parts_->querySet;
  const std::int32_t root = set.shown;
  std::unordered_map<std::int32_t, std::int32_t> ids{{0, root}};  // by those in the file
  const auto read = [&](const InnerQueryInFile& query) {
    SwitchTo(ids.at(query.id));
    QueryFileReader own(*this, {}, loadRemarks_);
    own.BehindLine(query.line);
    own.Read(query.text);
  };
  // Those that belong to a query stand behind it.
  const std::function<void(std::int32_t, bool)> readInner = [&](std::int32_t of, bool members) {
    for (const InnerQueryInFile& query : inner) {
      if (query.parent != of || (query.kind == QueryMember) != members) continue;
      readInner(query.id, false);
      read(query);
      readInner(query.id, true);
    }
  };
  reader.BeforeSections([&] {
    for (const InnerQueryInFile& query : inner) {
      StoredQuery stored;
      stored.parent = ids.at(query.parent);
      stored.kind = query.kind;
      stored.combined = query.combined;
      stored.name = query.name;
      stored.columnNames = query.columnNames;
      ids[query.id] = set.Add(std::move(stored));
    }
    queriesChanged_ = true;
    readInner(0, false);
    SwitchTo(root);
  });
  if (!reader.Read(text)) return false;
  readInner(0, true);
  SwitchTo(root);
  return true;
}

namespace {

// What the file says in SQL. Error for one that says nothing, or says it in another dialect.
std::string StatementIn(qbQueryBuilder& hub, const std::string& file) {
  std::string statement;
  std::vector<std::string> remarks;
  SQLSyntaxEnum syntax = hub.CurrentDialect().syntax;
  QueryFileReader(hub, {.only = true, .sqlStatement = &statement, .syntax = &syntax}, remarks).Read(file);
  if (TrimWhite(statement).empty()) throw Error(ErrorLoadingQuery, text::FileHasNoStatement);
  if (syntax != hub.CurrentDialect().syntax) {
    throw Error(ErrorLoadingQuery, {text::FileInOtherDialect, DialectFor(syntax).name, hub.CurrentDialect().name});
  }
  return statement;
}

// The file's name without folders and extension, as a table could be called.
std::string NameFor(const qbQueryBuilder& hub, std::string_view filename) {
  std::string_view name = filename.substr(filename.find_last_of("/\\") + 1);
  name = name.substr(0, name.find_last_of('.'));
  const std::string separator = CurrentNameRules(hub).schemaSeparator;
  std::string plain = ReplaceAll(std::string(name), ".", "_");
  if (!separator.empty()) plain = ReplaceAll(plain, separator, "_");
  return Trim(plain).empty() ? hub.Say(text::NewQueryName) : plain;
}

}  // namespace

// The file is read whole, and every name in it, before anything is changed.
std::int32_t qbQueryBuilder::AddSavedQuery(const std::string& filename, bool fileIsData) {
  RequireStill();
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  try {
    const std::string text = fileIsData ? filename : ReadWholeFile(filename, kLargestQueryFile);
    ReadQueries read(*this, StatementIn(*this, text), {CommonTables(), Outer()});
    StoredQuery& facts = read.Main().facts;
    facts.kind = QueryDerivedTable;
    facts.name = parts_->querySet.FreeName(parts_->querySet.shown,
                                           fileIsData ? Say(text::NewQueryName) : NameFor(*this, filename));
    RequireWritable(*this, read.Main());
    return AddDerived(read.Main());
  } catch (const Error& cause) {
    throw WrapError(ErrorLoadingQuery, text::LoadingFailed, cause);
  }
}

// What half of it is there goes again where it cannot be loaded after all.
std::int32_t qbQueryBuilder::AddDerived(ReadQuery& read) {
  const StepScope step(RefTo(*this), kStepAddQuery, read.facts.name);
  const std::int32_t shown = parts_->querySet.shown;
  TouchQueries();
  try {
    {
      const ScopedValue loading(loadsQueries_, true);
      const StateScope state(*this, InfoParsingSQL);
      read.facts.parent = shown;
      AddRead(read);
      LoadOneQuery(read);
      SwitchTo(shown);
    }
    queriesChanged_ = true;
    TablePicker(RefTo(*this)).AddTable(read.facts.name);
    QueryChanged();
    return read.facts.id;
  } catch (...) {
    steps.TakeStepBack();
    throw;
  }
}

bool qbQueryBuilder::LoadQuery(const std::string& filename, bool fileIsData, bool returnParametersOnly,
                               std::string* sqlStatement, std::string* connectionString) {
  bool complete = false;
  std::string notApplied;
  RunOperation(kStepLoadQuery, InfoLoadingQuery, [&] {
    loadRemarks_.clear();
    QueryFileReader reader(*this, {returnParametersOnly, sqlStatement, connectionString}, loadRemarks_);
    try {
      RaiseInfo(InfoLoadingQuery, fileIsData ? std::string() : filename);
      const std::string text = fileIsData ? filename : ReadWholeFile(filename, kLargestQueryFile);
      complete = WholeOrNothing(RefTo(*this), [&] {
        const std::vector<InnerQueryInFile> inner =
            returnParametersOnly ? std::vector<InnerQueryInFile>() : QueryFileReader::FindInner(text);
        return inner.empty() ? reader.Read(text) : ReadWithInner(reader, text, inner);
      });
    } catch (const std::exception& cause) {
      throw WrapError(ErrorLoadingQuery, text::LoadingFailed, cause);
    }
    if (!complete || returnParametersOnly) return;
    notApplied = reader.NotApplied();
    if (diagramPane_) diagramPane_->KeepAdded();
    if (sqlPane_) sqlPane_->QueryReplaced();
    QueryChanged();
  });
  if (!notApplied.empty() && sqlPane_ && sqlPane_->KeepTypedText()) sqlPane_->ShowTyped(notApplied);
  return complete;
}

}  // namespace zrqrybld
