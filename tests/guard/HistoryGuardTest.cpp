// The guard of the history file, with the module that it guards: files in every state, saves and
// loads that fail, and what of 399 calls is there after the next start.
#include "guard/HistoryGuard.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>
#include <functional>
#include <map>
#include <optional>

#include "guard/RestartHistory.h"
#include "tests/support/PhoneTest.h"
#include "tests/support/PlainModel.h"

namespace desk {
namespace {

namespace fs = std::filesystem;
using NS_CALLLOG::CCallLogController;
using NS_GUARD::HistoryGuard;
using NS_GUARD::RestartHistory;
using Outcome = HistoryGuard::Outcome;

// Lets everything that needs the resource fail while it lives: RLIMIT_FSIZE each write,
// RLIMIT_NOFILE each open. UndefinedBehaviorSanitizer opens a pipe when it meets a class for the
// first time, so a start without files is never a test's first.
class Without {
 public:
  explicit Without(__rlimit_resource resource) : resource_(resource) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(resource_, &before_);
    const rlimit none = {0, before_.rlim_max};
    setrlimit(resource_, &none);
  }
  ~Without() { setrlimit(resource_, &before_); }
  Without(const Without&) = delete;
  Without& operator=(const Without&) = delete;

 private:
  const __rlimit_resource resource_;
  rlimit before_{};
};

class HistoryGuardTest : public PhoneTest {
 protected:
  // What stands in config/data/: for each ending of "call_data.xml" the calls in the file, -1 for
  // what is no file.
  using Files = std::map<std::string, int>;

  static constexpr int kCalls = 399;  // a hundred of each type, but one

  HistoryGuardTest() {
    PlainCalls calls;
    for (int i = 0; i < kCalls; ++i) {
      PlainCall& call = calls.emplace_back();
      call.type = 1 + i % 4;
      call.born_tick = kNow - i;
      call.remote_sip_name = std::to_string(i);
    }
    whole = FileText(calls);
  }

  fs::path Beside(const std::string& ending) const { return HistoryFile().string() + ending; }
  fs::path Good() const { return Beside(".good"); }

  Files Found() const {
    Files found;
    for (const auto& entry : fs::directory_iterator(HistoryFile().parent_path())) {
      const bool isFile = fs::is_regular_file(entry.symlink_status());
      const std::string text = isFile ? ReadFile(entry.path()) : "";
      int calls = isFile ? 0 : -1;
      for (auto at = text.find("<item"); at != text.npos; at = text.find("<item", at + 1)) ++calls;
      found[entry.path().filename().string().substr(HistoryFile().filename().string().size())] =
          calls;
    }
    return found;
  }

  // The whole directory anew: the history file and its good copy, where there is one.
  void Lay(const std::optional<std::string>& history, const std::optional<std::string>& good) {
    fs::remove_all(HistoryFile().parent_path());
    fs::create_directory(HistoryFile().parent_path());
    if (history) WriteFile(HistoryFile(), *history);
    if (good) WriteFile(Good(), *good);
  }

  // The power is cut, and a new process starts.
  Outcome Start(const HistoryGuard::ModuleStart& startModule = RestartHistory) {
    CCallLogController::ReleaseInstance();
    platform->PowerCycle();
    guard.emplace(HistoryFile());
    return guard->Start(startModule);
  }

  Outcome StartWithout(__rlimit_resource resource) {
    const Without without(resource);
    return Start();
  }

  static void Save() {
    Add(4, "77");
    EXPECT_EQ(Controller().SaveToFile(), 1);
  }

  Outcome SaveAndTell() {
    Save();
    return guard->AfterSave();
  }

  // So many calls are there; the next one is saved, and is there with them after the next start.
  void ExpectGoesOn(int calls) {
    EXPECT_EQ(Size(), calls);
    EXPECT_EQ(SaveAndTell(), Outcome::kGood);
    EXPECT_EQ(ReadFile(Good()), ReadFile(HistoryFile()));
    EXPECT_FALSE(fs::equivalent(Good(), HistoryFile()));
    EXPECT_EQ(Start(), Outcome::kGood);
    EXPECT_EQ(Size(), calls + 1);
  }

