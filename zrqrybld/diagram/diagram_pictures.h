// DiagramPictures: the whole diagram as a picture, at 100 % and without what is selected: to save, to copy, to print.
#pragma once

#include <string>

#include "zrqrybld/base/units.h"
#include "zrqrybld/platform/picture.h"

namespace zrqrybld {

class Canvas;
class DiagramCamera;
class DiagramScene;
class DiagramSite;
struct DiagramProperties;

class DiagramPictures {
 public:
  DiagramPictures(const DiagramSite& site, const DiagramProperties& properties, const DiagramScene& scene,
                  const DiagramCamera& camera)
      : site_(site), properties_(properties), scene_(scene), camera_(camera) {}

  /// In pixels, the margin included.
  PixelSize Size() const;
  void Paint(Canvas& canvas) const;
  std::string Svg() const;
  /// As SVG when the path ends so, otherwise as PNG. Error 75 when it cannot be written.
  void Save(const std::string& path) const;
  /// Lets the user choose where; a failure is a message. Nothing happens while the pane is not linked.
  void AskToSave() const;
  /// Puts it on the clipboard. Returns whether there is one.
  bool Copy() const;

 private:
  void SaveOrTell(const std::string& path) const;
  Picture ToDraw() const;

  const DiagramSite& site_;
  const DiagramProperties& properties_;
  const DiagramScene& scene_;
  const DiagramCamera& camera_;
};

}  // namespace zrqrybld
