// Groups the legs as they come, and folds the extension's own ones into calls at the end: only then
// is it known whether another leg was answered.
#include "desktop/cdr/CdrCalls.h"

#include <strings.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <string_view>
#include <utility>

namespace desk {
namespace {

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
  const std::size_t group = GroupOf(leg);
  if (AnsweredByChannel(leg)) groups_[group].answered = true;
  const bool placed = !extension_.empty() && Endpoint(leg.channel) == extension_;
  const bool called = !extension_.empty() && Endpoint(leg.dstchannel) == extension_;
  if (placed) {
    legs_.push_back({group, true, leg.answered, leg.start, leg.duration, leg.billsec, leg.dst, "",
                     leg.channel});
  } else if (called) {
    legs_.push_back({group, false, AnsweredByChannel(leg), leg.start, leg.duration, leg.billsec,
                     leg.src, leg.callerName, ""});
  }
  return placed || called;
}

std::vector<CallLogAddItemData> CdrCalls::Take() {
  std::stable_sort(legs_.begin(), legs_.end(),
                   [](const OwnLeg& a, const OwnLeg& b) { return a.start < b.start; });
  std::vector<CallLogAddItemData> calls;
  std::vector<TalkTime> talked;
  std::map<std::pair<std::size_t, std::string>, std::size_t> indexOf;
  for (const OwnLeg& own : legs_) {
    const std::size_t group = Root(own.group);
    if (!own.placed && !own.answered && groups_[group].answered) continue;
    const auto [found, isNew] = indexOf.try_emplace({group, own.channel}, calls.size());
    if (isNew) calls.push_back(MakeCall(own));
    talked.resize(calls.size());
    if (!own.answered) continue;
    calls[found->second].duration = talked[found->second].Add(own.start, own.duration, own.billsec);
  }
  return calls;
}

CallLogAddItemData CdrCalls::MakeCall(const OwnLeg& own) const {
  CallLogAddItemData call;
  call.type = own.placed ? kOutgoing : own.answered ? kReceived : kMissed;
  call.born_tick = own.start;
  call.local_sip_name = extension_;
  call.local_sip_server = server_;
  call.remote_sip_name = own.number;
  call.remote_sip_server = server_;
  call.remote_display_name = own.name;
  return call;
}

std::size_t CdrCalls::NewGroup() {
  groups_.push_back({groups_.size(), false});
  return groups_.size() - 1;
}

std::size_t CdrCalls::GroupOfId(const std::string& id) {
  const auto [found, isNew] = groupOfId_.try_emplace(id, groups_.size());
  return isNew ? NewGroup() : Root(found->second);
}

std::size_t CdrCalls::GroupOf(const CdrLeg& leg) {
  const std::string& id = leg.uniqueid.empty() ? leg.linkedid : leg.uniqueid;
  if (id.empty()) return NewGroup();
  const std::size_t group = GroupOfId(id);
  if (leg.linkedid.empty()) return group;
  const std::size_t linked = GroupOfId(leg.linkedid);
  groups_[group].parent = linked;
  if (groups_[group].answered) groups_[linked].answered = true;
  return linked;
}

std::size_t CdrCalls::Root(std::size_t group) {
  while (groups_[group].parent != group) {
    group = groups_[group].parent = groups_[groups_[group].parent].parent;
  }
  return group;
}

}  // namespace desk
