// The call history as one would explain it on paper: plain vectors, counted anew whenever somebody
// asks, and the bytes of its file. It shares no code with the module; ModelTest drives both.
#pragma once

#include <utf8proc.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "CallLogRecords.h"
#include "Clock.h"
#include "Display.h"

namespace desk {

// What the history file keeps of a string.
inline std::string KeptText(const std::string& string) {
  const std::string bytes = string.c_str();
  std::string text;
  for (std::size_t at = 0; at < bytes.size();) {
    utf8proc_int32_t c = 0;
    const auto* rest = reinterpret_cast<const utf8proc_uint8_t*>(bytes.data() + at);
    const utf8proc_ssize_t found =
        utf8proc_iterate(rest, static_cast<utf8proc_ssize_t>(bytes.size() - at), &c);
    const std::size_t length = found > 0 ? static_cast<std::size_t>(found) : 1;
    const bool forbidden =
        (c < ' ' && c != '\t' && c != '\n' && c != '\r') || c == 0xFFFE || c == 0xFFFF;
    text += found <= 0 || forbidden ? "\uFFFD" : bytes.substr(at, length);
    at += length;
  }
  return text;
}

// A call as it is stored: `remote_display_name` and `forward_display_name` are the names shown.
struct PlainCall : CallLogAddItemData {
  bool isNew = false;

  bool IsIn(int view) const { return view == 0 || view == type; }
  const std::string& Name() const {
    return remote_display_name.empty() ? remote_sip_name : remote_display_name;
  }
  const std::string& Target() const {
    return forward_display_name.empty() ? forward_sip_name : forward_display_name;
  }
};

using PlainCalls = std::vector<PlainCall>;

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
inline std::string FileText(const PlainCalls& calls) {
  std::string text = "<?xml version='1.0' encoding='utf-8' ?>\n";
  if (calls.empty()) return text + "<root_call_log/>\n\n";
  text += "<root_call_log>\n";
  for (const PlainCall& call : calls) {
    const std::pair<const char*, std::string> attributes[] = {
        {"type", std::to_string(call.type)},
        {"born_tick", std::to_string(call.born_tick)},
        {"local_sip_name", call.local_sip_name},
        {"local_sip_server", call.local_sip_server},
        {"remote_display_name", call.remote_display_name},
        {"remote_sip_name", call.remote_sip_name},
        {"remote_sip_server", call.remote_sip_server},
        {"duration", std::to_string(call.duration)}};
    text += "\t<item";
    for (const auto& [name, value] : attributes) text += FileAttribute(name, value);
    text += "/>\n";
  }
  return text + "</root_call_log>\n\n";
}

class PlainModel {
 public:
  std::map<std::string, std::string> contacts;  // names by number
  std::set<std::string> withoutMissed;          // full names of accounts that keep no missed calls
  bool saving = true;                           // the user wants a history

  // What the phone does, as the controller's operations of these names.

  int Add(const CallLogAddItemData& call) {
    if (!saving || call.type < 1 || call.type > 4) return -1;
    const std::string account = call.local_sip_name + "@" + call.local_sip_server;
    if (call.type == 2 && withoutMissed.count(account) > 0) return -1;
    PlainCall stored{call, true};
    stored.remote_display_name = NameOf(call.remote_sip_name, call.remote_display_name);
    stored.forward_display_name = NameOf(call.forward_sip_name, call.forward_display_name);

    const std::vector<std::size_t> sameType = Positions(call.type);
    if (sameType.size() == 100) Erase(sameType.back());
    const auto older = [](int time, const PlainCall& other) { return time > other.born_tick; };
    calls_.insert(std::upper_bound(calls_.begin(), calls_.end(), call.born_tick, older), stored);
    Change();
    return 0;
  }

  void Update(const CallLogUpdateData& contact) {
    std::set<std::string> numbers = {contact.number_1, contact.number_2, contact.number_3};
    numbers.erase("");
    for (PlainCall& call : calls_) {
      const auto shown = [&](const std::string& number) {
        return contact.display_name.empty() ? number : contact.display_name;
      };
      if (numbers.count(call.remote_sip_name) > 0) {
        call.remote_display_name = shown(call.remote_sip_name);
        Change();
      }
      if (call.type == 4 && numbers.count(call.forward_sip_name) > 0) {
        call.forward_display_name = shown(call.forward_sip_name);
      }
    }
  }

  // How many calls there were in these rows.
  int Remove(int view, const std::set<int>& rows) {
    int removed = 0;
    int row = 0;
    for (const std::size_t position : Positions(view)) {
      if (rows.count(row++) == 0) continue;
      Erase(position - static_cast<std::size_t>(removed++));
      Change();
    }
    return removed;
  }

