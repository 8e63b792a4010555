// The calls of the plain model, and the bytes of a history file with them.
#pragma once

#include <utf8proc.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace desk {

// A character of a text and its code, or a byte that belongs to none with a negative one.
using Letter = std::pair<std::string, int>;

inline std::vector<Letter> Letters(const std::string& text) {
  std::vector<Letter> letters;
  for (std::size_t at = 0; at < text.size(); at += letters.back().first.size()) {
    utf8proc_int32_t code = 0;
    const auto* rest = reinterpret_cast<const utf8proc_uint8_t*>(text.data() + at);
    const utf8proc_ssize_t found =
        utf8proc_iterate(rest, static_cast<utf8proc_ssize_t>(text.size() - at), &code);
    letters.emplace_back(text.substr(at, found > 0 ? static_cast<std::size_t>(found) : 1), code);
  }
  return letters;
}

// What the history file keeps of a string.
inline std::string KeptText(const std::string& string) {
  std::string text;
  for (const auto& [bytes, c] : Letters(string.c_str())) {
    const bool forbidden =
        (c < ' ' && c != '\t' && c != '\n' && c != '\r') || c == 0xFFFE || c == 0xFFFF;
    text += forbidden ? "\uFFFD" : bytes;
  }
  return text;
}

// How names and keys are compared. It knows the accented letters of ModelDriver's names only.
inline std::string Folded(const std::string& text) {
  std::string folded;
  for (const auto& [bytes, c] : Letters(text)) {
    switch (c) {
      case 0xE9:
      case 0xEB: folded += 'e'; break;
      case 0x141: folded += 'l'; break;
      default: folded += c >= 'A' && c <= 'Z' ? std::string(1, static_cast<char>(c + 32)) : bytes;
    }
  }
  return folded;
}

inline std::string KeysOf(const std::string& name) {
  std::string keys;
  for (const char c : Folded(name)) {
    if (c >= 'a' && c <= 'z') keys += "22233344455566677778889999"[c - 'a'];
    if ((c >= '0' && c <= '9') || c == '*' || c == '#' || c == '+') keys += c;
  }
  return keys;
}

// Whether `text` begins with a folded key; half a letter is none.
inline bool Begins(const std::string& text, const std::string& key) {
  const std::vector<Letter> letters = Letters(Folded(text));
  const std::vector<Letter> typed = Letters(key);
  return typed.size() <= letters.size() && std::equal(typed.begin(), typed.end(), letters.begin());
}

// A call as it is stored: `remote_display_name` and `forward_display_name` are the names shown.
struct PlainCall : CallLogAddItemData {
  bool isNew = false;
  std::string keys{};  // the first name on the key pad

  bool IsIn(int view) const { return view == 0 || view == type; }
  const std::string& Name() const {
    return remote_display_name.empty() ? remote_sip_name : remote_display_name;
  }
  const std::string& Target() const {
    return forward_display_name.empty() ? forward_sip_name : forward_display_name;
  }
};

using PlainCalls = std::vector<PlainCall>;

template <class Matches>
int EraseIf(PlainCalls* calls, Matches matches) {
  const auto end = std::remove_if(calls->begin(), calls->end(), matches);
  const auto erased = static_cast<int>(calls->end() - end);
  calls->erase(end, calls->end());
  return erased;
}

inline std::string FileAttribute(const std::string& name, const std::string& string) {
  const char quote = string.find('"') == std::string::npos ? '"' : '\'';
  std::string text = " " + name + "=" + quote;
  for (const char c : string) {
    switch (c) {
      case '&': text += "&amp;"; break;
      case '<': text += "&lt;"; break;
      case '>': text += "&gt;"; break;
      case '\'': text += quote == '\'' ? "&apos;" : "'"; break;
      default: text += c;
    }
  }
  return text + quote;
}

// The history file of calls whose strings are kept texts already.
inline std::string FileItem(const PlainCall& call) {
  return "\t<item" + FileAttribute("type", std::to_string(call.type)) +
         FileAttribute("born_tick", std::to_string(call.born_tick)) +
         FileAttribute("local_sip_name", call.local_sip_name) +
         FileAttribute("local_sip_server", call.local_sip_server) +
         FileAttribute("remote_display_name", call.remote_display_name) +
         FileAttribute("remote_sip_name", call.remote_sip_name) +
         FileAttribute("remote_sip_server", call.remote_sip_server) +
         FileAttribute("duration", std::to_string(call.duration)) + "/>\n";
}

inline std::string FileText(const PlainCalls& calls) {
  std::string items;
  for (const PlainCall& call : calls) items += FileItem(call);
  return "<?xml version='1.0' encoding='utf-8' ?>\n" +
         (items.empty() ? "<root_call_log/>" : "<root_call_log>\n" + items + "</root_call_log>") +
         "\n\n";
}

}  // namespace desk
