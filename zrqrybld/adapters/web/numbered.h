// Numbered: objects that the page names by number, and the boundary that no exception crosses.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <unordered_map>

#include "zrqrybld/adapters/web/page.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {

/// A number that no other object of the page has.
inline int NextPageNumber() {
  static int last = 0;
  return ++last;
}

/// The designer that an object of the page belongs to.
struct WebHome {
  int designer = 0;
  WeakRef<qbQueryBuilder> hub = {};
  /// Runs what the page has asked for. An error is told to the designer's element.
  template <class Call>
  void Run(Call&& call) const {
    try {
      call();
    } catch (const std::exception& error) {
      const Ref<qbQueryBuilder> known = hub.lock();
      const std::string text = known ? known->Say(error) : error.what();
      zrp_failed(designer, text.data(), LengthOf(text));
    }
  }
};

/// The base of T, which the page calls by its number. A call keeps the object alive; a number of one that has gone is
/// nobody's.
template <class T>
class Numbered : public std::enable_shared_from_this<T> {
 public:
  explicit Numbered(std::shared_ptr<const WebHome> home) : home_(std::move(home)) {
    All().emplace(number_, static_cast<T*>(this));
  }
  Numbered(const Numbered&) = delete;
  Numbered& operator=(const Numbered&) = delete;
  ~Numbered() { All().erase(number_); }

  int Number() const { return number_; }
  const std::shared_ptr<const WebHome>& Home() const { return home_; }

  /// Calls the object of this number, if there is one.
  template <class Call>
  static void With(int number, Call&& call) {
    const auto found = All().find(number);
    const std::shared_ptr<T> object = found == All().end() ? nullptr : found->second->weak_from_this().lock();
    if (object) object->home_->Run([&] { call(*object); });
  }

 private:
  static std::unordered_map<int, T*>& All() {
    static std::unordered_map<int, T*> all;
    return all;
  }
  const int number_ = NextPageNumber();
  const std::shared_ptr<const WebHome> home_;
};

}  // namespace zrqrybld
