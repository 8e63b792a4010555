// Commands that bring calls in: what the talk logic and the directory of a phone would report.
#include <chrono>
#include <climits>

#include "CallLogRecords.h"
#include "desktop/console/CallImport.h"
#include "desktop/console/CallLists.h"
#include "desktop/console/Commands.h"
#include "desktop/console/Input.h"
#include "desktop/console/TimeInput.h"

namespace desk {
namespace {

// SIP account the call went through: the one named, else the phone's first.
Account ParseAccount(Phone& phone, const std::string& fullName) {
  if (!fullName.empty()) {
    const std::size_t at = fullName.rfind('@');
    if (at == std::string::npos) throw CommandError("an account is USER@SERVER");
    return {0, fullName.substr(0, at), fullName.substr(at + 1)};
  }
  const auto& accounts = phone.platform().accounts.All();
  return accounts.empty() ? Account() : accounts.front();
}

int CallTime(Console& console, Arguments& arguments) {
  std::time_t time = console.phone.platform().clock().Wall();
  if (arguments.HasOption("at")) time = ParseLocalTime(arguments.Option("at"));
  time -= ParseSpan(arguments.Option("ago", "0s")) / std::chrono::seconds(1);
  if (time > INT_MAX || time < INT_MIN) throw CommandError("the time does not fit into 32 bits");
  return static_cast<int>(time);
}

// Whom the call came from or went to, and the account it went through.
void ParseParties(Console& console, Arguments& arguments, CallLogAddItemData* call) {
  const Account account = ParseAccount(console.phone, arguments.Option("account"));
  call->local_sip_name = account.name;
  call->local_sip_server = account.server;
  call->remote_display_name = arguments.Option("name");
  call->remote_sip_server = arguments.Option("server", account.server);
  call->forward_sip_name = arguments.Option("to");
  call->forward_display_name = arguments.Option("to-name");
  call->forward_sip_server =
      arguments.Option("to-server", call->forward_sip_name.empty() ? "" : account.server);
}

void Call(Console& console, Arguments& arguments) {
  CallLogAddItemData call;
  call.type = ParseCallType(arguments.Word("the call type"));
  call.remote_sip_name = arguments.Word("the number");
  arguments.Done();
  ParseParties(console, arguments, &call);
  call.born_tick = CallTime(console, arguments);
  call.duration = ParseInt(arguments.Option("duration", "0"), "the duration");
  const std::string refusal = console.phone.AddCall(call);
  if (!refusal.empty()) console.Say("refused: " + refusal);
}

void Import(Console& console, Arguments& arguments) {
  CallImport import;
  import.file = arguments.Word("the file");
  if (import.file == Input::kStandard) throw CommandError("the file is wanted by its name");
  import.extension = arguments.Word("the extension");
  import.server = arguments.Option("server", ParseAccount(console.phone, "").server);
  arguments.Done();
  import.Run(console);
}

}  // namespace

CommandGroup CallCommands() {
  return {"calls",
          "Calls that come in",
          {
              {"call",
               "outgoing|missed|received|forwarded NUMBER [name=N] [duration=SECONDS] [ago=SPAN | "
               "at=TIME] [account=USER@SERVER] "
               "[server=S] [to=NUMBER] [to-name=N] [to-server=S]",
               "a finished call: outgoing, missed, received or forwarded", Call},
              {"cdr", "FILE EXTENSION [server=S]",
               "a PBX's call detail records, as the phone of an extension saw them", Import},
          }};
}

}  // namespace desk
