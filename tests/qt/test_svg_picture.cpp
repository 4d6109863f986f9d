// The diagram's SVG picture, read by somebody else's reader of XML.
#include <QXmlStreamReader>

#include "tests/diagram/diagram_fixture.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"

namespace zrqrybld {
namespace {

class SvgPicture : public test::DiagramTest {};

// What is wrong with it, "" when nothing is; collects the texts between the tags.
std::string WrongWith(const std::string& xml, std::vector<std::string>& texts) {
  QXmlStreamReader reader(QByteArray::fromStdString(xml));
  while (!reader.atEnd()) {
    if (reader.readNext() == QXmlStreamReader::Characters && !reader.isWhitespace()) {
      texts.push_back(ToUtf8(reader.text().toString()));
    }
  }
  return ToUtf8(reader.errorString());
}

TEST_F(SvgPicture, IsWellFormedAndShowsEveryNameWhateverItHolds) {
  const std::vector<std::pair<std::string, std::string>> names = {
      {"a<b>&c", "a<b>&c"},
      {"\"quoted'", "\"quoted'"},
      {"</text><script>", "</text><script>"},
      {"]]>", "]]>"},
      {"&amp;", "&amp;"},
      {"tab\tline\r\nend", "tablineend"},
      {"\x01\x1F bell", " bell"},
      {"\xFF\xC0", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xEF\xBF\xBE-", "-"},
      {"Äпф😀", "Äпф😀"},
      {std::string("nul\0!", 5), "nul!"},
  };
  pane->SetEntityFont({"\"<&\x02", 9, false, true});
  for (const auto& [name, shown] : names) Add(name, {name});
  Join(pane->Entities()->Item(1), 2, pane->Entities()->Item(2), 2);
  std::vector<std::string> texts;
  EXPECT_EQ(WrongWith(pane->PictureSvg(), texts), "");
  std::vector<std::string> expected;
  for (const auto& [name, shown] : names) expected.insert(expected.end(), {shown, "*", shown});
  EXPECT_EQ(texts, expected);
  pane->Clear();
  EXPECT_EQ(WrongWith(pane->PictureSvg(), texts), "");
}

}  // namespace
}  // namespace zrqrybld
