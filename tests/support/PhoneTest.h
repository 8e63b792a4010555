// What most tests stand on: a directory of their own, the desktop platform with its clock in the
// test's hands, and the module as a UI process meets it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "CallLog.h"
#include "desktop/platform/Platform.h"

namespace desk {

using Strings = std::vector<std::string>;

inline Strings operator+(Strings lines, const Strings& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

// For a long list of short texts.
template <class... Texts>
Strings List(const Texts&... texts) {
  return {texts...};
}

// A fresh directory, gone at the end.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& bytes);
std::string Repeat(const std::string& text, std::size_t count);

// The working directory is the phone's root, with config/data/ in it; the time zone is UTC; the
// clock stands at 2026-10-07 09:00:00; "HistorySavedSwitch" is 1. The module is not yet running:
// the first call of a test starts it.
class PhoneTest : public testing::Test {
 protected:
  static constexpr int kNow = 1791363600;

  PhoneTest();
  ~PhoneTest() override;

  static NS_CALLLOG::CCallLogController& Controller();
  // Releases the module, clears the platform as a reboot does, and creates the module again.
  void PowerCycle();
  // Lets five seconds pass, after which a changed history has been written.
  void WaitForSave();

  // A call with this type, number and time, and otherwise short made-up fields.
  static CallLogAddItemData MakeCall(int type, const std::string& number, int time = kNow);
  static int Add(int type, const std::string& number, int time = kNow);

  static std::string Action(int type);
  // All rows of a list as "display_name"; opens the list, with what that brings about.
  static Strings Names(int type);
  static CallLogDetailData Detail(int type, int row);
  // Number of all calls; they count as seen then.
  static int Size();

  // Journal lines since the last call of this function that begin with one of the prefixes, such as
  // "status", "led", "backlight", "timer", "trace", "register".
  Strings TakeJournal(const Strings& prefixes);

  std::filesystem::path HistoryFile() const { return root.path() / "config/data/call_data.xml"; }

  TemporaryDirectory root;
  std::unique_ptr<Platform> platform;

 private:
  std::filesystem::path startedIn_;
};

}  // namespace desk
