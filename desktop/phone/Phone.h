// The desktop phone: a state directory, the desktop platform, and the call log module running on
// it.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "desktop/phone/RootDirectory.h"
#include "desktop/platform/Platform.h"
#include "desktop/server/LogServer.h"
#include "guard/HistoryGuard.h"

namespace desk {

class Phone {
 public:
  // Starts the phone. Throws RootError when the directory cannot be used.
  Phone(const std::filesystem::path& root, const Profile& profile, std::unique_ptr<Clock> clock,
        std::ostream& out);
  // Shuts down in good order: unsaved changes are saved.
  ~Phone();

  // What a cut of the power does: nothing is saved. Then the phone starts again.
  void PowerCycle();

  // Saves what has changed, as before a planned restart. False when there was nothing to save.
  bool Save();

  // Lets time pass: at once with a manual clock, really otherwise. False when it was interrupted.
  bool Wait(Milliseconds span);

  // Lets the transfers that are running come to their end, which a manual clock cannot hurry. False
  // when it was interrupted; they go on then.
  bool AwaitTransfers();

  // Starts a log server with these documents in this process, and sets up sources for them.
  void ServeDocuments(const std::filesystem::path& directory);

  // Prints what has changed by itself since the last time: the idle screen, a save, what the guard
  // of the history had to do, an application message.
  void ReportChanges();
  bool HasChanges() const;

  Platform& platform() { return platform_; }
  LogServer* logServer() { return logServer_.get(); }  // null when none was started
  std::ostream& out() { return out_; }
  std::filesystem::path HistoryFile() const;
  std::filesystem::path SourcesFile() const;
  // A path that the user gave, who knows nothing of the working directory that the phone moved to.
  std::filesystem::path FromStart(const std::filesystem::path& path) const;

  bool wantsToQuit = false;

  // What takes long asks this again and again, and gives up when it is true. Who makes it true
  // writes to the message loop's descriptor.
  std::function<bool()> interrupted = [] { return false; };

 private:
  void PowerOn();
  void NoteGuard(NS_GUARD::HistoryGuard::Outcome outcome);
  void ReportGuard();
  void OnHandled(const Message& message, int result);

  RootDirectory root_;
  std::unique_ptr<LogServer> logServer_;
  std::ostream& out_;
  Platform platform_;
  NS_GUARD::HistoryGuard guard_;
  std::vector<std::string> guardNotes_;  // what the guard did and nobody has been told
  Display shown_;
  bool saved_ = false;
};

}  // namespace desk
