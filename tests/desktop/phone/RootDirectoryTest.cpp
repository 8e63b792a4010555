// A phone's root directory: who can read what is in it, and which directories it takes.
#include "desktop/phone/RootDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <sstream>

#include "desktop/console/Console.h"
#include "desktop/console/Script.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

namespace fs = std::filesystem;

using Modes = std::map<std::string, std::string>;

class RootDirectoryTest : public testing::Test {
 protected:
  RootDirectoryTest() { umask(0); }

  // What the phone says when it starts there, and for a call that it saves.
  static std::string Start(const fs::path& root) {
    std::ostringstream out;
    std::istringstream lines("call missed 1\nsource 0 server=h password=secret\nsave\n");
    Profile profile;
    profile.config = {{"HistorySavedSwitch", 1}};
    Phone phone(root, profile, std::make_unique<ManualClock>(0));
    Console console{phone, out};
    ReportNews(console);
    const std::string said = out.str();
    RunScript(console, lines, "script", out);
    return said;
  }

  static std::string Mode(const fs::path& path) {
    std::ostringstream mode;
    mode << std::oct << static_cast<int>(fs::symlink_status(path).permissions());
    return mode.str();
  }

  // Everything in a directory and the directory itself.
  static Modes ModesOf(const fs::path& directory) {
    Modes modes = {{".", Mode(directory)}};
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
      modes[entry.path().lexically_relative(directory)] = Mode(entry.path());
    }
    return modes;
  }

  static void Write(const fs::path& file, const std::string& bytes) {
    fs::create_directories(file.parent_path());
    WriteFile(file, bytes);
  }

  TemporaryDirectory work;
  const fs::path root = work.path() / "phone";
};

TEST_F(RootDirectoryTest, WhatThePhoneMakesIsItsUsersAlone) {
  const Modes expected = {{".", "700"},
                          {"config", "700"},
                          {"config/data", "700"},
                          {"config/data/broadsoft_calllog_list.xml", "600"},
                          {"config/data/call_data.xml", "600"},
                          {"config/data/call_data.xml.good", "600"},
                          {"lock", "600"},
                          {"tmp", "700"}};
  for (const bool isThere : {false, true}) {
    fs::remove_all(root);
    if (isThere) fs::create_directory(root);
    EXPECT_EQ(Start(root), "");
    EXPECT_EQ(ModesOf(root), expected);
    EXPECT_EQ(umask(0), 0u) << "another phone's, or nobody's, afterwards";
  }
  EXPECT_EQ(Start(work.path() / "a/b/phone/"), "");
  EXPECT_EQ(Mode(work.path() / "a/b"), "700");
}

TEST_F(RootDirectoryTest, AnOlderDirectoryIsClosedToOthersAndTidied) {
  const fs::path others = work.path() / "others";
  Write(others / "file", "");
  Write(others / "data/file", "");
  Write(others / "data/call_data.xml", "");
  Start(root);
  for (const char* file : {"config/data/call_data.xml.aside-1", "config/file", "commands",
                           "tmp/BroadSoftCallLog.xml"}) {
    Write(root / file, "");
  }
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    fs::permissions(entry, fs::perms::all);
  }
  fs::permissions(root, fs::perms(0755));
  Write(root / "mine/file", "");
  for (const char* left : {"tmp/.BroadSoftCallLog.xml-aB3dE6", "tmp/.BroadSoftCallLog.xml-longer0",
                           "tmp/BroadSoftCallLog.xml-aB3dE6"}) {
    Write(root / left, "");
  }
  fs::create_directory(root / "tmp/.BroadSoftCallLog.xml-folder");
  fs::create_symlink(others / "file", root / "tmp/.BroadSoftCallLog.xml-linked");
  fs::create_symlink(others / "file", root / "config/data/link");
  fs::create_directory_symlink(others, root / "config/data/others");
  const Modes before = ModesOf(others);

  EXPECT_EQ(Start(root), "  * other users could read this phone's files; now only you can\n");
  for (const auto& [name, mode] : ModesOf(root)) {
    const bool isOpen = name.rfind("mine", 0) == 0 || name.find("-folder") != name.npos ||
                        fs::is_symlink(root / name);
    EXPECT_EQ(mode.substr(mode.size() - 2) != "00", isOpen) << name << " " << mode;
  }
  EXPECT_FALSE(fs::exists(root / "tmp/.BroadSoftCallLog.xml-aB3dE6"));
  EXPECT_EQ(std::distance(fs::directory_iterator(root / "tmp"), {}), 5);
  EXPECT_EQ(ModesOf(others), before);
  EXPECT_EQ(Start(root), "") << "it is told once";

  // Links in the place of its own directories.
  for (const char* folder : {"config", "tmp"}) {
    fs::remove_all(root / folder);
    fs::create_directory_symlink(others, root / folder);
  }
  Write(others / ".BroadSoftCallLog.xml-aB3dE6", "another phone's");
  const Modes beforeLinks = ModesOf(others);
  { const RootDirectory linked(root); }
  EXPECT_EQ(ModesOf(others), beforeLinks);
}

TEST_F(RootDirectoryTest, RefusesADirectoryWithOtherFiles) {
  const std::pair<const char*, bool> rows[] = {
      {"thesis.txt", false},
      {"lock/file", false},
      {"config/file", false},
      {"config/data/db.yml", false},
      {"lock", true},
      {"config/data/call_data.xml", true},
      {"config/data/broadsoft_calllog_list.xml", true},
  };
  for (const auto& [file, taken] : rows) {
    SCOPED_TRACE(file);
    fs::remove_all(root);
    Write(root / file, "");
    const Modes before = ModesOf(root);
    std::string error;
    try {
      const RootDirectory ours(root);
    } catch (const RootError& refused) {
      error = refused.what();
    }
    if (taken) {
      EXPECT_EQ(error, "");
    } else {
      EXPECT_EQ(error, "cannot use " + root.string() +
                           ": it holds other files and no phone; name a new directory or an "
                           "empty one");
      EXPECT_EQ(ModesOf(root), before);
    }
  }
}

// As long as others could write there, they could lead what the phone writes to themselves.
TEST_F(RootDirectoryTest, WhatOthersMayHavePutThereIsNotUsed) {
  const char* const kEntries[] = {"lock",
                                  "config",
                                  "config/data",
                                  "tmp",
                                  "config/data/call_data.xml",
                                  "config/data/broadsoft_calllog_list.xml"};
  constexpr uid_t kSomebody = 65534;
  for (const char* const entry : kEntries) {
    for (const bool linked : {true, false}) {
      if (!linked && geteuid() != 0) continue;  // who may give files away
      SCOPED_TRACE(entry + std::string(linked ? " is a link" : " is another user's"));
      fs::remove_all(root);
      Start(root);
      if (linked) {
        fs::rename(root / entry, work.path() / "elsewhere");
        fs::create_symlink(work.path() / "elsewhere", root / entry);
      } else {
        ASSERT_EQ(chown((root / entry).c_str(), kSomebody, kSomebody), 0);
      }
      fs::permissions(root, fs::perms::all);
      EXPECT_THROW(RootDirectory ours(root), RootError);
      fs::remove_all(work.path() / "elsewhere");
    }
  }
}

}  // namespace
}  // namespace desk
