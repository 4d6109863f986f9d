// ProbeControl: a control that writes down what it hears.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "zrqrybld/platform/control.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {

inline std::string Number(double value) { return std::to_string(static_cast<int>(value)); }
inline std::string Place(PixelPoint p) { return Number(p.x.Value()) + "," + Number(p.y.Value()); }

class ProbeControl : public Control {
 public:
  std::string_view TypeName() const override { return "ProbeControl"; }

  std::vector<std::string> log;
  std::function<void(Canvas&)> paint;
  std::function<void(const std::string& entry)> react;  // runs after each entry
  bool useKeys = true;
  std::string toolTip;

  std::vector<std::string> TakeLog() { return std::exchange(log, {}); }

  void Paint(Canvas& canvas, const PixelRect&) const override {
    if (paint) paint(canvas);
  }
  void OnResize() override {
    const PixelSize size = GetSurface().ViewSize();
    Note("resize " + Number(size.width.Value()) + "x" + Number(size.height.Value()));
  }
  void OnMouseDown(const MouseEvent& e) override { Note("down " + Describe(e)); }
  void OnMouseMove(const MouseEvent& e) override { Note("move " + Describe(e)); }
  void OnMouseUp(const MouseEvent& e) override { Note("up " + Describe(e)); }
  void OnDoubleClick(const MouseEvent& e) override { Note("double " + Describe(e)); }
  void OnMouseLeave() override { Note("leave"); }
  void OnWheel(const WheelEvent& e) override {
    Note("wheel " + Number(e.linesX) + "," + Number(e.linesY) + " shift " + std::to_string(e.shift));
  }
  void OnFocusChanged(bool focused) override { Note(focused ? "focus" : "blur"); }
  void OnScroll(Orientation orientation, int value) override {
    Note((orientation == Orientation::Vertical ? "vertical " : "horizontal ") + std::to_string(value));
  }
  bool OnKeyDown(const KeyEvent& e) override {
    Note("key " + std::to_string(e.keyCode) + " shift " + std::to_string(e.shift) + " \"" + e.text + "\"");
    return useKeys;
  }
  void OnKeyUp(const KeyEvent& e) override { Note("keyup " + std::to_string(e.keyCode)); }
  std::string ToolTipAt(PixelPoint) const override { return toolTip; }

 protected:
  void OnSurfaceChanged() override { Note("surface"); }

 private:
  static std::string Describe(const MouseEvent& e) {
    return std::to_string(e.button) + " shift " + std::to_string(e.shift) + " at " + Place(e.position);
  }
  void Note(const std::string& entry) {
    log.push_back(entry);
    if (react) react(entry);
  }
};

}  // namespace zrqrybld
