// The desktop phone: a state directory, the desktop platform, and the call log module running on
// it.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

#include "CallLogRecords.h"
#include "desktop/phone/RootDirectory.h"
#include "desktop/platform/Platform.h"
#include "guard/HistoryGuard.h"

namespace desk {

// What the phone has to tell, one thing each: the display as it is now, a save by itself, what the
// guard of the history had to do, a server list, another message to the application; and that the
// root was open to other users, once, at the start.
struct RootWasOpen {};
struct HistorySaved {
  std::uintmax_t bytes = 0;
  std::error_code error;  // the file cannot be looked at
};
struct ListFetched {
  std::string url;
  std::string error;  // empty: the list is there
};
using News = std::variant<RootWasOpen, Display, HistorySaved, NS_GUARD::HistoryGuard::Outcome,
                          ListFetched, Message>;

class Phone {
 public:
  // Starts the phone. Throws RootError when the directory cannot be used.
  Phone(const std::filesystem::path& root, const Profile& profile, std::unique_ptr<Clock> clock);
  // Shuts down in good order: unsaved changes are saved. What the guard makes of that, only who has
  // called Save() before is told.
  ~Phone();

  // What a cut of the power does: nothing is saved. Then the phone starts again.
  void PowerCycle();

  // Saves what has changed, as before a planned restart, and says what the guard found; nothing
  // when there was nothing to save.
  std::optional<NS_GUARD::HistoryGuard::Outcome> Save();

  // Brings a finished call into the history. Empty, or in a few words why it is not kept.
  std::string AddCall(const CallLogAddItemData& call);

  // Lets time pass: at once with a manual clock, really otherwise, with a call of `eachTime` when
  // something may have happened. False when it was interrupted.
  bool Wait(
      Milliseconds span, const std::function<void()>& eachTime = [] {});

  // Lets the transfers that are running come to their end, which a manual clock cannot hurry. False
  // when it was interrupted; they go on then.
  bool AwaitTransfers();

  // What has changed by itself since the last time.
  std::vector<News> TakeNews();

  Platform& platform() { return platform_; }
  std::filesystem::path HistoryFile() const;
  std::filesystem::path SourcesFile() const;

  // What takes long asks this again and again, and gives up when it is true. Who makes it true
  // writes to the message loop's descriptor.
  std::function<bool()> interrupted = [] { return false; };

 private:
  void PowerOn();
  NS_GUARD::HistoryGuard::Outcome NoteGuard(NS_GUARD::HistoryGuard::Outcome outcome);
  News NewsOf(Message message);
  void OnHandled(const Message& message, int result);

  RootDirectory root_;
  Platform platform_;
  NS_GUARD::HistoryGuard guard_;
  // What nobody has been told yet, and the display that somebody has.
  bool wasOpen_;
  bool saved_ = false;
  std::vector<NS_GUARD::HistoryGuard::Outcome> guardNotes_;
  Display shown_;
};

}  // namespace desk