  std::string whole;
  std::optional<HistoryGuard> guard;
};

TEST_F(HistoryGuardTest, AnswersGoodWithoutAFault) {
  EXPECT_EQ(Start(), Outcome::kGood);
  EXPECT_EQ(Found(), Files());
  Lay(whole, whole);
  fs::create_directories(Beside(".good.new") / "a");
  EXPECT_EQ(Start(), Outcome::kGood);
  EXPECT_EQ(Found(), (Files{{"", kCalls}, {".good", kCalls}}));
  ExpectGoesOn(kCalls);
  Save();
  EXPECT_EQ(Start(), Outcome::kGood) << "the power went before the guard was told";
  EXPECT_EQ(ReadFile(Good()), ReadFile(HistoryFile()));
  Controller().RemoveAllLogsByClickAction(Action(0));
  EXPECT_EQ(Controller().SaveToFile(), 1);
  EXPECT_EQ(guard->AfterSave(), Outcome::kGood);
  EXPECT_EQ(Start(), Outcome::kGood);
  EXPECT_EQ(Found(), (Files{{"", 0}, {".good", 0}})) << "the user wanted it empty";

  std::string items;
  for (int i = 0; i < 150; ++i) items += i < 145 ? "<item type='2'/>" : "<item type='77'/>";
  Lay("<root_call_log>" + items + "</root_call_log>", {});
  EXPECT_EQ(Start(), Outcome::kGood);
  ExpectGoesOn(105);  // the module keeps a hundred of a type
}

TEST_F(HistoryGuardTest, PutsTheGoodCopyBack) {
  const fs::path file = HistoryFile();
  const auto link = [&](const char* to) { return [=] { fs::create_symlink(to, file); }; };
  const auto bytes = [&](const std::string& text) { return [=] { WriteFile(file, text); }; };
  const struct {
    const char* what;
    std::function<void()> make;
    int aside;
  } rows[] = {
      {"empty", bytes(""), 0},
      {"cut", bytes(whole.substr(0, whole.size() - 20)), kCalls},
      {"another root", bytes("<calls><item/></calls>"), 1},
      {"directory", [&] { fs::create_directories(file / "a"); }, -1},
      {"FIFO", [&] { ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); }, -1},
      {"link to nothing", link("nothing"), -1},
      {"link to itself", link("call_data.xml"), -1},
      {"link to the good copy", link("call_data.xml.good"), -1},
      {"the good copy itself", [&] { fs::create_hard_link(Good(), file); }, kCalls},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Lay({}, whole);
    row.make();
    EXPECT_EQ(Start(), Outcome::kPutBack);
    EXPECT_EQ(Found(), (Files{{"", kCalls}, {".good", kCalls}, {".aside-1", row.aside}}));
    ExpectGoesOn(kCalls);
  }
  Lay({}, whole);
  EXPECT_EQ(Start(), Outcome::kPutBack);
  EXPECT_EQ(Found(), (Files{{"", kCalls}, {".good", kCalls}}));
}

TEST_F(HistoryGuardTest, BeginsAnewWhereNothingIsComplete) {
  Lay("<cut", "<broken");
  EXPECT_EQ(Start(), Outcome::kSetAside);
  EXPECT_EQ(ReadFile(Beside(".aside-1")), "<cut");
  EXPECT_EQ(ReadFile(Beside(".aside-2")), "<broken");
  ExpectGoesOn(0);

  // The oldest goes, be it what it may.
  Lay({}, whole);
  fs::create_directories(HistoryFile() / "first");
  EXPECT_EQ(Start(), Outcome::kPutBack);
  for (const char* text : {"<second", "<third"}) {
    WriteFile(HistoryFile(), text);
    EXPECT_EQ(Start(), Outcome::kPutBack);
  }
  EXPECT_EQ(Found().size(), 4u);
  EXPECT_EQ(ReadFile(Beside(".aside-1")), "<third");
  EXPECT_EQ(ReadFile(Beside(".aside-2")), "<second");

  // A good copy that is a link to the history file is none.
  Lay(whole, {});
  fs::create_symlink(HistoryFile(), Good());
  EXPECT_EQ(Start(), Outcome::kGood);
  ExpectGoesOn(kCalls);
}

