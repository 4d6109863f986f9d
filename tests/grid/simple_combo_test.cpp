// The combo alone, by the rows of tests/data/combo.txt.
#include "grid/simple_combo.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "base/text.h"
#include "platform/headless.h"
#include "tests/data_table.h"
#include "tests/error_of.h"

namespace zrqrybld {
namespace {

class Combo {
 public:
  Combo() {
    combo_->SetBounds({0_px, 0_px, 100_px, 20_px});
    combo_->Show();
    const auto log = [this](auto& event, const char* name) {
      links_.push_back(event.Connect([this, name](auto&&...) { Note(name); }));
    };
    log(combo_->Click, "K");
    log(combo_->Change, "C");
    log(combo_->Picked, "P");
    log(combo_->DblClick, "x");
    links_.push_back(combo_->BeforeDropDown.Connect([this](bool& cancel) {
      Note("D");
      cancel = refuse_;
    }));
    links_.push_back(combo_->KeyDown.Connect([this](std::int32_t& key, std::int32_t) {
      Note("k" + std::to_string(key));
      if (key == '0') key = 0;
    }));
    links_.push_back(combo_->KeyPress.Connect([this](std::int32_t key) { Note("p" + std::to_string(key)); }));
  }

  void Run(const test::Row& row) {
    log_.clear();
    error_ = test::ErrorOf([&] { Act(Split(row[0], " ")); });
    bool expectsError = false;
    for (std::size_t i = 1; i < row.cells.size(); ++i) {
      const std::size_t equals = row[i].find('=');
      expectsError |= row[i].starts_with("error");
      EXPECT_EQ(Ask(row[i].substr(0, equals)), row[i].substr(equals + 1)) << row[i];
    }
    EXPECT_TRUE(expectsError || error_ == 0) << error_;
  }

 private:
  void Note(const std::string& entry) { log_ += (log_.empty() ? "" : " ") + entry; }
  HeadlessSurface& Surface() { return static_cast<HeadlessSurface&>(combo_->GetSurface()); }
  void Mouse(Pixels x) { combo_->OnMouseDown({ButtonLeft, ShiftNone, {x, 10_px}}); }
  // A key with the letter that it types.
  void Press(const std::string& name) {
    const std::map<std::string, std::int32_t> keys = {{"F4", KeyCodeF4},     {"Up", KeyCodeUp},
                                                      {"Down", KeyCodeDown}, {"Enter", KeyCodeEnter},
                                                      {"Left", KeyCodeLeft}, {"Esc", KeyCodeEscape}};
    const auto key = keys.find(name);
    const bool letter = key == keys.end() && name != "0";
    const std::string text = letter ? std::string(1, static_cast<char>(name[0] + 'a' - 'A')) : "";
    kept_ = combo_->OnKeyDown({key == keys.end() ? name[0] : key->second, ShiftNone, text});
  }

  void Act(const std::vector<std::string_view>& words) {
    const std::string word(words.size() > 1 ? words[1] : "");
    const std::map<std::string_view, std::function<void()>> actions = {
        {"items",
         [&] {
           for (std::size_t i = 1; i < words.size(); ++i) combo_->AddItem(std::string(words[i]));
         }},
        {"button", [&] { Mouse(95_px); }},
        {"click", [&] { Mouse(20_px); }},
        {"release",
         [&] {
           combo_->OnMouseUp({ButtonLeft, ShiftNone, {95_px, 10_px}});
         }},
        {"index", [&] { combo_->SetListIndex(std::stoi(word)); }},
        {"text", [&] { combo_->SetText(word); }},
        {"type", [&] { combo_->TypeOver(word); }},
        {"typed",
         [&] {
           combo_->Show();
           Surface().FocusedEditor()->Type(word);
         }},
        {"key", [&] { Press(word); }},
        {"refuse", [&] { refuse_ = true; }},
        {"allow", [&] { refuse_ = false; }},
        {"hide", [&] { combo_->SetHideEdit(word == "yes"); }},
        {"longest", [&] { combo_->SetMaxLength(std::stoi(word)); }},
        {"clear", [&] { combo_->Clear(); }},
    };
    actions.at(words[0])();
  }

  std::string Ask(const std::string& name) {
    const std::shared_ptr<HeadlessPopupList> list = combo_->IsListOpen() ? Surface().LastPopupList() : nullptr;
    if (name == "log") return log_;
    if (name == "error") return std::to_string(error_);
    if (name == "text") return combo_->Text();
    if (name == "index") return std::to_string(combo_->ListIndex());
    if (name == "kept") return kept_ ? "yes" : "no";
    if (name == "highlighted") return list->Texts().at(static_cast<std::size_t>(list->Highlighted()));
    if (name == "pressed") {
      RecordingCanvas canvas;
      combo_->Paint(canvas, combo_->Bounds());
      return canvas.Text().find(" pressed") == std::string::npos ? "no" : "yes";
    }
    std::string texts;
    if (list) {
      for (const std::string& text : list->Texts()) texts += (texts.empty() ? "" : " ") + text;
    }
    return name == "list" ? texts : "no such question: " + name;
  }

  Ref<zrSimpleCombo> combo_ = zrSimpleCombo::Create();
  std::vector<EventConnection> links_;
  std::string log_;
  int error_ = 0;
  bool refuse_ = false;
  bool kept_ = false;
};

TEST(SimpleCombo, DoesWhatItsTableSays) {
  Combo combo;
  for (const test::Row& row : test::ReadRows("combo.txt")) {
    SCOPED_TRACE(row.place + " " + row[0]);
    combo.Run(row);
  }
}

}  // namespace
}  // namespace zrqrybld
