#include "zrqrybld/platform/control.h"

#include "zrqrybld/platform/headless.h"

namespace zrqrybld {

Control::Control() : headless_(std::make_unique<HeadlessSurface>()), surface_(headless_.get()) {}

Control::~Control() = default;

void Control::AttachSurface(Surface* surface) {
  surface_ = surface ? surface : headless_.get();
  OnSurfaceChanged();
  OnResize();
}

}  // namespace zrqrybld
