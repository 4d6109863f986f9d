#include "expression/suggestions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "base/text.h"
#include "expression/intelli_list.h"
#include "expression/schema_cache.h"
#include "sql/source_rules.h"
#include "tests/data_table.h"
#include "tests/expression/known_source.h"

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

// --- Typing ---

// An editor that is only a text and a caret.
class TypedText {
 public:
  TypedText(const Ref<qbIntelliList>& list, std::string text) : list_(list), text_(std::move(text)) {
    caret_ = text_.find('^');
    text_.erase(caret_, 1);
    list_->Prepare();
    accepted_ = list_->Accepted.Connect([this](const TextReplacement& taken) {
      text_.replace(taken.from, taken.to - taken.from, taken.text.text);
      caret_ = taken.from + taken.text.text.size();
    });
  }

  void Press(std::string_view key) {
    static const std::map<std::string_view, std::int32_t> kKeys = {
        {"Down", KeyCodeDown},   {"Up", KeyCodeUp},   {"PgDn", KeyCodePageDown}, {"Esc", KeyCodeEscape},
        {"Enter", KeyCodeEnter}, {"Tab", KeyCodeTab}, {"Back", KeyCodeBack},     {"Space", KeyCodeSpace}};
    if (key == "Ctrl+Space") {
      list_->Open(text_, caret_);
    } else if (const auto named = kKeys.find(key); named == kKeys.end()) {
      Type(key);
    } else if (!list_->OnKeyDown({named->second})) {
      if (named->second == KeyCodeEnter) Type("\n");
      if (named->second == KeyCodeSpace) Type(" ");
      if (named->second == KeyCodeBack) text_.erase(--caret_, 1);
      if (named->second == KeyCodeBack) list_->OnTyped(text_, caret_, false);
    }
  }

  std::string Text() const { return text_.substr(0, caret_) + "^" + text_.substr(caret_); }

 private:
  void Type(std::string_view text) {
    text_.insert(caret_, text);
    caret_ += text.size();
    list_->OnTyped(text_, caret_, true);
  }

  Ref<qbIntelliList> list_;
  std::string text_;
  std::size_t caret_ = 0;
  EventConnection accepted_;
};

TEST_F(SuggestionsTest, FollowTheKeys) {
  for (const Row& row : ReadRows("typing.txt")) {
    SCOPED_TRACE(row.place + ": " + row[0] + " " + row[1]);
    const Ref<qbIntelliList> list = qbIntelliList::Create(hub, EditedText::Statement);
    TypedText text(list, row[0]);
    for (std::size_t at = 0; at < row[1].size();) {
      const std::size_t end = row[1][at] == '{' ? row[1].find('}', at) : at;
      text.Press(end == at ? row[1].substr(at, 1) : row[1].substr(at + 1, end - at - 1));
      at = end + 1;
    }
    std::string shown = list->IsOpen() ? "" : "closed";
    for (std::size_t i = 0; i < list->Items().size(); ++i) {
      const std::string mark = list->Selected() == static_cast<std::ptrdiff_t>(i) ? "*" : "";
      shown += (i > 0 ? " " : "") + mark + list->Items()[i].insert + mark;
    }
    EXPECT_TRUE(shown.starts_with(row[2])) << shown;
    EXPECT_EQ(text.Text(), row[3]);
  }
}

}  // namespace
}  // namespace zrqrybld::test
