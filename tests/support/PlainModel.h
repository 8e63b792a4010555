// The call history as one would explain it on paper: plain vectors, counted anew whenever somebody
// asks, and the bytes of its file. It shares no code with the module; ModelDriver drives both.
#pragma once

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "CallLogRecords.h"
#include "desktop/platform/Clock.h"
#include "desktop/platform/Display.h"
#include "tests/support/PlainCalls.h"

namespace desk {

// The rows of a list on one page, and how many the whole list has; nothing when it is refused.
using PlainPage = std::pair<std::vector<std::string>, int>;

inline std::optional<PlainPage> PageOf(std::vector<std::string> rows, int first, int count) {
  if (first < 0 || count < 1) return std::nullopt;
  const int total = static_cast<int>(rows.size());
  rows.erase(rows.begin(), rows.begin() + std::min(first, total));
  rows.resize(std::min(rows.size(), static_cast<std::size_t>(count)));
  return PlainPage(rows, total);
}

inline std::optional<PlainPage> PageOf(const PlainCalls& calls, int first, int count) {
  std::vector<std::string> rows;
  for (const PlainCall& call : calls) rows.push_back(call.Name() + ", " + call.remote_sip_name);
  return PageOf(rows, first, count);
}

class PlainModel {
 public:
  std::map<std::string, std::string> contacts;  // names by number
  std::set<std::string> withoutMissed;          // full names of accounts that keep no missed calls
  std::map<std::string, int> usable;            // accounts that can call: ids by SIP name
  bool saving = true;                           // the user wants a history

  // What the phone does, as the controller's operations of these names.

  int Add(const CallLogAddItemData& call) {
    if (!saving || call.type < 1 || call.type > 4) return -1;
    const std::string account = call.local_sip_name + "@" + call.local_sip_server;
    if (call.type == 2 && withoutMissed.count(account) > 0) return -1;
    PlainCall stored{call, true};
    stored.remote_display_name = NameOf(call.remote_sip_name, call.remote_display_name);
    stored.forward_display_name = NameOf(call.forward_sip_name, call.forward_display_name);
    stored.keys = KeysOf(stored.remote_display_name);
    const auto sameType = View(call.type);
    if (sameType.size() == 100) calls_.erase(calls_.begin() + (sameType.back() - calls_.data()));
    const auto older = [](int time, const PlainCall& other) { return time > other.born_tick; };
    calls_.insert(std::upper_bound(calls_.begin(), calls_.end(), call.born_tick, older), stored);
    Change();
    return 0;
  }

  void Update(const CallLogUpdateData& contact) {
    std::set<std::string> numbers = {contact.number_1, contact.number_2, contact.number_3};
    numbers.erase("");
    const auto shown = [&contact](const std::string& number) {
      return contact.display_name.empty() ? number : contact.display_name;
    };
    for (PlainCall& c : calls_) {
      const bool target = c.type == 4 && numbers.count(c.forward_sip_name) > 0;
      if (target) c.forward_display_name = shown(c.forward_sip_name);
      if (numbers.count(c.remote_sip_name) == 0) continue;
      c.remote_display_name = shown(c.remote_sip_name);
      Change();
    }
  }

  void UpdateNames(const std::list<SuperSearchItemData>& names) {
    for (PlainCall& c : calls_) {
      for (const SuperSearchItemData& entry : names) {
        const auto rename = [&](const std::string& number, std::string* name) {
          if (number == entry.number) *name = entry.display_name, Change();
        };
        rename(c.remote_sip_name, &c.remote_display_name);
        rename(c.forward_sip_name, &c.forward_display_name);
      }
    }
  }

  void ForgetNames() {
    for (PlainCall& call : calls_) {
      call.remote_display_name = call.remote_sip_name;
      if (call.type == 4) call.forward_display_name = call.forward_sip_name;
      Change();
    }
  }