  void RemoveAll(int view) {
    const auto isIn = [view](const PlainCall& call) { return call.IsIn(view); };
    calls_.erase(std::remove_if(calls_.begin(), calls_.end(), isIn), calls_.end());
    Change();
  }

  // The user opens a list.
  void See(int view) {
    for (PlainCall& call : calls_) {
      if (call.IsIn(view)) call.isNew = false;
    }
  }

  void DealWith(int type, const std::string& number) {
    for (PlainCall& call : calls_) {
      if (call.type == type && call.remote_sip_name == number) call.isNew = false;
    }
  }

  int Save() {
    if (!saveAt_) return 0;
    saved_ = calls_;
    for (PlainCall& call : saved_) call = Kept(call);
    file_ = FileText(saved_);
    saveAt_.reset();
    return 1;
  }

  void Wait(Milliseconds span) {
    now_ += span;
    if (saveAt_ && *saveAt_ <= now_) Save();
  }

  void PowerCycle() {
    calls_ = saved_;
    saveAt_.reset();
  }

  // What can be seen from outside.

  const std::string& File() const { return file_; }
  const std::optional<Milliseconds>& SaveAt() const { return saveAt_; }

  std::vector<const PlainCall*> View(int view) const {
    std::vector<const PlainCall*> calls;
    for (const PlainCall& call : calls_) {
      if (call.IsIn(view)) calls.push_back(&call);
    }
    return calls;
  }

  Display Shown() const {
    Display display;
    int missed = 0;
    int forwarded = 0;
    for (const PlainCall& call : calls_) {
      if (call.isNew && call.type == 2) ++missed;
      if (call.isNew && call.type == 4) ++forwarded;
    }
    if (missed > 0) {
      display.statuses[12] = std::to_string(missed) + " Missed";
      display.ledEvents.insert(9);
      display.backlightEvents.insert(5);
    }
    if (forwarded > 0) {
      display.statuses[15] = std::to_string(forwarded) + " Forwarded";
      display.ledEvents.insert(10);
    }
    return display;
  }

  // The callers of the new calls of a type: name, number and target of the newest call in one text,
  // and the number of calls.
  std::vector<std::pair<std::string, int>> NewCallers(int type) const {
    std::vector<std::pair<std::string, int>> rows;
    std::map<std::string, std::size_t> rowOf;
    for (const PlainCall& call : calls_) {
      if (!call.isNew || call.type != type) continue;
      if (rowOf.count(call.Name()) == 0) {
        if (rows.size() == 21) continue;
        rowOf[call.Name()] = rows.size();
        std::string row = call.Name() + ", " + call.remote_sip_name;
        if (type == 4) row += ", " + call.Target();
        rows.emplace_back(row, 0);
      }
      ++rows[rowOf[call.Name()]].second;
    }
    return rows;
  }

  std::string LastNumber(bool outgoing) const {
    for (const PlainCall& call : calls_) {
      if ((call.type == 1) == outgoing) return call.remote_sip_name;
    }
    return "";
  }

 private:
  std::string NameOf(const std::string& number, const std::string& given) const {
    const auto contact = contacts.find(number);
    if (contact != contacts.end()) return contact->second;
    return given.empty() ? number : given;
  }

  std::vector<std::size_t> Positions(int view) const {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < calls_.size(); ++i) {
      if (calls_[i].IsIn(view)) positions.push_back(i);
    }
    return positions;
  }

  void Erase(std::size_t position) {
    calls_.erase(calls_.begin() + static_cast<PlainCalls::difference_type>(position));
  }

  void Change() {
    if (!saveAt_) saveAt_ = now_ + Milliseconds(5000);
  }

  static PlainCall Kept(PlainCall call) {
    call.isNew = false;
    call.forward_sip_name = call.forward_sip_server = call.forward_display_name = "";
    for (const auto text :
         {&PlainCall::local_sip_name, &PlainCall::local_sip_server, &PlainCall::remote_sip_name,
          &PlainCall::remote_sip_server, &PlainCall::remote_display_name}) {
      call.*text = KeptText(call.*text);
    }
    return call;
  }

  PlainCalls calls_;  // newest first
  PlainCalls saved_;  // what the file holds
  std::string file_;  // and its bytes; empty: no file yet
  Milliseconds now_{0};
  std::optional<Milliseconds> saveAt_;  // set: changes wait for this moment
};

}  // namespace desk
