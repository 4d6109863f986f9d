// Predictive text by real key events.
#include <gtest/gtest.h>

#include <QListView>
#include <QTest>
#include <map>

#include "tests/data_table.h"
#include "tests/known_source.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/predictive_text.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/highlighting.h"

namespace zrqrybld {
namespace {

class PredictiveTextTest : public testing::Test, protected test::KnownSource {
 protected:
  PredictiveTextTest() {
    area.SetHighlighter(HighlightSql);
    area.resize(640, 240);
    area.show();
    QApplication::setActiveWindow(&area);
    area.setFocus();
  }

  // The text, whose caret stands at "^", and the keys typed into it.
  void Type(std::string text, const std::string& keys) {
    const std::size_t caret = text.find('^');
    const std::string before = text.substr(0, caret);
    area.SetText(text.erase(caret, 1));
    QTextCursor cursor = area.textCursor();
    cursor.setPosition(static_cast<int>(ToQString(before).remove(QLatin1Char('\r')).size()));
    area.setTextCursor(cursor);
    static const std::map<std::string, Qt::Key> kKeys = {
        {"Down", Qt::Key_Down},    {"Up", Qt::Key_Up},   {"PgDn", Qt::Key_PageDown},  {"Esc", Qt::Key_Escape},
        {"Enter", Qt::Key_Return}, {"Tab", Qt::Key_Tab}, {"Back", Qt::Key_Backspace}, {"Space", Qt::Key_Space}};
    for (std::size_t at = 0; at < keys.size();) {
      const std::size_t end = keys[at] == '{' ? keys.find('}', at) : at;
      const std::string name = end == at ? "" : keys.substr(at + 1, end - at - 1);
      if (name.empty()) {
        QTest::keyClick(&area, keys[at]);
      } else if (name == "Ctrl+Space") {
        QTest::keyClick(&area, Qt::Key_Space, Qt::ControlModifier);
      } else {
        QTest::keyClick(&area, kKeys.at(name));
      }
      at = end + 1;
    }
  }

  // The text with "^" at the caret, or "[[" and "]]" around what is selected.
  std::string Text() const {
    const QTextCursor cursor = area.textCursor();
    QString text = area.toPlainText();
    text.insert(cursor.selectionEnd(), QLatin1String(cursor.hasSelection() ? "]]" : "^"));
    if (cursor.hasSelection()) text.insert(cursor.selectionStart(), QLatin1String("[["));
    return ToUtf8(text);
  }

  QListView& Popup() { return *area.findChild<QListView*>(QStringLiteral("popupList")); }

  QtTextArea area;
  Ref<qbIntelliList> list = qbIntelliList::Create(hub, EditedText::Statement);
  PredictiveText* predictive = new PredictiveText(area, list);
};

TEST_F(PredictiveTextTest, FollowsTheKeys) {
  for (const test::Row& row : test::ReadRows("typing.txt")) {
    SCOPED_TRACE(row.place);
    Type(row[0], row[1]);
    EXPECT_EQ(Text(), row[3]);
    EXPECT_EQ(Popup().isVisible(), row[2] != "closed");
    list->Close();
  }
}

TEST_F(PredictiveTextTest, StepsThroughFields) {
  for (const test::Row& row : test::ReadRows("typing_fields.txt")) {
    SCOPED_TRACE(row.place);
    area.clear();
    Type(row[0], row[1]);
    std::string expected = row[2];
    std::erase(expected, '\r');
    EXPECT_EQ(Text(), expected);
    list->Close();
  }
}

// A click takes an entry, one undo takes it back; a text set by program opens nothing, and neither does reading only.
TEST_F(PredictiveTextTest, TakesClicksAndLeavesTheRestAlone) {
  Type("SELECT ^ FROM Orders", "t");
  const QListView& popup = Popup();
  QTest::mouseClick(popup.viewport(), Qt::LeftButton, {}, popup.visualRect(popup.model()->index(0, 0)).center());
  EXPECT_EQ(Text(), "SELECT Total^ FROM Orders");
  area.undo();
  EXPECT_EQ(area.toPlainText(), "SELECT t FROM Orders");
  list->Close();
  area.SetText("SELECT OrderID FROM Orders");
  EXPECT_FALSE(popup.isVisible());
  area.SetReadOnly(true);
  QTest::keyClick(&area, Qt::Key_Space, Qt::ControlModifier);
  EXPECT_FALSE(popup.isVisible());
}

TEST_F(PredictiveTextTest, IsReadableInEveryPalette) {
  for (const NamedPalette& named : TestPalettes()) {
    const ScopedPalette scoped(named.palette);
    Type("SELECT o.^\nFROM Orders o JOIN Customers c ON ", "t{Back}");
    QTextCursor end = area.textCursor();
    end.movePosition(QTextCursor::End);
    area.setTextCursor(end);
    QTest::keyClick(&area, Qt::Key_Space, Qt::ControlModifier);
    ASSERT_TRUE(Popup().isVisible());
    KeepPicture(Paint(Popup()), "suggestions-" + named.name);
    KeepPicture(Paint(area), "suggestions-area-" + named.name);
    list->Close();
  }
}

}  // namespace
}  // namespace zrqrybld
