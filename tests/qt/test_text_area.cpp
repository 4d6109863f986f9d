#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <stdexcept>

#include "tests/player.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/sql/brackets.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

// What is coloured in the role, line by line: "line:text|...".
std::string Colored(const QtTextArea& area, ColorRole role) {
  std::string found;
  for (QTextBlock block = area.document()->begin(); block.isValid(); block = block.next()) {
    for (const QTextLayout::FormatRange& range : block.layout()->formats()) {
      if (range.format.foreground().color() != area.GetTheme().Of(role)) continue;
      found += std::to_string(block.blockNumber()) + ":" + ToUtf8(block.text().mid(range.start, range.length)) + "¦";
    }
  }
  return found;
}

// Comments "/* ... */" over any number of lines, and words "SELECT".
std::vector<TextSpan> FindCommentsAndSelects(std::string_view text) {
  std::vector<TextSpan> spans;
  for (std::size_t at = text.find("SELECT"); at != text.npos; at = text.find("SELECT", at + 1)) {
    spans.push_back({at, 6, ColorRole::Keyword, true});
  }
  for (std::size_t at = text.find("/*"); at != text.npos; at = text.find("/*", at + 1)) {
    const std::size_t end = std::min(text.find("*/", at), text.size() - 2) + 2;
    spans.push_back({at, end - at, ColorRole::Comment, false});
  }
  return spans;
}

// The marks that stand in the text beside the current line: "from-to" each.
std::string Marks(const QtTextArea& area) {
  std::string marks;
  for (const QTextEdit::ExtraSelection& mark : area.extraSelections()) {
    if (!mark.cursor.hasSelection()) continue;
    marks += (marks.empty() ? "" : " ") + std::to_string(mark.cursor.selectionStart()) + "-" +
             std::to_string(mark.cursor.selectionEnd());
  }
  return marks;
}

class AreaScene : public test::Player {
 public:
  AreaScene() {
    area_.SetHighlighter(FindCommentsAndSelects);
    area_.SetBracketFinder(MatchingBrackets);
    area_.resize(300, 120);
    area_.show();
    QApplication::setActiveWindow(&area_);
    area_.setFocus();
    links_.push_back(area_.Edited.Connect([this] { ++edited_; }));
    links_.push_back(area_.KeyDown.Connect([this](std::int32_t& key, std::int32_t shift) {
      Note(std::to_string(key) + "/" + std::to_string(shift));
      if (refused_ && key == 'X') key = 0;
    }));
    links_.push_back(
        area_.KeyUp.Connect([this](std::int32_t& key, std::int32_t) { Note("up " + std::to_string(key)); }));
    links_.push_back(area_.KeyPress.Connect([this](char32_t& character) {
      if (refused_ && character == U'a') character = U'ä';
      if (refused_ && character == U'b') character = 0;
    }));
    KnowActions();
    KnowAnswers();
  }

 private:
  void Note(const std::string& entry) { heard_ += (heard_.empty() ? "" : " ") + entry; }
  void PutCaret(int position) {
    QTextCursor caret = area_.textCursor();
    caret.setPosition(position);
    area_.setTextCursor(caret);
  }
  QWidget& Focus() { return *(finding_ ? static_cast<QWidget*>(area_.findChild<QLineEdit*>()) : &area_); }

  void KnowActions() {
    actions["set"] = [this](const Words& w) { area_.SetText(OrNone(w[1])); };
    // So many lines of a word and their number.
    actions["lines"] = [this](const Words& w) {
      std::string text;
      for (int i = 0; i < std::stoi(w[1]); ++i) text += w[2] + " line " + std::to_string(i) + "\r\n";
      area_.SetText(text + (w.size() > 3 ? w[3] : ""));
    };
    actions["readonly"] = [this](const Words& w) { area_.SetReadOnly(w[1] == "yes"); };
    actions["dark"] = [this](auto&) { area_.setPalette(TestPalettes()[1].palette); };
    actions["plain"] = [this](auto&) { area_.SetHighlighter(nullptr); };
    actions["keys"] = [this](const Words& w) { QTest::keyClicks(&Focus(), ToQString(w[1])); };
    actions["key"] = [this](const Words& w) {
      const QKeyCombination key = QKeySequence(ToQString(w[1]))[0];
      QTest::keyClick(&Focus(), key.key(), key.keyboardModifiers());
    };
    actions["caret"] = [this](const Words& w) { PutCaret(std::stoi(w[1])); };
    actions["line"] = [this](const Words& w) {
      PutCaret(area_.document()->findBlockByNumber(std::stoi(w[1])).position() + std::stoi(w[2]));
    };
    actions["scroll"] = [this](const Words& w) { area_.verticalScrollBar()->setValue(std::stoi(w[1])); };
    actions["all"] = [this](auto&) { area_.selectAll(); };
    actions["refuse"] = [this](auto&) { refused_ = true; };
    // The keyboard is in the field of what is looked for.
    actions["find"] = [this](const Words& w) { finding_ = w[1] == "yes"; };
  }

