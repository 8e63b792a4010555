// The desktop phone's profile file, and the accounts it sets up.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "Accounts.h"
#include "Profile.h"

namespace {

using desk::Account;
using desk::LoadProfile;
using desk::Profile;
using desk::ProfileError;

using Numbers = std::vector<std::string>;

class ProfileTest : public testing::Test {
 protected:
  ProfileTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "profile-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~ProfileTest() override { std::filesystem::remove_all(folder_); }

  std::filesystem::path Write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return folder_ / name;
  }

  // What LoadProfile complains about, without the folder's name.
  std::string ErrorOf(const std::filesystem::path& file) const {
    try {
      LoadProfile(file);
    } catch (const ProfileError& error) {
      std::string message = error.what();
      const std::string folder = folder_.string() + "/";
      for (auto at = message.find(folder); at != message.npos; at = message.find(folder)) {
        message.erase(at, folder.size());
      }
      return message;
    }
    return "accepted";
  }

  std::filesystem::path folder_;
};

TEST_F(ProfileTest, ReadsEverySetting) {
  Write("book.vcf", "BEGIN:VCARD\r\nFN:Ελένη\r\nTEL:61 3\r\nEND:VCARD\r\n");
  const Profile profile = LoadProfile(Write("profile.toml", R"(timezone = "Europe/Berlin"
[config]
HistorySavedSwitch = 1
"Any key" = -2147483648
[network]
up = false
[menu]
present = false
[transfer]
max_bytes = 1
connect_seconds = 3600
idle_seconds = 3
total_seconds = 4
max_redirects = 0
[contacts]
vcard = "book.vcf"
[[account]]
id = 7
name = "anna"
server = "sip.example.org"
usable = false
keep_missed = false
[[account]]
name = "anna"
server = "sip.example.com"
[[contact]]
name = "Stéphane Müller"
numbers = ["+44 (1632) 960-101", "612"]
photo = "photos/stephane.png"
)"));
  EXPECT_EQ(profile.timezone, "Europe/Berlin");
  EXPECT_EQ(profile.config,
            (std::map<std::string, int>{{"HistorySavedSwitch", 1}, {"Any key", -2147483647 - 1}}));
  EXPECT_FALSE(profile.network_up);
  EXPECT_FALSE(profile.has_menu);
  EXPECT_EQ(profile.limits.max_bytes, 1);
  EXPECT_EQ(profile.limits.connect_seconds, 3600);
  EXPECT_EQ(profile.limits.idle_seconds, 3);
  EXPECT_EQ(profile.limits.total_seconds, 4);
  EXPECT_EQ(profile.limits.max_redirects, 0);

  ASSERT_EQ(profile.accounts.size(), 2u);
  const Account& first = profile.accounts[0];
  EXPECT_EQ(first.FullName(), "anna@sip.example.org");
  EXPECT_EQ(first.GetAccountId(), 7);
  EXPECT_FALSE(first.IsAccountUsable());
  EXPECT_FALSE(first.IsSaveMissCallLog());
  const Account& second = profile.accounts[1];
  EXPECT_EQ(second.GetAccountId(), 0);
  EXPECT_TRUE(second.IsAccountUsable());
  EXPECT_TRUE(second.IsSaveMissCallLog());

  ASSERT_EQ(profile.contacts.size(), 2u);
  EXPECT_EQ(profile.contacts[0].name, "Stéphane Müller");
  EXPECT_EQ(profile.contacts[0].numbers, (Numbers{"+441632960101", "612"}));
  EXPECT_EQ(profile.contacts[0].photo, "photos/stephane.png");
  EXPECT_EQ(profile.contacts[1].name, "Ελένη");
  EXPECT_EQ(profile.contacts[1].numbers, (Numbers{"613"}));
}

TEST_F(ProfileTest, AnEmptyFileLeavesEverythingAtItsDefault) {
  const Profile profile = LoadProfile(Write("profile.toml", ""));
  EXPECT_EQ(profile.timezone, "");
  EXPECT_TRUE(profile.config.empty() && profile.accounts.empty() && profile.contacts.empty());
  EXPECT_TRUE(profile.network_up);
  EXPECT_TRUE(profile.has_menu);
  EXPECT_EQ(profile.limits.max_bytes, 4194304);
  EXPECT_EQ(profile.limits.connect_seconds, 10);
  EXPECT_EQ(profile.limits.idle_seconds, 15);
  EXPECT_EQ(profile.limits.total_seconds, 60);
  EXPECT_EQ(profile.limits.max_redirects, 5);
}

TEST_F(ProfileTest, NamesTheLineOfWhatIsWrong) {
  const std::string anna = "[[account]]\nid = 1\nname = 'anna'\nserver = 'example.org'\n";
  const struct {
    std::string text;
    const char* error;
  } kRows[] = {
      {"timezone = \n", "1: Error while parsing"},
      {"[config]\na = 1\n\na = 2\n", "4: Error while parsing"},
      {"timezone = '\xE9'\n", "1: "},
      {"\ntime_zone = 'UTC'\n", "2: unknown key \"time_zone\""},
      {"\"a\\nb\" = 1\n", "1: unknown key \"a\\x0Ab\""},
      {"timezone = ''\n[networks]\nup = true\n", "2: unknown table \"networks\""},
      {"\n[[accounts]]\nid = 1\n", "2: unknown table \"accounts\""},
      {"[network]\nup = true\ndown = false\n", "3: unknown key \"down\""},
      {"[menu.present]\n", "1: \"present\" must be true or false, found: table"},
      {anna + "password = 'x'\n", "5: unknown key \"password\""},
      {"[[contact]]\nnumber = '1'\n", "2: unknown key \"number\""},
      {"timezone = 2\n", "1: \"timezone\" must be a string, found: integer"},
      {"network = true\n", "1: \"network\" must be a table, found: boolean"},
      {"[network]\nup = 1\n", "2: \"up\" must be true or false, found: integer"},
      {"[config]\na = 1\nb = true\n", "3: \"b\" must be an integer, found: boolean"},
      {"[config]\na = 1.0\n", "2: \"a\" must be an integer, found: floating-point"},
      {"config = 1\n", "1: \"config\" must be a table, found: integer"},
      {"[config]\na = 2147483648\n", "2: \"a\" must fit into 32 bits"},
      {"[config]\na = -2147483649\n", "2: \"a\" must fit into 32 bits"},
      {"[config]\na = 9223372036854775808\n", "2: Error while parsing"},
      {"[transfer]\nseconds = 1\n", "2: unknown key \"seconds\""},
      {"[transfer]\nmax_bytes = 0\n", "2: \"max_bytes\" must be from 1 to 2147483647"},
      {"[transfer]\nidle_seconds = 3601\n", "2: \"idle_seconds\" must be from 1 to 3600"},
      {"[transfer]\ntotal_seconds = '9'\n", "2: \"total_seconds\" must be an integer"},
      {"[transfer]\nmax_redirects = -1\n", "2: \"max_redirects\" must be from 0 to 50"},
      {"[account]\nid = 1\n", "1: \"account\" must be an array of tables, found: table"},
      {"account = [\n 1]\n", "2: \"account\" must be an array of tables, found: integer"},
      {anna + "usable = 'yes'\n", "5: \"usable\" must be true or false, found: string"},
      {"\n[[account]]\nid = 1\nserver = 'b'\n", "2: an account without a name"},
      {"[[account]]\nname = ''\nserver = 'b'\n", "1: an account without a name"},
      {"[[account]]\nname = 'a'\n", "1: an account without a server"},
      {"[[account]]\nid = -1\nname = 'a'\nserver = 'b'\n", "1: an account id below 0"},
      {anna + "\n[[account]]\nid = 1\nname = 'bob'\nserver = 'b'\n",
       "6: a second account with id 1"},
      {anna + "[[account]]\nid = 2\nname = 'anna'\nserver = 'example.org'\n",
       "5: a second account anna@example.org"},
      {"[[contact]]\nnumbers = ['1']\n", "1: a contact without a name"},
      {"\n[[contact]]\nname = 'a'\n", "2: a contact without a number"},
      {"[[contact]]\nname = 'a'\nnumbers = []\n", "1: a contact without a number"},
      {"[[contact]]\nname = 'a'\nnumbers = [\n'1',\n' - ']\n", "5: \" - \" is no number"},
      {"[[contact]]\nname = 'a'\nnumbers = ['1', 2]\n", "3: \"numbers\" must be a string"},
      {"[[contact]]\nname = 'a'\nnumbers = '1'\n", "3: \"numbers\" must be an array of strings"},
      {"[contacts]\n\nvcard = 'none.vcf'\n", "3: cannot read none.vcf: No such file"},
      {"[contacts]\nvcard = '.'\n", "2: cannot read .: Is a directory"},
      {"[contacts]\nvcard = ['a']\n", "2: \"vcard\" must be a string, found: array"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    const std::string error = ErrorOf(Write("profile.toml", row.text));
    EXPECT_EQ(error.rfind(std::string("profile.toml:") + row.error, 0), 0u) << error;
    EXPECT_EQ(error.find('\n'), error.npos) << error;
  }
}

TEST_F(ProfileTest, NamesTheFileThatIsWrong) {
  Write("book.vcf", "BEGIN:VCARD\nFN:A\nTEL 1\nEND:VCARD\n");
  EXPECT_EQ(ErrorOf(Write("profile.toml", "[contacts]\nvcard = 'book.vcf'\n")),
            "book.vcf:3: neither a property nor END:VCARD");
  EXPECT_EQ(ErrorOf(folder_ / "none.toml"), "none.toml: No such file or directory");
  EXPECT_EQ(ErrorOf(folder_ / "."), ".: Is a directory");
}

TEST_F(ProfileTest, LoadsTheDemo) {
  const auto tests = std::filesystem::path(__FILE__).parent_path();
  const Profile profile = LoadProfile(tests / ".." / "host" / "demo" / "profile.toml");
  EXPECT_EQ(profile.accounts.size(), 2u);
  EXPECT_EQ(profile.contacts.size(), 10u);
}

TEST(AccountsTest, FindsByFullNameOrFirstSipName) {
  desk::Accounts accounts({{0, "anna", "a.example.org"},
                           {1, "anna", "b.example.org"},
                           {2, "anna@a.example.org", "c.example.org"}});
  EXPECT_EQ(accounts.FindByFullName("anna@b.example.org"), &accounts.All()[1]);
  EXPECT_EQ(accounts.FindByFullName("anna"), nullptr);
  EXPECT_EQ(accounts.FindBySipName("anna"), &accounts.All()[0]);
  EXPECT_EQ(accounts.FindBySipName("anna@b.example.org"), nullptr);
  EXPECT_EQ(accounts.Find("anna@a.example.org"), &accounts.All()[0]);
  EXPECT_EQ(accounts.Find("anna"), &accounts.All()[0]);
  EXPECT_EQ(accounts.Find("an"), nullptr);

  accounts.Find("anna@b.example.org")->usable = false;
  accounts.Find("anna")->keeps_missed = false;
  EXPECT_FALSE(accounts.All()[1].IsAccountUsable());
  EXPECT_TRUE(accounts.All()[0].IsAccountUsable());
  EXPECT_FALSE(accounts.All()[0].IsSaveMissCallLog());
}

}  // namespace
