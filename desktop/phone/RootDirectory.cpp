// Makes, locks, closes and enters the directory of one phone.
#include "desktop/phone/RootDirectory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "desktop/platform/PrivateFile.h"

namespace desk {
namespace {

namespace fs = std::filesystem;

constexpr fs::perms kOthers = fs::perms::group_all | fs::perms::others_all;

RootError Unusable(const fs::path& path, const std::string& reason) {
  return RootError("cannot use " + path.string() + ": " + reason);
}

std::vector<fs::path> EntriesOf(const fs::path& folder, std::error_code& error) {
  std::vector<fs::path> entries;
  for (fs::directory_iterator next(folder, error), end; !error && next != end;
       next.increment(error)) {
    entries.push_back(next->path());
  }
  return entries;
}

// A phone's directory: it holds a phone's files, or nothing but what a first start makes, which
// makes the lock first. An empty one can become one.
bool MayBePhones(const fs::path& root) {
  static const std::set<fs::path> kMade = {"commands", "config", "lock", "tmp"};
  std::error_code error;
  for (const char* file : {"call_data.xml", "broadsoft_calllog_list.xml"}) {
    if (fs::exists(fs::symlink_status(root / "config/data" / file, error))) return true;
  }
  const std::vector<fs::path> entries = EntriesOf(root, error);
  if (error) throw Unusable(root, error.message());
  const bool others = std::any_of(entries.begin(), entries.end(), [](const fs::path& entry) {
    return kMade.count(entry.filename()) == 0;
  });
  return entries.empty() || (!others && fs::is_regular_file(fs::symlink_status(root / "lock")));
}

void Make(const fs::path& root, const fs::path& folder) {
  std::error_code error;
  fs::create_directories(root / folder, error);
  if (error) throw Unusable(root, error.message());
}

// Takes from other users what they may do with it. True when that was something.
bool Close(const fs::path& path, std::error_code& error) {
  const fs::perms permissions = fs::symlink_status(path, error).permissions();
  if (error || (permissions & kOthers) == fs::perms::none) return false;
  fs::permissions(path, kOthers, fs::perm_options::remove, error);
  return !error;
}

void CloseIfFile(const fs::path& path) {
  std::error_code ignored;
  if (fs::is_regular_file(fs::symlink_status(path, ignored))) Close(path, ignored);
}

// With the files in it, but for links, which may lead anywhere. False for what is no folder itself.
bool CloseFolder(const fs::path& folder) {
  std::error_code ignored;
  if (!fs::is_directory(fs::symlink_status(folder, ignored))) return false;
  Close(folder, ignored);
  for (const fs::path& entry : EntriesOf(folder, ignored)) CloseIfFile(entry);
  return true;
}

// What stands there may be what others have put there as long as they could: a link, or a file of
// theirs, leads the calls and passwords to them.
void RefuseForeign(const fs::path& root) {
  std::error_code ignored;
  std::vector<fs::path> entries = EntriesOf(root / "config/data", ignored);
  for (const char* own : {"lock", "config", "tmp", "config/data"}) entries.push_back(root / own);
  for (const fs::path& entry : entries) {
    struct stat status = {};
    if (lstat(entry.c_str(), &status) != 0) continue;
    if (!S_ISLNK(status.st_mode) && status.st_uid == geteuid()) continue;
    throw Unusable(root, "others could write there, and " +
                             entry.lexically_relative(root).string() +
                             " is a link or belongs to another user");
  }
}

// The documents that transfers have fetched are for nobody else. In a folder that is no link.
void RemoveFetched(const fs::path& folder) {
  std::error_code ignored;
  if (!fs::is_directory(fs::symlink_status(folder, ignored))) return;
  const fs::path document = folder / "BroadSoftCallLog.xml";
  fs::remove(document, ignored);
  PrivateFile::RemoveLeft(document);
}

// The root comes first: behind it nobody else can get at what is in it. True when it was open.
bool CloseRoot(const fs::path& root) {
  std::error_code error;
  const fs::perms before = fs::status(root, error).permissions();
  const bool wasOpen = Close(root / ".", error);
  if (error) throw Unusable(root, "it stays open to other users: " + error.message());
  const fs::perms writable = fs::perms::group_write | fs::perms::others_write;
  if ((before & writable) != fs::perms::none) RefuseForeign(root);
  for (const char* file : {"lock", "commands"}) CloseIfFile(root / file);
  if (CloseFolder(root / "config")) CloseFolder(root / "config/data");
  CloseFolder(root / "tmp");
  RemoveFetched(root / "tmp");
  return wasOpen;
}

}  // namespace

void RootDirectory::Lock::Take(const fs::path& root) {
  file_ = open((root / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (file_ < 0) throw Unusable(root, std::strerror(errno));
  if (flock(file_, LOCK_EX | LOCK_NB) != 0) throw Unusable(root, "another phone is running there");
}

RootDirectory::RootDirectory(const fs::path& path) {
  std::error_code error;
  before_ = fs::current_path(error);
  path_ = fs::absolute(path, error);
  const bool isOld = fs::is_directory(path_, error) && !fs::is_empty(path_, error);
  if (fs::exists(path_, error) && !MayBePhones(path_)) {
    throw Unusable(path_,
                   "it holds other files and no phone; name a new directory or an empty one");
  }
  Make(path_, "");
  lock_.Take(path_);  // before anything else is made: with it the directory is a phone's
  Make(path_, "config/data");
  Make(path_, "tmp");
  wasOpen_ = CloseRoot(path_) && isOld;
  fs::current_path(path_, error);
  if (error) throw Unusable(path_, error.message());
}

RootDirectory::~RootDirectory() {
  std::error_code ignored;
  RemoveFetched(path_ / "tmp");
  fs::current_path(before_, ignored);
}

fs::path RootDirectory::Default() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && *state == '/') return fs::path(state) / "deskphone";
  const char* const home = std::getenv("HOME");
  return fs::path(home != nullptr ? home : ".") / ".local/state/deskphone";
}

}  // namespace desk
