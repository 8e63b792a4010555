// Keeps the call history through power cuts, full disks and read errors. The module writes its
// history file in place, and takes a file that it cannot load for an empty history. The guard holds
// a complete copy beside that file: it looks at the file before the module loads it, and at what a
// save has made of it. Whichever call to the system fails, and wherever the power goes, the next
// start finds the history as it was before the last save or after it.
//
// Beside call_data.xml, in the same directory, which must be writable:
//   call_data.xml.good       the last good copy: complete, and synced to the disk
//   call_data.xml.good.new   a file on its way to its name; what is left of one goes at the start
//   call_data.xml.held       a history that could not be read in the last run; it comes back at the
//                            next start, before whatever was saved meanwhile
//   call_data.xml.aside-1    what was found damaged, or was saved while a history was held: people
//   call_data.xml.aside-2    may find calls in it. 1 is the newer. The older goes when a third
//                            comes; both go when the disk is full
//
// A file is complete when the module's own reader loads it and finds the root element in it; one
// without records is complete too. Who deletes the history deletes all of these, with the process
// down.
//
// Thread: the one that enters the module. POSIX file calls only; nothing is printed, and nothing is
// thrown but what the caller's own function throws.
#pragma once

#include <functional>
#include <string>

namespace NS_GUARD {

class HistoryGuard {
 public:
  enum class Outcome {
    // Nothing to tell. The good copy holds what the module loaded or saved.
    kGood,
    // Start: the history file was missing, damaged or unreadable, or a history was held. The
    // complete one stands in its place; what stood there is set aside.
    kPutBack,
    // Start: the history file was damaged, and there is no good copy. It is set aside, and the
    // history begins anew.
    kSetAside,
    // Start: there is a history, but it cannot be read now, or the module did not load all of it in
    // three attempts, or its directory is missing. It is held for the next start; until then the
    // module runs with what it has. What cannot be read at the next start either is set aside.
    kHeld,
    // AfterSave: the file is complete, but it was saved in a run that started with kHeld. The next
    // start sets it aside.
    kNotCounted,
    // AfterSave: the save left no complete file (disk full, directory missing). The good copy
    // stays, and the next start puts it back unless a later save is complete.
    kIncomplete,
    // Start, AfterSave: the history file is complete, but no good copy of it could be written
    // (neither room nor another way). An older one stays. The next save tries again.
    kNotCopied,
  };

  // Path of the history file: "/config/data/call_data.xml" on a phone.
  explicit HistoryGuard(const std::string& historyPath);

  // Starts the module anew, so that it loads the history file, and returns how many records it
  // lists then: RestartHistory() of RestartHistory.h.
  using ModuleStart = std::function<int()>;

  // Puts the files in order and starts the module: once, again when it lists fewer records than the
  // file holds, three times at most. Call it before anything else enters the module, and instead of
  // a GetInstance() after each ReleaseInstance().
  Outcome Start(const ModuleStart& startModule);

  // Makes the file that the module has just saved the good copy. Call it at once when
  // CCallLogController::OnMessage or SaveToFile() has returned 1. It waits for the disk three
  // times: for the file, for its copy, for the directory.
  Outcome AfterSave();

 private:
  enum class State { kMissing, kComplete, kDamaged, kUnreadable };
  struct File {
    State state = State::kMissing;
    std::string bytes;  // of a complete file, and how many records the module makes of it
    int records = 0;
  };

  static File Read(const std::string& path);
  static File ReadOnce(const std::string& path);
  File ReadGood() const;
  File ReadHistory() const;
  bool TakeUpHeld() const;
  Outcome StartFromHistory(const File& history, const File& good, const ModuleStart& startModule);
  Outcome StartFromGood(const File& good, const ModuleStart& startModule);
  bool Load(const ModuleStart& startModule, int records);
  Outcome BeginAnew(State history, State good, bool wasHeld) const;
  void Hold(const std::string& path) const;
  bool Keep(const std::string& bytes) const;
  bool SetAside(const std::string& path) const;
  bool Replace(const std::string& path, const std::string& bytes) const;
  bool Move(const std::string& from, const std::string& to) const;

  const std::string directory_;
  const std::string history_;
  const std::string good_;
  const std::string new_;
  const std::string held_;
  const std::string newerAside_;
  const std::string olderAside_;
  bool counts_ = false;  // what this run saves continues the history
};

// The outcome as a sentence, without a full stop; empty for kGood.
const char* Describe(HistoryGuard::Outcome outcome);

}  // namespace NS_GUARD
