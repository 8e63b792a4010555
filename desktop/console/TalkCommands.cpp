// Commands for calls that the user makes, as the talk logic carries them out.
#include <algorithm>
#include <climits>
#include <optional>
#include <utility>

#include "CallTypes.h"
#include "desktop/console/CallLists.h"
#include "desktop/console/Commands.h"
#include "desktop/platform/Text.h"
#include "platform/Directory.h"

namespace desk {
namespace {

// The account of a call; the phone's first stands for the default account.
Account FindAccount(Phone& phone, int id) {
  const auto& accounts = phone.platform().accounts.All();
  for (const Account& account : accounts) {
    if (account.id == id) return account;
  }
  return accounts.empty() ? Account() : accounts.front();
}

std::string DescribeTalk(Phone& phone) {
  const auto& [call, dialScreen] = phone.platform().talk;
  if (!call) return dialScreen ? "dial screen: " + Printable(*dialScreen) : "no call";
  return "calling " + Printable(call->name) + ", " + Printable(call->number) + ", through " +
         (call->accountId < 0 ? "the default account"
                              : Printable(FindAccount(phone, call->accountId).FullName())) +
         "; \"hangup\" ends it";
}

void Dial(Console& console, Arguments& arguments) {
  std::string number = console.phone.platform().talk.dialScreen.value_or("");
  if (arguments.HasWord() || number.empty()) number = arguments.Word("the number");
  ContactGeneralItemData contact;
  const bool known = History().GetContactDataByNumber(&contact, number);
  const std::string name = arguments.WordOr(known ? contact.display_name : number);
  arguments.Done();
  if (!History().CallOut(number, name)) console.Say("refused: hang up first");
  console.Say(DescribeTalk(console.phone));
}

void DialScreen(Console& console, Arguments& arguments) {
  const std::string number = arguments.Word("the number");
  arguments.Done();
  History().EnterTalkUI(number);
  console.Say(DescribeTalk(console.phone));
}

void Redial(Console& console) {
  History().RedialNumberByClickAction(ListAction("missed"));
  console.Say(DescribeTalk(console.phone));
}

// Ends the call that is going on: what the talk logic reports of it.
CallLogAddItemData EndCall(Phone& phone) {
  auto& talk = phone.platform().talk;
  if (!talk.call) throw CommandError("there is no call");
  const TalkCall call = *std::exchange(talk.call, std::nullopt);
  const Account account = FindAccount(phone, call.accountId);
  const std::time_t length = phone.platform().clock().Wall() - call.started;
  CallLogAddItemData ended;
  ended.type = NS_CALLLOG::kOutgoing;
  ended.born_tick = static_cast<int>(std::min<std::time_t>(call.started, INT_MAX));
  ended.duration = static_cast<int>(std::min<std::time_t>(length, INT_MAX));
  ended.remote_sip_name = call.number;
  ended.remote_display_name = call.name;
  ended.local_sip_name = account.name;
  ended.local_sip_server = ended.remote_sip_server = account.server;
  return ended;
}

void HangUp(Console& console) {
  const CallLogAddItemData call = EndCall(console.phone);
  const std::string refusal = console.phone.AddCall(call);
  console.Say("the call has ended after " + std::to_string(call.duration) + " s");
  if (!refusal.empty()) console.Say("it is not kept: " + refusal);
}

}  // namespace

CommandGroup TalkCommands() {
  return {"talk",
          "Calls that you make",
          {
              {"dial", "[NUMBER [NAME]]",
               "places a call; without a number, what the dial screen holds", Dial},
              {"dial-screen", "NUMBER", "opens the dial screen with a number", DialScreen},
              {"redial", "", "calls the last outgoing number again", Redial},
              {"hangup", "", "ends the call, which then stands in the history", HangUp},
          }};
}

}  // namespace desk
