// JSON as the command writes it: objects and arrays of texts, numbers and truths, two blanks a level.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zrqrybld {

class JsonWriter {
 public:
  /// Containers begin as an item of the one around them; `key` is "" inside arrays and at the top.
  void BeginObject(std::string_view key = {}) { Begin(key, '{'); }
  void EndObject() { End('}'); }
  void BeginArray(std::string_view key = {}) { Begin(key, '['); }
  void EndArray() { End(']'); }
  void Text(std::string_view key, std::string_view value);
  void Texts(std::string_view key, const std::vector<std::string>& values);
  void Number(std::string_view key, std::int64_t value) { Raw(key, std::to_string(value)); }

  /// What was written, ended by a line feed.
  std::string Take() { return std::move(text_) + '\n'; }

 private:
  void Begin(std::string_view key, char opening);
  void End(char closing);
  void Raw(std::string_view key, std::string_view value);
  void Item(std::string_view key);
  void Quoted(std::string_view value);

  std::string text_;
  int depth_ = 0;
  bool empty_ = true;  // the container that is open has no item yet
};

}  // namespace zrqrybld
