#include "zrqrybld/expression/suggestions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "tests/data_table.h"
#include "tests/known_source.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/expression/predictive_typing.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/source_rules.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::test {
namespace {

class SuggestionsTest : public testing::Test, protected KnownSource {
 protected:
  // What is written for each suggestion at the "^" of the text. A kind in lower case: Orders stands in the diagram.
  std::vector<std::string> Inserts(char kind, std::string text) {
    const std::size_t caret = text.find('^');
    text.erase(caret, 1);
    hub->Entities()->Remove("Orders");
    if (kind == 's' || kind == 'e' || kind == 'c') hub->AddTable("Orders");
    const EditedText edited = UpperAscii(kind) == 'S'   ? EditedText::Statement
                              : UpperAscii(kind) == 'E' ? EditedText::Expression
                                                        : EditedText::Criterion;
    SchemaCache facts(*hub);
    facts.Refresh();
    const Vocabulary words = ReadVocabulary(*hub);
    const NameRules names = CurrentNameRules(*hub);
    std::vector<std::string> inserts;
    for (Suggestion& item : Suggest({text, caret, edited, facts, words, names}).items) {
      inserts.push_back(std::move(item.insert));
    }
    return inserts;
  }
};

TEST_F(SuggestionsTest, FitThePlace) {
  for (const Row& row : ReadRows("suggestions.txt")) {
    SCOPED_TRACE(row.place + ": " + row[1]);
    const std::vector<std::string> found = Inserts(row[0].front(), row[1]);
    std::string begin;
    std::size_t count = 0;
    for (const std::string_view wanted : Split(row[2], "; ")) {
      if (wanted.starts_with('!') && wanted.size() > 1 && wanted != "!=") {
        EXPECT_EQ(std::ranges::count(found, wanted.substr(1)), 0) << wanted;
      } else if (wanted == "-") {
        EXPECT_TRUE(found.empty()) << found.front();
      } else {
        EXPECT_EQ(count < found.size() ? found[count] : "nothing", wanted);
        ++count;
      }
    }
  }
}

// The source is asked for its tables when an editor gets the keyboard, and for a table when it is used for the first
// time; nothing else is asked while one types, also when the source fails.
TEST_F(SuggestionsTest, AskTheSourceOnce) {
  const Ref<qbIntelliList> list = qbIntelliList::Create(hub, EditedText::Statement);
  const auto asked = [&](const auto& action) {
    source->asked.clear();
    action();
    return source->asked;
  };
  const auto type = [&](const std::string& text) { list->OnTyped(text, text.size(), true); };
  using Calls = std::vector<std::string>;
  EXPECT_EQ(asked([&] { list->Prepare(); }), Calls{"20"});
  EXPECT_EQ(asked([&] { type("SELECT * FROM Ord"); }), Calls{});
  EXPECT_EQ(asked([&] { type("SELECT * FROM Orders WHERE T"); }), (Calls{"4..Orders", "27..Orders"}));
  EXPECT_EQ(asked([&] { type("SELECT * FROM Orders WHERE To"); }), Calls{});
  source->failures[SchemaKind::Columns] = 1;
  EXPECT_EQ(asked([&] { type("SELECT * FROM Customers WHERE C"); }), (Calls{"4..Customers", "27..Customers"}));
  EXPECT_EQ(asked([&] { type("SELECT * FROM Customers WHERE Ci"); }), Calls{});
  hub->SetConnection(nullptr);
  type("SELECT * FROM Orders WHERE T");  // what another source has told is forgotten
  EXPECT_EQ(std::ranges::count(list->Items(), SuggestionKind::Column, &Suggestion::kind), 0);
}

// Of what fits alike the latest comes first; a dialect whose functions look at other rows offers how.
TEST_F(SuggestionsTest, RememberWhatWasTaken) {
  const Ref<qbIntelliList> list = qbIntelliList::Create(hub, EditedText::Statement);
  list->Prepare();
  const auto first = [&](const std::string& begin, const std::string& end) {
    list->OnTyped(begin + end, begin.size(), true);
    return list->IsOpen() ? list->Items().front().insert : "nothing";
  };
  EXPECT_EQ(first("SELECT m", " FROM Orders"), "MIN(@field)");
  EXPECT_EQ(list->Items()[1].label, "MAX");
  list->Accept(1);
  EXPECT_EQ(first("SELECT m", " FROM Orders"), "MAX(@field)");
  EXPECT_EQ(first("SELECT o", " FROM Orders"), "OrderID");
  list->Accept(1);
  EXPECT_EQ(first("SELECT o", " FROM Orders"), "OrderID") << "columns keep their order";
  hub->SetSQLPane(qbSQLPane::Create());
  hub->SQLPane()->SetSQLSyntax(SQLSyntaxPostgreSQL);
  EXPECT_EQ(first("SELECT SUM(Total) ov", " FROM Orders"), "OVER (PARTITION BY @Partition ORDER BY @Order)");
}

// The parameters of the designed query are offered, and those of the text itself; a half-written one is none.
TEST_F(SuggestionsTest, OfferParametersInUse) {
  const Ref<qbGridPane> grid = qbGridPane::Create();
  hub->SetGridPane(grid);
  grid->SetValue(1, "column", "1 + ?PARAM('Year',2024)");
  grid->SetValue(1, "criteria", "> ?param(x) OR < ?PARAM('Year',2024)");
  const Ref<qbIntelliList> list = qbIntelliList::Create(hub, EditedText::Criterion);
  list->Prepare();
  const std::string text = "?PARAM(y) + ?PARAM(";
  list->OnTyped(text + " ?)", text.size() + 2, true);
  std::string offered;
  for (const Suggestion& item : list->Items()) offered += item.label + " ";
  EXPECT_EQ(offered, "?PARAM(y) ?PARAM('Year',2024) ?param(x) ?PARAM ");
}

// --- Typing ---

// An editor that is only a text and a selection.
class TypedText final : private SuggestedText {
 public:
  TypedText(const Ref<qbIntelliList>& list, std::string text) : text_(std::move(text)), typing_(*this, list) {
    selection_.start = text_.find('^');
    text_.erase(selection_.start, 1);
    list->Prepare();
  }

