// The combo alone, by the rows of tests/data/combo.txt.
#include "zrqrybld/grid/simple_combo.h"

#include <gtest/gtest.h>

#include "tests/fakes/paint_watch.h"
#include "tests/fakes/recording_canvas.h"
#include "tests/player.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

class Combo : public test::Player {
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
    KnowActions();
    KnowAnswers();
  }

 private:
  void Around(const std::function<void()>& act) override {
    log_.clear();
    act();
  }
  void CheckAlways() override { watch_.Check(); }
  void Note(const std::string& entry) { log_ += (log_.empty() ? "" : " ") + entry; }
  HeadlessSurface& Surface() { return static_cast<HeadlessSurface&>(combo_->GetSurface()); }
  void Mouse(Pixels x) { combo_->OnMouseDown({ButtonLeft, ShiftNone, {x, 10_px}}); }
  // A key with the letter that it types.
  void Press(const std::string& name) {
    KeyEvent key = test::ReadKey(name);
    key.text = name == "0" ? "" : FoldCase(key.text);
    kept_ = combo_->OnKeyDown(key);
  }

  void KnowActions() {
    actions["items"] = [this](const Words& w) {
      for (std::size_t i = 1; i < w.size(); ++i) combo_->AddItem(w[i]);
    };
    actions["button"] = [this](auto&) { Mouse(95_px); };
    actions["click"] = [this](auto&) { Mouse(20_px); };
    actions["release"] = [this](auto&) { combo_->OnMouseUp({ButtonLeft, ShiftNone, {95_px, 10_px}}); };
    actions["index"] = [this](const Words& w) { combo_->SetListIndex(std::stoi(w[1])); };
    actions["text"] = [this](const Words& w) { combo_->SetText(w.size() > 1 ? w[1] : ""); };
    actions["type"] = [this](const Words& w) { combo_->TypeOver(w[1]); };
    actions["typed"] = [this](const Words& w) {
      combo_->Show();
      Surface().FocusedEditor()->Type(w.size() > 1 ? w[1] : "");
    };
    actions["key"] = [this](const Words& w) { Press(w[1]); };
    actions["refuse"] = [this](auto&) { refuse_ = true; };
    actions["allow"] = [this](auto&) { refuse_ = false; };
    actions["hide"] = [this](const Words& w) { combo_->SetHideEdit(w[1] == "yes"); };
    actions["longest"] = [this](const Words& w) { combo_->SetMaxLength(std::stoi(w[1])); };
    actions["clear"] = [this](auto&) { combo_->Clear(); };
  }

  void KnowAnswers() {
    answers["log"] = [this](auto&) { return log_; };
    answers["text"] = [this](auto&) { return combo_->Text(); };
    answers["index"] = [this](auto&) { return std::to_string(combo_->ListIndex()); };
    answers["kept"] = [this](auto&) { return std::string(kept_ ? "yes" : "no"); };
    answers["highlighted"] = [this](auto&) {
      const HeadlessPopupList& list = *Surface().LastPopupList();
      if (list.Highlighted() == -1) return std::string();
      return list.Texts().at(static_cast<std::size_t>(list.Highlighted()));
    };
    answers["pressed"] = [this](auto&) {
      RecordingCanvas canvas;
      combo_->Paint(canvas, combo_->Bounds());
      return std::string(canvas.Text().find(" pressed") == std::string::npos ? "no" : "yes");
    };
    answers["list"] = [this](auto&) {
      std::string texts;
      if (!combo_->IsListOpen()) return texts;
      for (const std::string& text : Surface().LastPopupList()->Texts()) texts += (texts.empty() ? "" : " ") + text;
      return texts;
    };
  }

  Ref<zrSimpleCombo> combo_ = zrSimpleCombo::Create();
  test::PaintWatch watch_{*combo_};
  std::vector<EventConnection> links_;
  std::string log_;
  bool refuse_ = false;
  bool kept_ = false;
};

[[maybe_unused]] const bool kScenarios = test::RegisterScenarios<Combo>("SimpleComboScenario", "combo.txt");

}  // namespace
}  // namespace zrqrybld
