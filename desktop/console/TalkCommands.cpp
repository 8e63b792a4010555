// Commands for calls that the user makes, as the talk logic carries them out.
#include <climits>

#include "CallLog.h"
#include "desktop/console/CallType.h"
#include "desktop/console/Commands.h"
#include "desktop/phone/AddCall.h"
#include "desktop/platform/Text.h"
#include "platform/Directory.h"

namespace desk {
namespace {

using NS_CALLLOG::CCallLogController;

CCallLogController& Controller() { return *CCallLogController::GetInstance(); }

// The account of a call; the phone's first stands for the default account.
const Account* FindAccount(Phone& phone, int id) {
  const auto& accounts = phone.platform().accounts.All();
  for (const Account& account : accounts) {
    if (account.id == id) return &account;
  }
  return accounts.empty() ? nullptr : &accounts.front();
}

void ShowTalk(Console& console) {
  const Talk& talk = console.phone.platform().talk;
  if (talk.call) {
    const Account* const account = FindAccount(console.phone, talk.call->accountId);
    console.out << "  calling " << Printable(talk.call->name) << ", "
                << Printable(talk.call->number) << ", through "
                << (talk.call->accountId < 0 ? "the default account" : account->FullName())
                << "; \"hangup\" ends it\n";
  } else if (talk.dialScreen) {
    console.out << "  dial screen: " << Printable(*talk.dialScreen) << "\n";
  } else {
    console.out << "  no call\n";
  }
}

void Dial(Console& console, Arguments& arguments) {
  std::string number = console.phone.platform().talk.dialScreen.value_or("");
  if (arguments.HasWord() || number.empty()) number = arguments.Word("the number");
  ContactGeneralItemData contact;
  const bool known = Controller().GetContactDataByNumber(&contact, number);
  const std::string name = arguments.WordOr(known ? contact.display_name : number);
  arguments.Done();
  if (!Controller().CallOut(number, name)) console.out << "  refused: hang up first\n";
  ShowTalk(console);
}

void DialScreen(Console& console, Arguments& arguments) {
  const std::string number = arguments.Word("the number");
  arguments.Done();
  Controller().EnterTalkUI(number);
  ShowTalk(console);
}

void Redial(Console& console, Arguments& arguments) {
  arguments.Done();
  Controller().RedialNumberByClickAction(ListAction(2));
  ShowTalk(console);
}

void HangUp(Console& console, Arguments& arguments) {
  arguments.Done();
  auto& talk = console.phone.platform().talk;
  if (!talk.call) throw CommandError("there is no call");
  const std::time_t now = console.phone.platform().clock().Wall();
  CallLogAddItemData call;
  call.type = 1;
  call.born_tick = static_cast<int>(std::min<std::time_t>(talk.call->started, INT_MAX));
  call.duration = static_cast<int>(std::min<std::time_t>(now - talk.call->started, INT_MAX));
  call.remote_sip_name = talk.call->number;
  call.remote_display_name = talk.call->name;
  if (const Account* account = FindAccount(console.phone, talk.call->accountId)) {
    call.local_sip_name = account->name;
    call.local_sip_server = call.remote_sip_server = account->server;
  }
  talk.call.reset();
  const std::string refusal = AddCall(console.phone.platform(), call);
  console.out << "  the call has ended after " << call.duration << " s\n";
  if (!refusal.empty()) console.out << "  it is not kept: " << refusal << "\n";
}

}  // namespace

CommandGroup TalkCommands() {
  return {"Calls that you make",
          {
              {"dial", "[NUMBER [NAME]]",
               "places a call; without a number, what the dial screen holds", Dial},
              {"dial-screen", "NUMBER", "opens the dial screen with a number", DialScreen},
              {"redial", "", "calls the last outgoing number again", Redial},
              {"hangup", "", "ends the call, which then stands in the history", HangUp},
          }};
}

}  // namespace desk
