#include "zrqrybld/adapters/run/source_effects.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld {
namespace {

// Where a name has to stand to mean something.
enum class Place : std::uint8_t {
  Call,    // in front of "("
  Member,  // in front of "."
  Words,   // two words, "FOR/UPDATE", in this order
  Word,    // anywhere
};

struct Effects {
  SourceFamily family;
  Place place;
  std::string_view names;  // separated by blanks; a star at the end stands for any ending
  TextId what;             // what is said of them
};

constexpr TextId kFiles = text::ReachesFiles;
constexpr TextId kLocks = text::TakesLocks;
constexpr TextId kSessions = text::DisturbsSessions;
constexpr TextId kTexts = text::RunsTexts;
constexpr TextId kState = text::ChangesState;
constexpr TextId kElsewhere = text::ReachesElsewhere;

constexpr Effects kEffects[] = {
    {SourceFamily::PostgreSql, Place::Call,
     "pg_terminate_backend pg_cancel_backend pg_notify pg_reload_conf pg_rotate_logfile* pg_switch_wal pg_switch_xlog "
     "pg_promote pg_create_* pg_drop_* pg_copy_* pg_logical_* pg_replication_* pg_sync_replication_slots "
     "pg_wal_replay_* pg_xlog_replay_* pg_backup_* pg_start_backup pg_stop_backup pg_log_* pg_stat_reset* "
     "pg_stat_statements_reset pg_stat_force_next_flush pg_clear_* pg_restore_* "
     "pg_export_snapshot pg_import_system_collations pg_prewarm autoprewarm_* pg_truncate_visibility_map "
     "pg_buffercache_evict* heap_force_* brin_summarize* brin_desummarize* gin_clean_pending_list currtid* "
     "binary_upgrade_* pg_extension_config_dump pg_nextoid",
     kSessions},
    {SourceFamily::PostgreSql, Place::Call, "pg_read_* pg_ls_* pg_stat_file pg_file_* pg_logdir_ls lo_* loread lowrite",
     kFiles},
    {SourceFamily::PostgreSql, Place::Call, "pg_advisory_* pg_try_advisory_*", kLocks},
    {SourceFamily::PostgreSql, Place::Call, "nextval setval set_config", kState},
    {SourceFamily::PostgreSql, Place::Call,
     "query_to_xml* cursor_to_xml* ts_stat ts_rewrite crosstab* connectby xpath_table", kTexts},
    {SourceFamily::PostgreSql, Place::Call, "dblink* postgres_fdw_* http http_* aws_* plsh*", kElsewhere},
    {SourceFamily::PostgreSql, Place::Words, "FOR/UPDATE FOR/NO FOR/SHARE FOR/KEY", kLocks},

    {SourceFamily::MariaDb, Place::Call, "LOAD_FILE", kFiles},
    {SourceFamily::MariaDb, Place::Call, "GET_LOCK RELEASE_LOCK RELEASE_ALL_LOCKS service_get_* service_release_locks",
     kLocks},
    {SourceFamily::MariaDb, Place::Call, "NEXTVAL SETVAL", kState},
    {SourceFamily::MariaDb, Place::Call,
     "sys_exec sys_eval sys_set sys_get http_* spider_* mysqlx_* group_replication_* asynchronous_connection_* "
     "keyring_* audit_log_* version_tokens_* set_firewall_* mysql_firewall_* load_rewrite_rules",
     kElsewhere},
    {SourceFamily::MariaDb, Place::Words, "FOR/UPDATE FOR/SHARE LOCK/IN", kLocks},
    {SourceFamily::MariaDb, Place::Words, "NEXT/VALUE PROCEDURE/ANALYSE", kState},
    {SourceFamily::MariaDb, Place::Words, ":/=", kState},

    {SourceFamily::Sqlite, Place::Call, "readfile writefile blob_import blob_export import_csv fsdir lsmode edit",
     kFiles},
    {SourceFamily::Sqlite, Place::Call, "load_extension fts3_tokenizer", kElsewhere},
    {SourceFamily::Sqlite, Place::Call, "eval", kTexts},

    {SourceFamily::SqlServer, Place::Call, "OPENROWSET OPENQUERY OPENDATASOURCE", kElsewhere},
    {SourceFamily::SqlServer, Place::Call, "fn_xe_file_target_read_file fn_get_audit_file fn_trace_gettable", kFiles},
    {SourceFamily::SqlServer, Place::Words, "FOR/UPDATE", kLocks},
    {SourceFamily::SqlServer, Place::Words, "NEXT/VALUE", kState},
    {SourceFamily::SqlServer, Place::Word, "UPDLOCK XLOCK TABLOCK TABLOCKX HOLDLOCK PAGLOCK", kLocks},

    {SourceFamily::Oracle, Place::Words, "FOR/UPDATE", kLocks},
    {SourceFamily::Oracle, Place::Words, "./NEXTVAL", kState},
    {SourceFamily::Oracle, Place::Member,
     "UTL_FILE UTL_HTTP UTL_TCP UTL_SMTP UTL_MAIL UTL_INADDR UTL_DBWS DBMS_LDAP DBMS_JAVA DBMS_PIPE DBMS_ALERT "
     "DBMS_AQ DBMS_CLOUD",
     kElsewhere},
    {SourceFamily::Oracle, Place::Member, "DBMS_LOCK", kLocks},
    {SourceFamily::Oracle, Place::Member,
     "DBMS_SQL DBMS_XMLGEN DBMS_XMLQUERY DBMS_XMLSTORE DBMS_SCHEDULER DBMS_JOB DBMS_SYS_SQL DBMS_UTILITY", kTexts},
    {SourceFamily::Oracle, Place::Call, "HTTPURITYPE DBURITYPE", kElsewhere},

    {SourceFamily::Access, Place::Call, "SHELL KILL ENVIRON CREATEOBJECT GETOBJECT FILECOPY EVAL", kElsewhere},
};

// Words that begin a statement, for sources that need no sign between two.
constexpr std::string_view kStatements =
    "INSERT UPDATE DELETE MERGE EXEC EXECUTE DROP ALTER CREATE TRUNCATE GRANT REVOKE DENY BACKUP RESTORE SHUTDOWN KILL "
    "RECONFIGURE DBCC BULK COMMIT ROLLBACK SAVE BEGIN SET DECLARE WAITFOR WRITETEXT UPDATETEXT REVERT SETUSER "
    "CHECKPOINT IF WHILE RAISERROR PRINT";

bool IsQuoted(std::string_view text) {
  return text.size() > 1 && std::string_view("'\"`[").find(text.front()) != std::string_view::npos;
}

// The name that a piece means, without its quotes.
std::string NameOf(std::string_view text) {
  if (!IsQuoted(text)) return std::string(text);
  const std::string closing(1, text.back());
  return ReplaceAll(std::string(text.substr(1, text.size() - 2)), closing + closing, closing);
}

bool Fits(std::string_view pattern, std::string_view name) {
  if (!pattern.ends_with('*')) return EqualsNoCase(pattern, name);
  pattern.remove_suffix(1);
  return name.size() >= pattern.size() && EqualsNoCase(name.substr(0, pattern.size()), pattern);
}

bool Lists(std::string_view names, std::string_view name) {
  while (!names.empty()) {
    const std::size_t end = std::min(names.find(' '), names.size());
    if (Fits(names.substr(0, end), name)) return true;
    names.remove_prefix(std::min(end + 1, names.size()));
  }
  return false;
}

const Effects* Find(SourceFamily family, Place place, std::string_view name) {
  const auto* found = std::ranges::find_if(kEffects, [&](const Effects& effects) {
    return effects.family == family && effects.place == place && Lists(effects.names, name);
  });
  return found == std::end(kEffects) ? nullptr : found;
}

void RefuseIf(const Effects* effects, std::string_view name, std::size_t offset) {
  if (effects == nullptr) return;
  RefuseStatement({effects->what, name}, offset);
}

}  // namespace

void EffectFinder::Add(const Piece& piece) {
  const bool word = !IsQuoted(piece.text);
  if (piece.text == "(" || piece.text == ".") {
    const std::string name = NameOf(before_.text);
    RefuseIf(Find(family_, piece.text == "(" ? Place::Call : Place::Member, name), name, before_.offset);
  }
  if (word && !IsQuoted(before_.text)) {
    const std::string both = std::string(before_.text) + "/" + std::string(piece.text);
    RefuseIf(Find(family_, Place::Words, both), ReplaceAll(both, "/", " "), before_.offset);
  }
  if (word) RefuseIf(Find(family_, Place::Word, piece.text), piece.text, piece.offset);
  if (word && family_ == SourceFamily::SqlServer && Lists(kStatements, piece.text)) {
    RefuseStatement(text::OnlyOneStatement, piece.offset);
  }
  before_ = piece;
}

bool HasEffectInSqlite(std::string_view function) {
  return Find(SourceFamily::Sqlite, Place::Call, function) != nullptr;
}

}  // namespace zrqrybld
