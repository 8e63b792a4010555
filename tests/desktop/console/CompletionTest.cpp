// What Tab offers.
#include "desktop/console/Completion.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

struct Row {
  const char* before;
  std::size_t begin;
  Strings words;
};

class CompletionTest : public testing::Test {
 protected:
  CompletionTest() {
    std::filesystem::create_directories(root.path() / "files/in here");
    std::filesystem::create_directories(root.path() / "files/\x1B[2J");  // which nobody can type
    Profile profile;
    profile.accounts = {Account(0, "100", "sip.example.org")};
    profile.contacts = {{"Anna Berg", {"612", "0171612"}, ""}, {"Bo", {"613"}, ""}};
    phone_ =
        std::make_unique<Phone>(root.path() / "phone", profile, std::make_unique<ManualClock>(0));
  }

  TemporaryDirectory root;
  std::unique_ptr<Phone> phone_;
  std::ostringstream out_;
};

TEST_F(CompletionTest, EachWordIsCompletedToWhatFitsThere) {
  const Row rows[] = {
      {"hang", 0, {"hangup"}},
      {"list fo", 5, {"forwarded"}},
      {"call missed 61", 12, {"612", "613"}},
      {"call missed anna",
       12,
       {"0171612", "612"}},  // the contact's numbers, whatever their beginning
      {"call missed 612 name=A se", 23, {"server="}},
      {"remove ", 7, {"all", "forwarded", "missed", "outgoing", "received"}},
      {"remove missed a", 14, {"all"}},
      {"account 1", 8, {"100@sip.example.org"}},
      {"source 0 ", 9, {"name=", "password=", "port=", "server=", "user="}},
      {"cdr fil", 4, {"files/"}},
      {"cdr files/", 4, {"\"files/in here/"}},
      {"cdr files/i", 4, {"\"files/in here/"}},
      {"cdr \"files/i", 4, {"\"files/in here/"}},
      {"cdr nowhere/", 4, {}},
      {"nothing ", 0, {}},
      {"call 'missed 612", 0, {}},
  };
  const Console console{*phone_, out_, root.path()};
  for (const Row& row : rows) {
    const Completions found = Complete(console, row.before);
    EXPECT_EQ(found.words, row.words) << row.before;
    EXPECT_EQ(found.begin, row.begin) << row.before;
  }
}

}  // namespace
}  // namespace desk
