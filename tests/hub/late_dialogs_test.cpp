// Windows that do not wait: the answer comes when the call that asked has long returned, or when nobody is left.
#include <fstream>

#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/parameter_form.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

// Keeps the last question, whose functions are tried when it is answered.
class LateDialogs final : public Dialogs {
 public:
  void ShowMessage(std::string_view text, MessageIcon) override { said = text; }
  void ShowMessageSoon(std::string_view text, MessageIcon) override { said = text; }
  void ShowTables(const TablesDialog& dialog) override {
    answer = [dialog] { dialog.add({"Orders"}, {}); };
  }
  bool ShowJoinProperties(JoinDialog&) override { return false; }
  bool ShowExpression(ExpressionDialog&) override { return false; }
  std::string ShowConnectionPrompt(const ConnectionDialog&) override { return {}; }
  std::string ShowSaveFile(const SaveFileDialog&) override { return {}; }
  std::optional<std::string> ShowTextPrompt(const TextDialog&) override { return {}; }
  bool ShowParameters(ParametersDialog&) override { return false; }

  void AskJoinProperties(JoinDialog dialog, std::function<void(JoinDialog&)> accepted) override {
    answer = [dialog, accepted]() mutable {
      dialog.describe(true, true) += dialog.warning(true, true) + dialog.describeCondition(true, false);
      dialog.table1Checked = dialog.problem(dialog.pairs, "").empty();
      accepted(dialog);
    };
  }
  void AskExpression(ExpressionDialog dialog, std::function<void(ExpressionDialog&)> accepted) override {
    answer = [dialog, accepted]() mutable {
      dialog.text = "> 1";
      accepted(dialog);
    };
  }
  void AskConnection(ConnectionDialog dialog, std::function<void(const std::string&)> accepted) override {
    answer = [dialog, accepted] { accepted("Nothing=" + dialog.test("x=1")); };
  }
  void AskSaveFile(SaveFileDialog, std::function<void(const std::string&)> accepted) override {
    answer = [accepted] { accepted("/nowhere/at/all.svg"); };
  }
  void AskText(TextDialog dialog, std::function<void(const std::string&)> accepted) override {
    answer = [dialog, accepted] { accepted(dialog.problem("Total").empty() ? "Total" : "T"); };
  }
  void AskParameters(ParametersDialog dialog, std::function<void(ParametersDialog&)> accepted) override {
    answer = [dialog, accepted]() mutable {
      dialog.fields[0].value = dialog.statement({"7"}) + dialog.problem(0, "7");
      accepted(dialog);
    };
  }

  std::function<void()> answer;
  std::string said;
};

class LateToolkit final : public Toolkit {
 public:
  LateDialogs& GetDialogs() override { return dialogs_; }
  void SetBusyPointer(bool) override {}

 private:
  LateDialogs dialogs_;
};

struct Late : test::Designer {
  Late() {
    hub = qbQueryBuilder::Create(late);
    hub->SetDiagramPane(diagram);
    hub->SetGridPane(grid);
    hub->SetSQLPane(sql);
    Use();
    hub->AddTable("Orders");
    hub->AddTable("Customers");
    hub->RefreshAutoJoins();
    Tick("Orders", "Total");
    hub->ClearHistory();
  }
  Ref<qbRelationship> Join() const { return diagram->Entities()->Item("Orders")->Relationships()->Item(1); }
  std::shared_ptr<LateToolkit> late = std::make_shared<LateToolkit>();
  std::string given;
};

struct Question {
  std::string name;
  std::function<void(Late&)> ask;
  std::function<std::string(Late&)> result;
  std::string before;
  std::string after;
};

const std::vector<Question> kQuestions = {
    {"tables", [](Late& d) { d.hub->ShowTables(); }, [](Late& d) { return d.Captions(); }, "Orders Customers",
     "Orders Customers Orders1"},
    {"join", [](Late& d) { EXPECT_FALSE(d.hub->ShowJoinProperties(d.Join())); },
     [](Late& d) { return std::to_string(d.Join()->Kind().Bits()) + d.hub->UndoText(); }, "0", "1Edit join"},
    {"expression",
     [](Late& d) {
       d.grid->Grid()->GotoRowCol(1, "criteria");
       d.grid->ShowExpressionZoom();
     },
     [](Late& d) { return d.Cell(1, "criteria") + d.hub->UndoText(); }, "", "> 1Edit Criteria"},
    {"connection",
     [](Late& d) {
       d.hub->AskForConnection([&d](const std::string& text) { d.given = text; });
       EXPECT_EQ(d.hub->PromptForConnection(), "");
       d.hub->AskForConnection([&d](const std::string& text) { d.given = text.substr(0, 8); });
     },
     [](Late& d) { return d.given; }, "", "Nothing="},
    {"picture", [](Late& d) { d.diagram->AskToSavePicture(); },
     [](Late& d) { return d.late->GetDialogs().said.substr(0, 4); }, "", "Cann"},
    {"alias", [](Late& d) { d.diagram->AskForAlias(d.diagram->Entities()->Item("Orders")); },
     [](Late& d) { return d.Captions(); }, "Orders Customers", "Total Customers"},
    {"find", [](Late& d) { d.diagram->AskAndFind(); },
     [](Late& d) { return std::to_string(d.diagram->Entities()->Item("Orders")->EntityBox()->SelectedRow()); }, "0",
     "4"},
    {"parameters",
     [](Late& d) {
       AskParameters(*d.hub, "?PARAM(n,,,text)",
                     [&d](const std::vector<ParameterValue>& values) { d.given = values.at(0).text; });
       EXPECT_EQ(AskParameters(*d.hub, "?PARAM(n,,,int)"), std::nullopt);
       AskParameters(*d.hub, "?PARAM(n,,,text)",
                     [&d](const std::vector<ParameterValue>& values) { d.given = values.at(0).text; });
     },
     [](Late& d) { return d.given; }, "", "'7'"},
};

TEST(LateDialogs, AnAnswerThatComesLaterIsTaken) {
  for (const Question& question : kQuestions) {
    SCOPED_TRACE(question.name);
    Late designer;
    question.ask(designer);
    EXPECT_EQ(question.result(designer), question.before);
    designer.late->GetDialogs().answer();
    EXPECT_EQ(question.result(designer), question.after);
  }
}

TEST(LateDialogs, AnAnswerThatNobodyWaitsForDoesNothing) {
  for (const Question& question : kQuestions) {
    for (const bool hubOnly : {false, true}) {
      SCOPED_TRACE(question.name + (hubOnly ? ": the hub has gone" : ": all has gone"));
      auto designer = std::make_unique<Late>();
      question.ask(*designer);
      const std::shared_ptr<LateToolkit> late = designer->late;
      designer->given.clear();
      const std::weak_ptr<qbQueryBuilder> hub = designer->hub;
      designer->hub.reset();
      if (!hubOnly) designer.reset();
      EXPECT_TRUE(hub.expired()) << "the window keeps the designer alive";
      late->GetDialogs().answer();
      if (hubOnly) {
        EXPECT_EQ(designer->given, "");
      }
    }
  }
}

}  // namespace
}  // namespace zrqrybld