  // The hits stay as they were found until the history changes or another key comes.
  std::optional<PlainPage> Search(const std::string& typed, int first, int count) {
    const std::string key = Folded(typed);
    if (key.empty()) return held_.reset(), std::nullopt;
    const bool number = (key[0] >= '0' && key[0] <= '9') || key[0] == '*' || key[0] == '#';
    const auto differs = [&](const PlainCall& call) {
      if (!number) return !Begins(call.remote_display_name, key);
      return !Begins(call.remote_sip_name, key) && !Begins(call.keys, key);
    };
    if (!held_ || key.compare(0, held_->first.size(), held_->first) != 0) {
      held_ = {key, {}};
      for (const PlainCall& call : calls_) {
        if (!differs(call)) AddHit(call);
      }
    } else if (key != held_->first && first >= 0 && count > 0) {
      EraseIf(&held_->second, differs);
      held_->first = key;
    }
    return PageOf(held_->second, first, count);
  }

  // How many calls there were in these rows.
  int Remove(int view, const std::set<int>& rows) {
    int row = 0;
    const auto chosen = [&](const auto& call) { return call.IsIn(view) && rows.count(row++) > 0; };
    const int removed = EraseIf(&calls_, chosen);
    if (removed > 0) Change();
    return removed;
  }

  void RemoveAll(int view) {
    EraseIf(&calls_, [view](const PlainCall& call) { return call.IsIn(view); });
    Change();
  }

  // The user opens a list, or deals with a number in it.
  void See(int view, const std::optional<std::string>& number = std::nullopt) {
    for (PlainCall& call : calls_) {
      if (call.IsIn(view) && number.value_or(call.remote_sip_name) == call.remote_sip_name) {
        call.isNew = false;
      }
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
    held_.reset();
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
    const auto count = [this](int type) {
      const auto isNew = [type](const PlainCall& call) { return call.isNew && call.type == type; };
      return std::count_if(calls_.begin(), calls_.end(), isNew);
    };
    Display display;
    if (count(2) > 0) display = {{{12, std::to_string(count(2)) + " Missed"}}, {9}, {5}, {}};
    if (count(4) > 0) {
      display.statuses[15] = std::to_string(count(4)) + " Forwarded";
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
        const std::string target = type == 4 ? ", " + call.Target() : "";
        rows.emplace_back(call.Name() + ", " + call.remote_sip_name + target, 0);
      }
      ++rows[rowOf[call.Name()]].second;
    }
    return rows;
  }

  // The numbers dialled; the list of the first ten is never cut short.
  std::optional<PlainPage> MostDialled(bool firstTen, int first, int count) const {
    std::map<std::string, int> times;
    PlainCalls numbers;
    for (const PlainCall* call : View(1)) {
      if (++times[call->remote_sip_name] == 1) numbers.push_back(*call);
    }
    std::stable_sort(numbers.begin(), numbers.end(), [&](const auto& a, const auto& b) {
      return times[a.remote_sip_name] > times[b.remote_sip_name];
    });
    if (firstTen) numbers.resize(std::min<std::size_t>(numbers.size(), 10));
    return PageOf(numbers, first, firstTen && count > 0 ? 10 : count);
  }

  // The account that the next redial goes through.
  int RedialAccount() const {
    for (const PlainCall* call : View(1)) {
      const auto account = usable.find(call->local_sip_name);
      if (account != usable.end()) return account->second;
    }
    return -1;
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

  // In front of the first hit that is greater by name, then number; nowhere when one is equal. A
  // hit without a name is compared by its number alone.
  void AddHit(const PlainCall& call) {
    PlainCalls& hits = held_->second;
    for (auto hit = hits.begin(); hit != hits.end(); ++hit) {
      const bool sameName =
          hit->remote_display_name.empty() || hit->remote_display_name == call.remote_display_name;
      if (sameName && hit->remote_sip_name == call.remote_sip_name) return;
      if (sameName ? hit->remote_sip_name > call.remote_sip_name
                   : hit->remote_display_name > call.remote_display_name) {
        hits.insert(hit, call);
        return;
      }
    }
    hits.push_back(call);
  }

  void Change() {
    held_.reset();
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
    call.keys = KeysOf(call.remote_display_name);
    return call;
  }

  PlainCalls calls_;  // newest first
  PlainCalls saved_;  // what the file holds
  std::string file_;  // and its bytes; empty: no file yet
  Milliseconds now_{0};
  std::optional<Milliseconds> saveAt_;                      // set: changes wait for this moment
  std::optional<std::pair<std::string, PlainCalls>> held_;  // the last key and its hits
};

}  // namespace desk