TEST_F(HistoryGuardTest, StartsTheModuleAgainThatLoadedTooLittle) {
  int failures = 2;
  const auto startModule = [&] {
    if (failures-- <= 0) return RestartHistory();
    const Without without(RLIMIT_NOFILE);
    return RestartHistory();
  };
  Lay(whole, {});
  EXPECT_EQ(Start(startModule), Outcome::kGood);
  ExpectGoesOn(kCalls);

  Lay(whole, {});
  for (int run = 0; run < 2; ++run) {
    failures = 3;
    EXPECT_EQ(Start(startModule), Outcome::kHeld);
    EXPECT_EQ(SaveAndTell(), Outcome::kNotCounted);
    EXPECT_EQ(Found()[""], 1);
    EXPECT_EQ(Found()[".held"], kCalls);
  }
  EXPECT_EQ(Start(), Outcome::kPutBack);
  EXPECT_EQ(Found(), (Files{{"", kCalls}, {".good", kCalls}, {".aside-1", 1}, {".aside-2", 1}}));
  ExpectGoesOn(kCalls);
  EXPECT_EQ(Start([] { return RestartHistory() - 1; }), Outcome::kHeld) << "one call is missing";
  EXPECT_EQ(Start([&] { return WriteFile(Beside(".held"), ""), RestartHistory(); }),
            Outcome::kHeld);
}

TEST_F(HistoryGuardTest, HoldsOnceWhatCannotBeRead) {
  Lay("<root_call_log><item/></root_call_log>", whole);
  WriteFile(Beside(".held"), "<");
  EXPECT_EQ(Start(), Outcome::kPutBack);
  EXPECT_EQ(Found(), (Files{{"", kCalls}, {".good", kCalls}, {".aside-1", 0}, {".aside-2", 1}}));
  ExpectGoesOn(kCalls);

  Lay(whole, whole);
  EXPECT_EQ(StartWithout(RLIMIT_NOFILE), Outcome::kHeld);
  Save();
  EXPECT_EQ(Start(), Outcome::kPutBack);
  ExpectGoesOn(kCalls);
  Lay(whole, {});
  EXPECT_EQ(StartWithout(RLIMIT_NOFILE), Outcome::kHeld);
  EXPECT_EQ(StartWithout(RLIMIT_NOFILE), Outcome::kSetAside) << "it will not be read any more";
  ExpectGoesOn(0);

  // Its directory is not there yet.
  const fs::path directory = HistoryFile().parent_path();
  const fs::path away = root.path() / "config/away";
  Lay(whole, whole);
  fs::rename(directory, away);
  WriteFile(directory, "no directory");
  EXPECT_EQ(Start(), Outcome::kHeld);
  EXPECT_EQ(SaveAndTell(), Outcome::kIncomplete);
  fs::remove(directory);
  fs::rename(away, directory);
  EXPECT_EQ(SaveAndTell(), Outcome::kNotCounted);
  EXPECT_EQ(Start(), Outcome::kPutBack);
  ExpectGoesOn(kCalls);
}

TEST_F(HistoryGuardTest, MakesTheFileItselfTheGoodCopyWhereThereIsNoRoomForTwo) {
  EXPECT_EQ(Start(), Outcome::kGood);
  Save();
  {
    const Without without(RLIMIT_FSIZE);
    EXPECT_EQ(guard->AfterSave(), Outcome::kGood);
  }
  EXPECT_EQ(Found(), (Files{{".good", 1}}));
  EXPECT_EQ(Start(), Outcome::kPutBack);
  EXPECT_EQ(Size(), 1);
}

TEST_F(HistoryGuardTest, SaysWhereNoCopyCanStand) {
  EXPECT_EQ(Start(), Outcome::kGood);
  Save();
  fs::create_directories(Good() / "a");
  EXPECT_EQ(SaveAndTell(), Outcome::kNotCopied);
  EXPECT_EQ(Start(), Outcome::kGood);
  EXPECT_EQ(Found()[".good"], 2);
}

TEST_F(HistoryGuardTest, CountsNoSaveWithoutAStart) {
  Lay(whole, whole);
  guard.emplace(HistoryFile());
  EXPECT_EQ(SaveAndTell(), Outcome::kNotCounted);
  EXPECT_EQ(Start(), Outcome::kPutBack);
  EXPECT_EQ(Size(), kCalls);
}

}  // namespace
}  // namespace desk
