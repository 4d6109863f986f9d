// WebDesigner: a hub with its three panes on a page.
//
// The page makes and ends it by number; it may end inside none of the designer's own calls, so the page waits until the
// one that goes on has returned.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/adapters/web/numbered.h"
#include "zrqrybld/adapters/web/web_dialogs.h"
#include "zrqrybld/adapters/web/web_surface.h"
#include "zrqrybld/adapters/web/web_text_area.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

class WebToolkit final : public Toolkit {
 public:
  explicit WebToolkit(std::shared_ptr<const WebHome> home) : home_(home), dialogs_(std::move(home)) {}
  WebDialogs& GetDialogs() override { return dialogs_; }
  void SetBusyPointer(bool busy) override { zrp_busy(home_->designer, busy); }

 private:
  const std::shared_ptr<const WebHome> home_;
  WebDialogs dialogs_;
};

class WebDesigner {
 public:
  /// The page knows the number already, and has an object for it and for those behind it: the diagram, the grid and the
  /// text, which get the three numbers that follow.
  static WebDesigner& Make();
  static WebDesigner* Find(int number);
  static void End(int number);

  int Number() const { return home_->designer; }
  qbQueryBuilder& Hub() const { return *hub_; }
  WebDialogs& GetDialogs() const { return toolkit_->GetDialogs(); }
  WebSurface& Diagram() const { return *diagram_; }
  WebSurface& Grid() const { return *grid_; }
  WebTextArea& Area() const { return *area_; }
  const WebHome& Home() const { return *home_; }

  /// Links panes to surfaces, when the page has elements for them.
  void Start();
  /// Makes no caption of the grid narrower than its text.
  void FitColumns();

  WebDesigner(const WebDesigner&) = delete;
  WebDesigner& operator=(const WebDesigner&) = delete;
  ~WebDesigner();

 private:
  explicit WebDesigner(std::shared_ptr<WebHome> home);

  const std::shared_ptr<const WebHome> home_;
  const std::shared_ptr<WebToolkit> toolkit_;
  const Ref<qbQueryBuilder> hub_;
  const std::shared_ptr<WebSurface> diagram_;
  const std::shared_ptr<WebSurface> grid_;
  const std::shared_ptr<WebTextArea> area_;
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
