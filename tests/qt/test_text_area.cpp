#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <stdexcept>

#include "adapters/qt/qt_text.h"
#include "adapters/qt/qt_text_area.h"
#include "adapters/qt/query_designer_widget.h"
#include "sql/brackets.h"
#include "tests/qt/pictures.h"

namespace zrqrybld {
namespace {

// What is coloured in the role, line by line: "line:text|...".
std::string Colored(const QtTextArea& area, ColorRole role) {
  std::string found;
  for (QTextBlock block = area.document()->begin(); block.isValid(); block = block.next()) {
    for (const QTextLayout::FormatRange& range : block.layout()->formats()) {
      if (range.format.foreground().color() != area.GetTheme().Of(role)) continue;
      found += std::to_string(block.blockNumber()) + ":" + ToUtf8(block.text().mid(range.start, range.length)) + "|";
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

TEST(QtTextArea, TextComesBackAsItWasSet) {
  const struct {
    std::string set;
    std::string expected;
  } cases[] = {
      {"", ""},
      {"SELECT 1", "SELECT 1"},
      {"a\r\nb\r\n", "a\r\nb\r\n"},
      {"a\nb\rc\r\n\r\nd", "a\r\nb\r\nc\r\n\r\nd"},
      {"\tx\t\ty", "\tx\t\ty"},
      {"WHERE a = 'no\u00a0break'", "WHERE a = 'no\u00a0break'"},
      {"-- Größe 数量 \U0001F600\r\n", "-- Größe 数量 \U0001F600\r\n"},
  };
  QtTextArea area;
  for (const auto& [set, expected] : cases) {
    area.SetText(set);
    EXPECT_EQ(area.Text(), expected);
  }
}

TEST(QtTextArea, OnlyTheUserRaisesEdited) {
  QtTextArea area;
  area.SetHighlighter(FindCommentsAndSelects);
  int edited = 0;
  const EventConnection connection = area.Edited.Connect([&] { ++edited; });
  area.SetText("SELECT a /* b */");
  area.SetText("SELECT a /* c");
  area.SetReadOnly(true);
  area.SetReadOnly(false);
  area.setPalette(TestPalettes()[1].palette);
  EXPECT_EQ(edited, 0);
  area.show();
  QTest::keyClicks(&area, QStringLiteral("x"));
  EXPECT_EQ(edited, 1);
  QTest::keyClick(&area, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(edited, 2) << "undoing is editing";
  area.SetReadOnly(true);
  QTest::keyClicks(&area, QStringLiteral("x"));
  EXPECT_EQ(edited, 2);
}

TEST(QtTextArea, CaretAndScrollPositionStayNearAcrossANewText) {
  const auto lines = [](int count, const char* word) {
    std::string text;
    for (int i = 0; i < count; ++i) text += std::string(word) + " line " + std::to_string(i) + "\r\n";
    return text;
  };
  QtTextArea area;
  area.resize(300, 120);
  area.show();
  area.SetText(lines(100, "first"));
  const auto putCaret = [&](int line, int column) {
    QTextCursor caret(area.document()->findBlockByNumber(line));
    caret.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, column);
    area.setTextCursor(caret);
  };
  putCaret(40, 7);
  area.verticalScrollBar()->setValue(30);  // the caret is not in sight, and must not be brought there
  const struct {
    std::string text;
    int line, column, scroll;
  } cases[] = {
      {lines(100, "second"), 40, 7, 30},
      {lines(100, ""), 40, 7, 30},
      {lines(41, "a") + "b", 40, 7, 30},
  };
  for (const auto& [text, line, column, scroll] : cases) {
    area.SetText(text);
    EXPECT_EQ(area.textCursor().blockNumber(), line);
    EXPECT_EQ(area.textCursor().positionInBlock(), column);
    EXPECT_EQ(area.verticalScrollBar()->value(), scroll);
  }
  area.SetText("one\r\ntwo");
  EXPECT_EQ(area.textCursor().blockNumber(), 1) << "the last line there is";
  EXPECT_EQ(area.textCursor().positionInBlock(), 3) << "and its end";
  EXPECT_EQ(area.verticalScrollBar()->value(), 0);
}

TEST(QtTextArea, TheSameTextChangesNothing) {
  QtTextArea area;
  area.show();
  area.SetText("ab\r\ncd");
  QTest::keyClicks(&area, QStringLiteral("x"));
  area.selectAll();
  area.SetText("xab\r\ncd");
  EXPECT_TRUE(area.textCursor().hasSelection());
  EXPECT_TRUE(area.document()->isUndoAvailable());
}

TEST(QtTextArea, ByteOffsetsFindTheirCharacters) {
  QtTextArea area;
  area.SetHighlighter(FindCommentsAndSelects);
  const struct {
    const char* text;
    const char* keywords;
    const char* comments;
  } cases[] = {
      {"SELECT a", "0:SELECT|", ""},
      {"ö SELECT ä", "0:SELECT|", ""},
      {"数\U0001F600量 SELECT /*\U0001F600*/ SELECT", "0:SELECT|0:SELECT|", "0:/*\U0001F600*/|"},
      {"ü\r\nSELECT /* ä\r\n\r\nß */ SELECT", "1:SELECT|3:SELECT|", "1:/* ä|3:ß */|"},
      {"SELECT\r\n/* never closed\r\nso", "0:SELECT|", "1:/* never closed|2:so|"},
      {"", "", ""},
  };
  for (const auto& [text, keywords, comments] : cases) {
    area.SetText(text);
    EXPECT_EQ(Colored(area, ColorRole::Keyword), keywords) << text;
    EXPECT_EQ(Colored(area, ColorRole::Comment), comments) << text;
  }
}

TEST(QtTextArea, ColoursFollowTyping) {
  QtTextArea area;
  area.SetHighlighter(FindCommentsAndSelects);
  area.show();
  area.SetText("x\r\nSELECT y\r\n*/ z");
  EXPECT_EQ(Colored(area, ColorRole::Comment), "");
  QTest::keyClicks(&area, QStringLiteral("/*"));  // opens a comment over all three lines
  EXPECT_EQ(Colored(area, ColorRole::Comment), "0:/*x|1:SELECT y|2:*/|");
  QTest::keyClick(&area, Qt::Key_Return, Qt::ShiftModifier);  // a line break inside the line
  EXPECT_EQ(area.Text(), "/*\r\nx\r\nSELECT y\r\n*/ z");
  EXPECT_TRUE(Colored(area, ColorRole::Comment).ends_with("1:SELECT y|2:*/|"));
  area.SetHighlighter(nullptr);
  EXPECT_EQ(Colored(area, ColorRole::Comment), "");
}

TEST(QtTextArea, SpansThatAreWrongAndListenersThatFailDoNoHarm) {
  QtTextArea area;
  int failures = 0;
  area.SetErrorHandler([&](const std::exception&) { ++failures; });
  area.SetHighlighter([](std::string_view) {
    return std::vector<TextSpan>{{100, 5, ColorRole::Error, false}, {1, 1000, ColorRole::Error, false}, {2, 0}};
  });
  area.SetText("aöb\r\nc");
  EXPECT_EQ(Colored(area, ColorRole::Error), "0:öb|1:c|");
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

TEST(QtTextArea, TheBracketBesideTheCaretAndItsPartnerAreMarked) {
  QtTextArea area;
  area.SetBracketFinder(MatchingBrackets);
  area.SetText("(ä,\r\n '(', f(x))");
  area.show();
  area.setFocus();
  QApplication::setActiveWindow(&area);
  const struct {
    int caret;
    const char* marks;
  } cases[] = {{0, "0-1 14-15"}, {1, "0-1 14-15"}, {15, "14-15 0-1"}, {11, "11-12 13-14"}, {6, ""}, {9, ""}};
  for (const auto& [caret, marks] : cases) {
    QTextCursor cursor = area.textCursor();
    cursor.setPosition(caret);
    area.setTextCursor(cursor);
    EXPECT_EQ(Marks(area), marks) << caret;
  }
}

TEST(QtTextArea, CtrlFFindsForwardsAndBackwardsAndEscGoesBack) {
  QtTextArea area;
  area.SetText("ab x\r\nAB y\r\nab");
  area.show();
  area.setFocus();
  QApplication::setActiveWindow(&area);
  QTest::keyClick(&area, Qt::Key_F, Qt::ControlModifier);
  auto* word = area.findChild<QLineEdit*>();
  ASSERT_TRUE(word && word->isVisible() && word->hasFocus());
  QTest::keyClicks(word, "ab");
  const auto here = [&] { return area.textCursor().selectionStart(); };
  EXPECT_EQ(Marks(area), "0-2 5-7 10-12");
  EXPECT_EQ(here(), 0);
  for (const auto& [shift, place] :
       std::vector<std::pair<bool, int>>{{false, 5}, {false, 10}, {false, 0}, {true, 10}}) {
    QTest::keyClick(word, Qt::Key_Return, shift ? Qt::ShiftModifier : Qt::NoModifier);
    EXPECT_EQ(here(), place);
  }
  area.SetText("ab");  // the marks follow the text
  EXPECT_EQ(Marks(area), "0-2");
  QTest::keyClick(word, Qt::Key_Escape);
  EXPECT_TRUE(area.hasFocus() && !word->isVisible());
  EXPECT_EQ(Marks(area), "");
  EXPECT_EQ(area.Text(), "ab");
}

TEST(QtTextArea, ListenersTakeAndChangeKeys) {
  QtTextArea area;
  std::string heard;
  const auto down = area.KeyDown.Connect([&](std::int32_t& key, std::int32_t shift) {
    heard += std::to_string(key) + "/" + std::to_string(shift) + " ";
    if (key == 'X') key = 0;
  });
  const auto up =
      area.KeyUp.Connect([&](std::int32_t& key, std::int32_t) { heard += "up " + std::to_string(key) + " "; });
  const auto press = area.KeyPress.Connect([](char32_t& character) {
    if (character == U'a') character = U'ä';
    if (character == U'b') character = 0;
  });
  QTest::keyClicks(&area, "abc");
  EXPECT_EQ(heard, "65/0 up 65 66/0 up 66 67/0 up 67 ");
  QTest::keyClick(&area, Qt::Key_X);
  EXPECT_EQ(area.Text(), "äc");
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
  }
}

}  // namespace
}  // namespace zrqrybld