  void KnowAnswers() {
    answers["text"] = [this](auto&) { return area_.Text(); };
    answers["edited"] = [this](auto&) { return std::to_string(std::exchange(edited_, 0)); };
    answers["heard"] = [this](auto&) { return std::exchange(heard_, ""); };
    answers["keywords"] = [this](auto&) { return Colored(area_, ColorRole::Keyword); };
    answers["comments"] = [this](auto&) { return Colored(area_, ColorRole::Comment); };
    answers["marks"] = [this](auto&) { return Marks(area_); };
    answers["selected"] = [this](auto&) { return ToUtf8(area_.textCursor().selectedText()); };
    answers["from"] = [this](auto&) { return std::to_string(area_.textCursor().selectionStart()); };
    answers["undoable"] = [this](auto&) { return Variant(area_.document()->isUndoAvailable()).Text(); };
    answers["at"] = [this](auto&) {
      const QTextCursor caret = area_.textCursor();
      return std::to_string(caret.blockNumber()) + "," + std::to_string(caret.positionInBlock()) + " " +
             std::to_string(area_.verticalScrollBar()->value());
    };
    answers["finder"] = [this](auto&) {
      const auto* word = area_.findChild<QLineEdit*>();
      return std::string(!word || !word->isVisible() ? "closed" : word->hasFocus() ? "open" : "left");
    };
    answers["focus"] = [this](auto&) { return Variant(area_.hasFocus()).Text(); };
  }

  QtTextArea area_;
  std::vector<EventConnection> links_;
  std::string heard_;
  int edited_ = 0;
  bool refused_ = false;
  bool finding_ = false;
};

[[maybe_unused]] const bool kScenarios = test::RegisterScenarios<AreaScene>("TextAreaScenario", "text_area.txt");

TEST(QtTextArea, SpansThatAreWrongAndListenersThatFailDoNoHarm) {
  QtTextArea area;
  int failures = 0;
  area.SetErrorHandler([&](const std::exception&) { ++failures; });
  area.SetHighlighter([](std::string_view) {
    return std::vector<TextSpan>{{100, 5, ColorRole::Error, false}, {1, 1000, ColorRole::Error, false}, {2, 0}};
  });
  area.SetText("aöb\r\nc");
  EXPECT_EQ(Colored(area, ColorRole::Error), "0:öb¦1:c¦");
  area.SetHighlighter([](std::string_view) -> std::vector<TextSpan> { throw std::runtime_error("lexer"); });
  EXPECT_EQ(failures, 1);
  const EventConnection connection = area.Edited.Connect([] { throw std::runtime_error("listener"); });
  area.show();
  QTest::keyClicks(&area, QStringLiteral("x"));
  EXPECT_EQ(failures, 3);
}

TEST(QtTextArea, TheMarginGrowsWithTheNumberOfLines) {
  QtTextArea area;
  area.resize(300, 120);
  area.show();
  area.SetText("a");
  const int narrow = area.viewport()->x();
  EXPECT_GT(narrow, 0);
  area.SetText(std::string(1500, '\n'));
  EXPECT_GT(area.viewport()->x(), narrow);
}

TEST(QtTextArea, RemarksStandBelowTheTextWhileThereAreAny) {
  QtTextArea area;
  area.resize(300, 200);
  area.show();
  const int before = area.viewport()->height();
  area.SetRemarks({"One <is> said.", "Another."});
  EXPECT_LT(area.viewport()->height(), before);
  area.SetRemarks({});
  EXPECT_EQ(area.viewport()->height(), before);
}

// What is typed, and what is wrong with it, is seen in every palette; kept to be looked at.
TEST(QtTextArea, TypedStatementsLookLikeWhatTheyAre) {
  for (const NamedPalette& named : TestPalettes()) {
    const ScopedPalette palette(named.palette);
    QueryDesignerWidget designer;
    designer.resize(760, 560);
    designer.show();
    QtTextArea& area = designer.SqlView();
    QTest::keyClicks(&area, QStringLiteral("SELECT a, b FROM t WHERE a = 'x' AND (b > 5"));
    ASSERT_EQ(area.findChildren<QPushButton*>().size(), 2) << "to apply and to revert, and not anew with every key";
    KeepPicture(Paint(area), "sql-edited-" + named.name);
    area.findChildren<QPushButton*>().front()->click();
    EXPECT_TRUE(designer.QueryBuilder().SQLPane()->IsEdited()) << "it cannot be applied";
    KeepPicture(Paint(area), "sql-fault-" + named.name);
    area.insertPlainText(QString(500, QLatin1Char('x')) + QString(50, QLatin1Char('\n')));
    ASSERT_TRUE(QTest::qWaitFor([&] { return area.horizontalScrollBar()->isVisible(); }));
    for (const QPushButton* button : area.findChildren<QPushButton*>()) {
      const QRect place(button->mapTo(&area, QPoint()), button->size());
      for (QScrollBar* bar : {area.horizontalScrollBar(), area.verticalScrollBar()}) {
        const QRect covered(bar->mapTo(&area, QPoint()), bar->size());
        EXPECT_FALSE(bar->isVisible() && covered.intersects(place)) << "a long text hides no button";
      }
    }
  }
}

}  // namespace
}  // namespace zrqrybld
