#include "designer/query_commands.h"

#include <QFile>

#include "designer/guarded.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

QStringList AddTables(qbQueryBuilder& hub, const QStringList& names) {
  // One step and one statement at the end, not one for each table.
  const StepScope step(hub.Hub(), names.size() == 1 ? kStepAddTable : kStepAddTables,
                       names.size() == 1 ? ToUtf8(names.front()) : std::string());
  const TextSource& texts = *hub.Texts();
  QStringList errors;
  for (const QString& name : names) {
    const std::int32_t before = hub.Entities()->Count();
    const QString error = FailureOf(texts, [&] {
      if (!hub.HasTable(ToUtf8(name))) {
        errors += Say(texts, text::NoTableOrView, name);
        return;
      }
      hub.AddTable(ToUtf8(name));
    });
    if (error.isEmpty()) continue;
    errors += error;
    while (hub.Entities()->Count() > before) hub.Entities()->Remove(hub.Entities()->Count());  // half-made
  }
  if (const QString error = FailureOf(texts, [&] { hub.RefreshAutoJoins(); }); !error.isEmpty()) errors += error;
  return errors;
}

QString TickColumn(const qbQueryBuilder& hub, const QString& name) {
  const TextSource& texts = *hub.Texts();
  const std::string text = ToUtf8(name);
  const std::size_t dot = text.rfind('.');
  const std::string table = dot == std::string::npos ? std::string() : text.substr(0, dot);
  const Ref<qbEntity> entity = hub.Entities()->Item(table);
  if (!entity) return Say(texts, text::NamesNoTable, name);
  const Ref<qbEntityItem> item = entity->Items()->Item(text.substr(dot + 1));
  if (!item) return Say(texts, text::TableWithoutColumn, ToQString(table), ToQString(text.substr(dot + 1)));
  return FailureOf(texts, [&] { item->SetChecked(true); });
}

QString ParseFile(qbQueryBuilder& hub, const QString& file) {
  QFile statement(file);
  if (!statement.open(QIODevice::ReadOnly)) return Say(*hub.Texts(), text::StatementCannotBeRead, file);
  const std::string sql = statement.readAll().toStdString();
  return FailureOf(*hub.Texts(), [&] {
    try {
      hub.SQLPane()->ParseSQLStatement(sql);
    } catch (const Error&) {
      hub.SetState(InfoDone);
      throw;
    }
  });
}

void LeaveMainQueryOnly(qbQueryBuilder& hub) {
  hub.ShowQuery(0);
  std::vector<std::int32_t> inner;
  for (const StoredQuery* query : hub.QueriesNow().InnerOf(0)) inner.push_back(query->id);
  for (const std::int32_t id : inner) hub.RemoveQuery(id);
}

QString StatementOf(const qbQueryBuilder& hub) {
  return ToQString(hub.SQLPane()->PlainStatement()).replace("\r\n", "\n");
}

}  // namespace zrqrybld
