// A phone's root directory: who can read what is in it, and which directories it takes.
#include "desktop/phone/RootDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <map>
#include <sstream>

#include "desktop/console/Commands.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

namespace fs = std::filesystem;

using Modes = std::map<std::string, fs::perms>;
constexpr fs::perms kFolder = fs::perms::owner_all;
constexpr fs::perms kFile = fs::perms::owner_read | fs::perms::owner_write;
constexpr uid_t kNobody = 65534;

class RootDirectoryTest : public testing::Test {
 protected:
  RootDirectoryTest() { umask(0); }

  // What the phone says when it starts there. It has a call to save, and a source.
  static std::string Start(const fs::path& root) {
    std::ostringstream out;
    Phone phone(root, Profile(), std::make_unique<ManualClock>(0));
    Console console{phone, out};
    ReportNews(console);
    const std::string said = out.str();
    RunCommand(console, "call missed 1");
    RunCommand(console, "source 0 server=h password=secret");
    return said;
  }

  // Why the directory is refused; empty: it is taken.
  std::string Refusal() const {
    try {
      const RootDirectory ours(root);
      return "";
    } catch (const RootError& error) {
      return error.what();
    }
  }

  // Everything in a directory and the directory itself.
  static Modes ModesOf(const fs::path& directory) {
    Modes modes = {{".", fs::status(directory).permissions()}};
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
      modes[entry.path().lexically_relative(directory)] = entry.symlink_status().permissions();
    }
    return modes;
  }

  static void Write(const fs::path& file) {
    fs::create_directories(file.parent_path());
    WriteFile(file, "");
  }

  TemporaryDirectory work;
  const fs::path root = work.path() / "phone";
  const fs::path others = work.path() / "others";
};

const Modes kPrivate = {{".", kFolder},
                        {"config", kFolder},
                        {"config/data", kFolder},
                        {"config/data/broadsoft_calllog_list.xml", kFile},
                        {"config/data/call_data.xml", kFile},
                        {"config/data/call_data.xml.good", kFile},
                        {"lock", kFile},
                        {"tmp", kFolder}};

TEST_F(RootDirectoryTest, WhatThePhoneMakesIsItsUsersAlone) {
  for (const bool isThere : {false, true}) {
    fs::remove_all(root);
    if (isThere) fs::create_directory(root);
    EXPECT_EQ(Start(root), "");
    EXPECT_EQ(ModesOf(root), kPrivate);
    EXPECT_EQ(umask(0), 0u) << "another phone's, or nobody's, afterwards";
  }
  EXPECT_EQ(Start(work.path() / "a/b/phone/"), "");
  EXPECT_EQ(ModesOf(work.path() / "a")["b"], kFolder);
}

TEST_F(RootDirectoryTest, AnOlderDirectoryIsClosedToOthers) {
  Start(root);
  for (const char* file : {"config/file", "commands", "tmp/file"}) Write(root / file);
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    fs::permissions(entry, fs::perms::all);
  }
  fs::permissions(root, fs::perms(0755));
  Write(root / "mine/file");
  EXPECT_EQ(Start(root), "  * other users could read this phone's files; now only you can\n");
  for (const auto& [name, mode] : ModesOf(root)) {
    const bool isOpen = (mode & ~fs::perms::owner_all) != fs::perms::none;
    EXPECT_EQ(isOpen, name.rfind("mine", 0) == 0) << name;
  }
  EXPECT_EQ(Start(root), "") << "it is told once";
}

TEST_F(RootDirectoryTest, WhatATransferHasLeftGoes) {
  const fs::path left = root / "tmp/.BroadSoftCallLog.xml-aB3dE6";
  const fs::path fetched = root / "tmp/BroadSoftCallLog.xml";
  for (const fs::path& file : {left, fetched, root / "tmp/.BroadSoftCallLog.xml-longer0",
                               root / "tmp/BroadSoftCallLog.xml-aB3dE6", root / "lock"}) {
    Write(file);
  }
  EXPECT_EQ(Refusal(), "");
  EXPECT_FALSE(fs::exists(left));
  EXPECT_FALSE(fs::exists(fetched));
  EXPECT_EQ(std::distance(fs::directory_iterator(root / "tmp"), {}), 2);
}

TEST_F(RootDirectoryTest, LinksAreNotFollowed) {
  for (const char* file : {"data/file", ".BroadSoftCallLog.xml-aB3dE6", "BroadSoftCallLog.xml"}) {
    Write(others / file);
  }
  const Modes before = ModesOf(others);
  EXPECT_EQ(Refusal(), "");
  for (const char* link : {"commands", "config/data/link", "tmp/.BroadSoftCallLog.xml-linked"}) {
    fs::create_symlink(others / "data/file", root / link);
  }
  EXPECT_EQ(Refusal(), "");
  for (const char* folder : {"config", "tmp"}) {
    fs::remove_all(root / folder);
    fs::create_directory_symlink(others, root / folder);
  }
  EXPECT_EQ(Refusal(), "");
  EXPECT_EQ(ModesOf(others), before);
}

TEST_F(RootDirectoryTest, RefusesADirectoryWithOtherFiles) {
  for (const char* file : {"thesis.txt", "lock/file", "config/file", "config/data/db.yml"}) {
    fs::remove_all(root);
    Write(root / file);
    const Modes before = ModesOf(root);
    EXPECT_EQ(Refusal().find("cannot use " + root.string() + ": it holds other files"), 0u);
    EXPECT_EQ(ModesOf(root), before) << file;
  }
}

TEST_F(RootDirectoryTest, TakesAPhonesDirectory) {
  for (const char* file : {"call_data.xml", "broadsoft_calllog_list.xml"}) {
    fs::remove_all(root);
    Write(root / "config/data" / file);
    EXPECT_EQ(Refusal(), "") << file;
  }
}

TEST_F(RootDirectoryTest, RefusesAFileAndAnotherPhonesDirectory) {
  const RootDirectory another(root);
  EXPECT_NE(Refusal(), "");
  EXPECT_THROW(RootDirectory(root / "lock"), RootError);
}

// As long as others could write there, they could lead what the phone writes to themselves.
TEST_F(RootDirectoryTest, WhatOthersMayHavePutThereIsNotUsed) {
  const fs::path elsewhere = work.path() / "elsewhere";
  Start(root);
  for (const auto& [name, mode] : kPrivate) {
    if (name == ".") continue;
    const fs::path entry = root / name;
    fs::rename(entry, elsewhere);
    fs::create_symlink(elsewhere, entry);
    fs::permissions(root, fs::perms(0720));
    EXPECT_NE(Refusal(), "") << name << " is a link";
    fs::remove(entry);
    fs::rename(elsewhere, entry);
    if (chown(entry.c_str(), kNobody, kNobody) != 0) continue;  // who may give files away
    fs::permissions(root, fs::perms(0702));
    EXPECT_NE(Refusal(), "") << name << " is another user's";
    ASSERT_EQ(chown(entry.c_str(), geteuid(), getegid()), 0);
  }
}

}  // namespace
}  // namespace desk
