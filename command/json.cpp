#include "command/json.h"

#include <array>
#include <cstdio>

namespace zrqrybld {

void JsonWriter::Text(std::string_view key, std::string_view value) {
  Item(key);
  Quoted(value);
}

void JsonWriter::Texts(std::string_view key, const std::vector<std::string>& values) {
  BeginArray(key);
  for (const std::string& value : values) Text({}, value);
  EndArray();
}

void JsonWriter::Raw(std::string_view key, std::string_view value) {
  Item(key);
  text_ += value;
}

void JsonWriter::Begin(std::string_view key, char opening) {
  Item(key);
  text_ += opening;
  ++depth_;
  empty_ = true;
}

void JsonWriter::End(char closing) {
  --depth_;
  if (!empty_) text_.append("\n").append(static_cast<std::size_t>(depth_) * 2, ' ');
  text_ += closing;
  empty_ = false;
}

void JsonWriter::Item(std::string_view key) {
  if (depth_ > 0) {
    if (!empty_) text_ += ',';
    text_.append("\n").append(static_cast<std::size_t>(depth_) * 2, ' ');
  }
  empty_ = false;
  if (key.empty()) return;
  Quoted(key);
  text_ += ": ";
}

void JsonWriter::Quoted(std::string_view value) {
  text_ += '"';
  for (const char c : value) {
    switch (c) {
      case '"':
        text_ += "\\\"";
        break;
      case '\\':
        text_ += "\\\\";
        break;
      case '\n':
        text_ += "\\n";
        break;
      case '\r':
        text_ += "\\r";
        break;
      case '\t':
        text_ += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          std::array<char, 8> escape{};
          std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
          text_ += escape.data();
        } else {
          text_ += c;
        }
    }
  }
  text_ += '"';
}

}  // namespace zrqrybld
