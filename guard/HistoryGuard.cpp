// What is done with which file at a start and after a save. Every step is one rename or leaves the
// old state as it was, so the next start finds its way from wherever the power went.
#include "guard/HistoryGuard.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <tinyxml.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <new>
#include <stdexcept>

#include "CallLog/HistoryFormat.h"
#include "CallLog/XmlReader.h"

namespace NS_GUARD {
namespace {

constexpr int kAttempts = 3;

bool Exists(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

bool IsLink(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool IsDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

bool IsSameFile(const std::string& path, const std::string& other) {
  struct stat one {};
  struct stat two {};
  return stat(path.c_str(), &one) == 0 && stat(other.c_str(), &two) == 0 &&
         one.st_dev == two.st_dev && one.st_ino == two.st_ino;
}

// What stood in a file's place can be a directory.
void Remove(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

bool Sync(const std::string& path, int flags) {
  const int fd = open(path.c_str(), flags | O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return false;
  const bool synced = fsync(fd) == 0;
  return close(fd) == 0 && synced;
}

bool WriteAll(int fd, const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t count = write(fd, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

// A new file under this name, on the disk when it answers true.
bool Write(const std::string& path, const std::string& bytes) {
  std::remove(path.c_str());
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  const bool written = WriteAll(fd, bytes) && fsync(fd) == 0;
  const int reason = errno;
  const bool closed = close(fd) == 0;
  errno = reason;
  return closed && written;
}

// How many of these records the module keeps.
int CountRecords(const TiXmlElement& root) {
  std::map<long, int> ofType;
  for (const TiXmlElement* item = root.FirstChildElement(NS_CALLLOG::kHistoryItem); item != nullptr;
       item = item->NextSiblingElement(NS_CALLLOG::kHistoryItem)) {
    const char* const type = item->Attribute(NS_CALLLOG::kHistoryType);
    ++ofType[type == nullptr ? 0 : std::strtol(type, nullptr, 10)];
  }
  int records = 0;
  for (const auto& [type, count] : ofType) {
    records += std::min(count, NS_CALLLOG::kMaxRecordsPerType);
  }
  return records;
}

}  // namespace

HistoryGuard::HistoryGuard(const std::string& historyPath)
    : directory_(DirectoryOf(historyPath)),
      history_(historyPath),
      good_(historyPath + ".good"),
      new_(historyPath + ".good.new"),
      held_(historyPath + ".held"),
      newerAside_(historyPath + ".aside-1"),
      olderAside_(historyPath + ".aside-2") {}

HistoryGuard::Outcome HistoryGuard::Start(const ModuleStart& startModule) {
  counts_ = false;
  Remove(new_);
  const bool wasHeld = TakeUpHeld();
  const File good = ReadGood();
  const File history = ReadHistory();
  if (history.state == State::kComplete) {
    const Outcome outcome = StartFromHistory(history, good, startModule);
    return outcome == Outcome::kGood && wasHeld ? Outcome::kPutBack : outcome;
  }
  if (good.state == State::kComplete) return StartFromGood(good, startModule);
  const Outcome outcome = BeginAnew(history.state, good.state, wasHeld);
  counts_ = Load(startModule, 0) && outcome != Outcome::kHeld;
  return counts_ ? outcome : Outcome::kHeld;
}

HistoryGuard::Outcome HistoryGuard::StartFromHistory(const File& history, const File& good,
                                                     const ModuleStart& startModule) {
  if (!Load(startModule, history.records)) return Outcome::kHeld;
  const bool kept = history.bytes == good.bytes || Keep(history.bytes);
  return kept ? Outcome::kGood : Outcome::kNotCopied;
}

// Without room for a second copy the module loads the good one itself, and it goes back at once:
// where the module writes, no only copy may stand.
HistoryGuard::Outcome HistoryGuard::StartFromGood(const File& good,
                                                  const ModuleStart& startModule) {
  SetAside(history_);
  const bool copied = Replace(history_, good.bytes) || Write(history_, good.bytes);
  const bool moved = !copied && Move(good_, history_);
  if (!Load(startModule, good.records)) return Outcome::kHeld;
  const bool back = !moved || Move(history_, good_);
  return back ? Outcome::kPutBack : Outcome::kNotCopied;
}

// Starts the module until it lists so many records; a file that it does not load is held. True when
// what it saves then continues the history.
bool HistoryGuard::Load(const ModuleStart& startModule, int records) {
  bool loaded = false;
  for (int i = 0; i < kAttempts && !loaded; ++i) loaded = startModule() >= records;
  if (!loaded) Hold(history_);
  counts_ = loaded && !Exists(held_);
  return counts_;
}

HistoryGuard::Outcome HistoryGuard::AfterSave() {
  if (!counts_) Hold(good_);
  const File history = ReadHistory();
  if (history.state != State::kComplete) return Outcome::kIncomplete;
  if (!counts_) return Outcome::kNotCounted;
  return Keep(history.bytes) ? Outcome::kGood : Outcome::kNotCopied;
}

// What the last run could not read comes before what it saved.
bool HistoryGuard::TakeUpHeld() const {
  if (!Exists(held_)) return false;
  SetAside(history_);
  return Move(held_, history_);
}

// No file is complete. What may become readable again is held, once; any other is set aside.
HistoryGuard::Outcome HistoryGuard::BeginAnew(State history, State good, bool wasHeld) const {
  if (!IsDirectory(directory_)) return Outcome::kHeld;
  if (history == State::kUnreadable && !wasHeld) {
    Hold(history_);
    return Outcome::kHeld;
  }
  if (history != State::kMissing) SetAside(history_);
  if (good == State::kUnreadable) {
    Hold(good_);
    return Outcome::kHeld;
  }
  const bool nothingThere = history == State::kMissing && good == State::kMissing;
  return nothingThere ? Outcome::kGood : Outcome::kSetAside;
}

void HistoryGuard::Hold(const std::string& path) const {
  if (!Exists(held_)) Move(path, held_);
}

// Makes the complete history file the good copy: by a copy, else, for which no room is needed, by
// its name. Then the next save makes a new file, unless there is room for a copy after all.
bool HistoryGuard::Keep(const std::string& bytes) const {
  const bool synced = Sync(history_, 0);  // so that a power cut brings back no older one
  if (Replace(good_, bytes)) return true;
  if (!synced || !Move(history_, good_)) return false;
  Replace(history_, bytes);
  return true;
}

bool HistoryGuard::SetAside(const std::string& path) const {
  if (!Exists(path)) return true;
  if (Exists(newerAside_)) {
    Remove(olderAside_);
    if (!Move(newerAside_, olderAside_)) return false;
  }
  return Move(path, newerAside_);
}

// On a full disk the history comes before what was set aside.
bool HistoryGuard::Replace(const std::string& path, const std::string& bytes) const {
  bool written = Write(new_, bytes);
  if (!written && errno == ENOSPC) {
    Remove(newerAside_);
    Remove(olderAside_);
    written = Write(new_, bytes);
  }
  if (written && Move(new_, path)) return true;
  Remove(new_);
  return false;
}

// Should the directory not be synced, the old name and the new one both stand for a complete file.
bool HistoryGuard::Move(const std::string& from, const std::string& to) const {
  for (int i = 0; i < kAttempts; ++i) {
    if (std::rename(from.c_str(), to.c_str()) != 0) continue;
    Sync(directory_, O_DIRECTORY);
    return true;
  }
  return false;
}

// A good copy that is damaged, or no file of its own, is none; it would also be in the way.
HistoryGuard::File HistoryGuard::ReadGood() const {
  File file = Read(good_);
  if (IsLink(good_)) file = {State::kDamaged, {}, 0};
  if (file.state == State::kDamaged) SetAside(good_);
  return file;
}

// The good copy under both names would be lost with the next save.
HistoryGuard::File HistoryGuard::ReadHistory() const {
  File file = Read(history_);
  if (IsSameFile(history_, good_)) file = {State::kDamaged, {}, 0};
  return file;
}

HistoryGuard::File HistoryGuard::Read(const std::string& path) {
  File file;
  for (int i = 0; i < kAttempts; ++i) {
    try {
      file = ReadOnce(path);
    } catch (const std::bad_alloc&) {
      file = {State::kUnreadable, {}, 0};
    } catch (const std::length_error&) {
      file = {State::kUnreadable, {}, 0};
    }
    if (file.state != State::kUnreadable) break;
  }
  return file;
}

HistoryGuard::File HistoryGuard::ReadOnce(const std::string& path) {
  File file;
  if (!NS_CALLLOG::ReadXmlFile(path, &file.bytes)) {
    const int reason = errno;
    if (reason == 0) return {State::kDamaged, {}, 0};
    const bool missing = reason == ENOENT || !Exists(path);
    return {missing ? State::kMissing : State::kUnreadable, {}, 0};
  }
  TiXmlDocument document;
  const bool parsed = NS_CALLLOG::ParseXml(&document, file.bytes);
  const TiXmlElement* const root = document.FirstChildElement(NS_CALLLOG::kHistoryRoot);
  if (!parsed || root == nullptr) return {State::kDamaged, {}, 0};
  file.state = State::kComplete;
  file.records = CountRecords(*root);
  return file;
}

const char* Describe(HistoryGuard::Outcome outcome) {
  using Outcome = HistoryGuard::Outcome;
  switch (outcome) {
    case Outcome::kGood: break;
    case Outcome::kPutBack:
      return "the last good copy of the history is back in its place; what stood there is set "
             "aside";
    case Outcome::kSetAside:
      return "the history file was damaged and has no good copy; it is set aside, and the history "
             "begins anew";
    case Outcome::kHeld: return "the history cannot be read now; it is held for the next start";
    case Outcome::kNotCounted:
      return "this was saved while the history is held; the next start sets it aside";
    case Outcome::kIncomplete:
      return "the history was not saved completely; the last good copy stays";
    case Outcome::kNotCopied:
      return "the history is saved, but no good copy of it could be written";
  }
  return "";
}

}  // namespace NS_GUARD