  void Press(std::string_view key) {
    static const std::map<std::string_view, std::int32_t> kKeys = {
        {"Down", KeyCodeDown},   {"Up", KeyCodeUp},   {"PgDn", KeyCodePageDown}, {"Esc", KeyCodeEscape},
        {"Enter", KeyCodeEnter}, {"Tab", KeyCodeTab}, {"Back", KeyCodeBack},     {"Space", KeyCodeSpace}};
    static const std::map<std::int32_t, std::string> kTypes = {
        {KeyCodeEnter, "\n"}, {KeyCodeTab, "\t"}, {KeyCodeSpace, " "}};
    const auto named = kKeys.find(key);
    if (key == "Ctrl+Space") {
      typing_.OnKeyDown({KeyCodeSpace, ShiftCtrl});
    } else if (named == kKeys.end()) {
      typing_.OnKeyDown({0, ShiftNone, std::string(key)});
      Type(std::string(key));
    } else if (!typing_.OnKeyDown({named->second})) {
      if (const auto typed = kTypes.find(named->second); typed != kTypes.end()) {
        Type(typed->second);
      } else if (named->second == KeyCodeBack) {
        Replace({selection_.start - 1, 1}, "");
        typing_.OnEdited(false);
      }
    }
  }

  // With "^" at the caret, or "[[" and "]]" around what is selected.
  std::string Marked() const {
    const std::size_t end = selection_.start + selection_.length;
    const bool caret = selection_.length == 0;
    return text_.substr(0, selection_.start) + (caret ? "^" : "[[") +
           text_.substr(selection_.start, selection_.length) + (caret ? "" : "]]") + text_.substr(end);
  }

 private:
  std::string Text() const override { return text_; }
  TextRange Selection() const override { return selection_; }
  void Select(TextRange part) override { selection_ = part; }
  void Replace(TextRange part, const std::string& text) override {
    text_.replace(part.start, part.length, text);
    selection_ = {part.start + text.size(), 0};
  }
  void ShowList(const qbIntelliList&) override {}
  void Type(const std::string& text) {
    Replace(selection_, text);
    typing_.OnEdited(true);
    typing_.OnCaretMoved();
  }

  std::string text_;
  TextRange selection_;
  PredictiveTyping typing_;
};

TEST_F(SuggestionsTest, FollowTheKeys) {
  const auto type = [this](const Row& row, const std::string& shownFirst, const std::string& text) {
    SCOPED_TRACE(row.place + ": " + row[0] + " " + row[1]);
    const Ref<qbIntelliList> list = qbIntelliList::Create(hub, EditedText::Statement);
    TypedText editor(list, row[0]);
    for (std::size_t at = 0; at < row[1].size();) {
      const std::size_t end = row[1][at] == '{' ? row[1].find('}', at) : at;
      editor.Press(end == at ? row[1].substr(at, 1) : row[1].substr(at + 1, end - at - 1));
      at = end + 1;
    }
    std::string shown = list->IsOpen() ? "" : "closed";
    for (std::size_t i = 0; i < list->Items().size(); ++i) {
      const std::string mark = list->Selected() == static_cast<std::ptrdiff_t>(i) ? "*" : "";
      shown += (i > 0 ? " " : "") + mark + list->Items()[i].insert + mark;
    }
    EXPECT_TRUE(shown.starts_with(shownFirst)) << shown;
    EXPECT_EQ(editor.Marked(), text);
  };
  for (const Row& row : ReadRows("typing.txt")) type(row, row[2], row[3]);
  for (const Row& row : ReadRows("typing_fields.txt")) type(row, "", row[2]);
}

}  // namespace
}  // namespace zrqrybld::test
