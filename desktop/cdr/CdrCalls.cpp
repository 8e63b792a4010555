// Groups the legs as they come, and folds the extension's own ones into calls when no more can
// come: only then is it known whether another leg was answered.
#include "desktop/cdr/CdrCalls.h"

#include <strings.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <string_view>
#include <utility>

#include "desktop/cdr/TextHash.h"

namespace desk {
namespace {

constexpr std::size_t kRowsApart = 100'000;
constexpr std::size_t kCallsOfType = 100;    // that a phone keeps
constexpr std::size_t kExtensions = 10'000;  // that are counted

enum { kOutgoing = 1, kMissed = 2, kReceived = 3 };

// "PJSIP/anna-00000002": anna. Pseudo technologies go before: "AsyncGoto/PJSIP/anna-00000002". A
// Local channel is the dial plan's own, whatever extension it names.
std::string_view Endpoint(const std::string& channel) {
  const std::size_t slash = channel.rfind('/');
  if (slash == channel.npos || strncasecmp(channel.c_str(), "Local/", 6) == 0) return {};
  const std::string_view name = std::string_view(channel).substr(slash + 1);
  return name.substr(0, name.rfind('-'));
}

// Older PBXs leave one row for both, with the channel that rang and the answer of the mailbox.
bool TakenByVoicemail(const CdrLeg& leg) {
  return strcasecmp(leg.lastapp.c_str(), "VoiceMail") == 0;
}

bool AnsweredByChannel(const CdrLeg& leg) {
  return leg.answered && !leg.dstchannel.empty() && !TakenByVoicemail(leg);
}

// The time talked over several legs: one after the other they add up, at the same time they do not.
class TalkTime {
 public:
  int Add(int start, int duration, int billsec) {
    const std::int64_t before = start < end_ ? 0 : total_;
    total_ = std::max(total_, before + billsec);
    end_ = std::max(end_, std::int64_t{start} + duration);
    return static_cast<int>(std::min<std::int64_t>(total_, std::numeric_limits<int>::max()));
  }

 private:
  std::int64_t total_ = 0;
  std::int64_t end_ = std::numeric_limits<std::int64_t>::min();
};

}  // namespace

CdrCalls::CdrCalls(std::string extension, std::string server)
    : extension_(std::move(extension)), server_(std::move(server)) {}

bool CdrCalls::Add(const CdrLeg& leg) {
  ++rows_;
  while (!groups_.empty() && rows_ - groups_.front().firstRow > kRowsApart) Finish();
  const auto group = GroupOf(leg);
  if (AnsweredByChannel(leg)) group->answered = true;
  const std::string_view caller = Endpoint(leg.channel);
  const std::string_view callee = Endpoint(leg.dstchannel);
  const bool placed = !extension_.empty() && caller == extension_;
  const bool called = !extension_.empty() && callee == extension_;
  if (placed) {
    group->legs.push_back({rows_, leg.record, true, leg.answered, leg.start, leg.duration,
                           leg.billsec, leg.dst, "", leg.channel});
  } else if (called) {
    group->legs.push_back({rows_, leg.record, false, AnsweredByChannel(leg), leg.start,
                           leg.duration, leg.billsec, leg.src, leg.callerName, ""});
  }
  if (placed || called) others_.clear();
  found_ = found_ || placed || called;
  for (const std::string_view name : {caller, callee}) CountOther(name);
  return placed || called;
}

void CdrCalls::CountOther(std::string_view name) {
  if (found_ || name.empty()) return;
  const auto counted = others_.find(name);
  if (counted != others_.end()) ++counted->second;
  if (counted == others_.end() && others_.size() < kExtensions) others_.emplace(name, 1);
}

std::vector<std::string> CdrCalls::OtherExtensions() const {
  constexpr std::size_t kNamed = 10;
  std::multimap<std::size_t, std::string, std::greater<>> busiest;
  for (const auto& [name, count] : others_) busiest.emplace(count, name);
  std::vector<std::string> names;
  for (const auto& [count, name] : busiest) {
    if (names.size() < kNamed) names.push_back(name);
  }
  return names;
}

std::vector<CdrCall> CdrCalls::Take() {
  while (!groups_.empty()) Finish();
  Calls all;
  for (auto& [type, kept] : kept_) all.merge(kept);
  std::vector<CdrCall> calls;
  for (auto& [place, call] : all) calls.push_back(std::move(call));
  return calls;
}

void CdrCalls::Finish() {
  Group group = std::move(groups_.front());
  groups_.pop_front();
  for (const std::uint64_t id : group.ids) groupOfId_.erase(id);
  std::sort(group.legs.begin(), group.legs.end(), [](const OwnLeg& a, const OwnLeg& b) {
    return std::pair(a.start, a.row) < std::pair(b.start, b.row);
  });
  std::map<std::string, std::pair<Place, TalkTime>> ofChannel;
  Calls calls;
  for (const OwnLeg& own : group.legs) {
    if (!own.placed && !own.answered && group.answered) continue;
    auto& [place, talked] =
        ofChannel.try_emplace(own.channel, Place(own.start, own.row), TalkTime()).first->second;
    CdrCall& call = calls.try_emplace(place, MakeCall(own)).first->second;
    call.records.insert(TextHash(extension_, TextHash(own.channel, own.record)));
    if (own.answered) call.duration = talked.Add(own.start, own.duration, own.billsec);
  }
  for (auto& [place, call] : calls) Keep(place, std::move(call));
}

void CdrCalls::Keep(const Place& place, CdrCall call) {
  Calls& kept = kept_[call.type];
  kept.emplace(place, std::move(call));
  if (kept.size() <= kCallsOfType) return;
  kept.erase(kept.begin());
  ++older_;
}

CdrCall CdrCalls::MakeCall(const OwnLeg& own) const {
  CdrCall call;
  call.type = own.placed ? kOutgoing : own.answered ? kReceived : kMissed;
  call.born_tick = own.start;
  call.local_sip_name = extension_;
  call.local_sip_server = server_;
  call.remote_sip_name = own.number;
  call.remote_sip_server = server_;
  call.remote_display_name = own.name;
  return call;
}

CdrCalls::Groups::iterator CdrCalls::GroupOf(const CdrLeg& leg) {
  auto group = groups_.insert(groups_.end(), {rows_, false, {}, {}});
  for (const std::uint64_t id : {leg.uniqueid, leg.linkedid}) {
    if (id == 0) continue;
    const auto [found, isNew] = groupOfId_.try_emplace(id, group);
    if (isNew) group->ids.push_back(id);
    group = Join(group, found->second);
  }
  return group;
}

// Moves the smaller to the larger, which takes the older's place.
CdrCalls::Groups::iterator CdrCalls::Join(Groups::iterator group, Groups::iterator other) {
  if (group == other) return group;
  const auto size = [](const Group& any) { return any.ids.size() + any.legs.size(); };
  if (size(*group) < size(*other)) std::swap(group, other);
  for (const std::uint64_t id : other->ids) groupOfId_[id] = group;
  group->ids.insert(group->ids.end(), other->ids.begin(), other->ids.end());
  std::move(other->legs.begin(), other->legs.end(), std::back_inserter(group->legs));
  group->answered = group->answered || other->answered;
  if (other->firstRow < group->firstRow) {
    group->firstRow = other->firstRow;
    groups_.splice(other, groups_, group);
  }
  groups_.erase(other);
  return group;
}

}  // namespace desk
