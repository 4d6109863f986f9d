// The stored properties of any control.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "zrqrybld/platform/headless.h"

namespace zrqrybld::test {

/// What a control writes, another reads back, key by key; what is missing or of the wrong kind is the default.
template <class Control>
void ExpectStored(const Ref<Control>& changed, const Ref<Control>& other, const std::set<std::string>& keys) {
  const auto written = [](const Control& control) {
    MemoryPropertyStore store;
    control.WriteProperties(store);
    return store.Values();
  };
  MemoryPropertyStore all;
  changed->WriteProperties(all);
  std::set<std::string> stored;
  for (const auto& [key, value] : all.Values()) stored.insert(key);
  EXPECT_EQ(stored, keys);
  const auto fresh = written(*other);
  other->ReadProperties(all);
  EXPECT_EQ(written(*other), all.Values());
  for (const Variant& bad : {Variant(), Variant::Null(), Variant::Missing(), Variant(Ref<Object>(changed))}) {
    MemoryPropertyStore store;
    for (const std::string& key : keys) store.Write(key, bad);
    other->ReadProperties(all);
    other->ReadProperties(store);
    EXPECT_EQ(written(*other), fresh);
  }
}

}  // namespace zrqrybld::test
