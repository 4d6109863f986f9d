// What a hub is made of besides its panes: the four parts of the context, and the history. For the hub's sources only.
//
// The parts that stand for the panes' questions and reports pass them on to the hub.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/host/query_context.h"
#include "zrqrybld/hub/history.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_menus.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/query_text.h"

namespace zrqrybld {

struct qbQueryBuilder::Parts {
  class Steps final : public StepContext {
   public:
    explicit Steps(const Parts& parts) : parts_(parts) {}
    void RaiseInfo(QueryBuilderInfoEnum info, Variant parameters) override { Hub().Info.Raise(info, parameters); }

   private:
    qbQueryBuilder& Hub() const { return *parts_.hub; }
    Ref<QueryContext> Whole() override { return Hub().Hub(); }
    void RefreshStatement() override { Hub().RefreshStatement(); }
    void RefreshTableList(std::int32_t from) override { Hub().RefreshTableList(from); }
    void StepBegins(const StepLabel& step) override { Hub().StepBegins(step); }
    void StepFailed() override { Hub().StepFailed(); }
    void StepMade(const StepLabel& step, bool writes) override { Hub().StepMade(step, writes); }
    void StepEnded() override { Hub().StepEnded(); }

    const Parts& parts_;
  };

  class Queries final : public DesignQueries {
   public:
    explicit Queries(const Parts& parts) : parts_(parts) {}
    Ref<qbQueryBuilder> Hub() override { return parts_.hub->Hub(); }
    std::int16_t AliasMaxLen() const override { return parts_.hub->AliasMaxLen(); }
    FieldOrderEnum RetrieveFieldOrder() const override { return parts_.hub->RetrieveFieldOrder(); }
    Ref<qbEntities> Entities() const override { return parts_.hub->Entities(); }
    const Dialect& CurrentDialect() const override { return parts_.hub->CurrentDialect(); }
    bool HasFullJoin() const override { return parts_.hub->HasFullJoin(); }
    std::string DateFormat() const override { return parts_.hub->DateFormat(); }
    CriteriaContext CriteriaRules() const override { return parts_.hub->CriteriaRules(); }
    QuerySnapshot Snapshot() const override { return parts_.hub->Snapshot(); }
    std::optional<GeneratedQuery> WholeStatement(const ExtraConditions& extra) const override {
      return parts_.hub->WholeStatement(extra);
    }
    std::optional<std::vector<QueryColumn>> ColumnsOfQuery(const std::string& name) const override {
      return parts_.hub->ColumnsOfQuery(name);
    }
    Menu MenuOfQuery(const std::string& name) override { return MenuOfQueryNamed(*parts_.hub, name); }
    Menu MenuOfCell(std::int32_t row, std::int32_t column) override {
      return MenuOfQueriesInCell(*parts_.hub, row, column);
    }
    Menu MenuOfJoin(const Ref<qbRelationship>& join) override { return MenuOfQueriesInJoin(*parts_.hub, join); }
    std::shared_ptr<const OuterQueries> Outer() const override { return parts_.hub->Outer(); }
    Menu MenuOfNewQueries() override { return zrqrybld::MenuOfNewQueries(*parts_.hub); }
    std::optional<ColumnUse> UseOfColumn(const std::string& entityCaption, const std::string& column) const override {
      return parts_.hub->UseOfColumn(entityCaption, column);
    }
    bool CanEditJoins() const override { return parts_.hub->AllowJoinProperties(); }
    std::shared_ptr<SchemaCache> Schema() override { return parts_.hub->Schema(); }

   private:
    const Parts& parts_;
  };

  class Reports final : public DesignReports {
   public:
    explicit Reports(const Parts& parts) : parts_(parts) {}
    void ItemChecked(const std::string& entityCaption, const std::string& itemText, bool checked) override {
      parts_.hub->ItemChecked(entityCaption, itemText, checked);
    }
    void ItemRenamed(const std::string& entityCaption, const std::string& before, const std::string& after) override {
      parts_.hub->ItemRenamed(entityCaption, before, after);
    }
    void TableAdded(const std::string& caption) override { parts_.hub->TableAdded(caption); }
    void EntityRemoved(const std::string& caption) override { parts_.hub->EntityRemoved(caption); }
    void EntityRenamed(const std::string& oldCaption, const std::string& newCaption) override {
      parts_.hub->EntityRenamed(oldCaption, newCaption);
    }
    void DiagramCleared() override { parts_.hub->DiagramCleared(); }
    void RelationshipActivated(const Ref<qbRelationship>& relationship) override {
      parts_.hub->RelationshipActivated(relationship);
    }
    void DialectChanged() override { parts_.hub->DialectChanged(); }
    void LikeOperatorChanged(const std::string& before) override { parts_.hub->LikeOperatorChanged(before); }
    void RequestTables() override { parts_.hub->ShowTables(); }
    void OutputColumnAgain(const std::string& entityCaption, const std::string& column) override;
    void SortByColumn(const std::string& entityCaption, const std::string& column, const std::string& type) override {
      parts_.hub->SortByColumn(entityCaption, column, type);
    }
    void GroupColumn(const std::string& entityCaption, const std::string& column, const std::string& choice) override {
      parts_.hub->GroupColumn(entityCaption, column, choice);
    }
    void GoToCriterion(const std::string& entityCaption, const std::string& column) override {
      parts_.hub->GoToCriterion(entityCaption, column);
    }
    bool OpenQuery(const std::string& name) override { return OpenQueryNamed(*parts_.hub, name); }
    bool OpenQueryInCell(std::int32_t row, std::int32_t column) override {
      return zrqrybld::OpenQueryInCell(*parts_.hub, row, column);
    }
    bool OpenQueryInJoin(const Ref<qbRelationship>& join) override {
      return zrqrybld::OpenQueryInJoin(*parts_.hub, join);
    }
    bool ShowQueryAt(std::int32_t id, const std::string& text, std::size_t caret) override {
      return parts_.hub->ShowQueryAt(id, text, caret);
    }
    bool LeaveQuery() override { return zrqrybld::LeaveQuery(*parts_.hub); }
    void CureRemark(const SQLDiagnostic& remark) override { parts_.hub->CureRemark(remark); }
    void LoadStatement(const std::string& sql) override { parts_.hub->LoadStatement(sql); }

   private:
    const Parts& parts_;
  };

  // A query that stood in a cell, and what belongs to it behind it, as the panes left it.
  struct LeftQuery {
    const Dialect* dialect = nullptr;  // in which its text was read
    std::vector<StoredQuery> queries;
  };

  explicit Parts(std::shared_ptr<Toolkit> toolkit) : source(std::move(toolkit)) {}

  qbQueryBuilder* hub = nullptr;  // from when the hub is made of them
  SourceContext source;
  Steps steps{*this};
  Queries queries{*this};
  Reports reports{*this};
  History history;
  QuerySet querySet;
  std::vector<LeftQuery> left;             // the last ones, the latest at the end
  std::optional<QuerySet> querySetBefore;  // as they were when a step began that changes more than the one shown
};

}  // namespace zrqrybld
