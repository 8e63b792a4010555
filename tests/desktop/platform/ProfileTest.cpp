// The desktop phone's profile file, and the accounts it sets up.
#include "desktop/platform/Profile.h"

#include <stdexcept>

#include "desktop/platform/Accounts.h"
#include "desktop/platform/Text.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

// The working directory holds the profile and its address book.
class ProfileTest : public PhoneTest {
 protected:
  static std::string ErrorOf(const std::string& file) {
    try {
      LoadProfile(file);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "accepted";
  }

  // Each setting and entry by itself.
  static Strings Shown(const Profile& profile) {
    const TransferLimits& limits = profile.limits;
    Strings shown = {
        profile.timezone + Format(" %d %d", profile.network_up, profile.has_menu),
        Format("%d %d %d ", limits.max_bytes, limits.connect_seconds, limits.idle_seconds) +
            Format("%d %d ", limits.total_seconds, limits.max_redirects) + limits.ca_file};
    for (const auto& [key, value] : profile.config) shown.push_back(key + Format("=%d", value));
    for (const Account& account : profile.accounts) {
      shown.push_back(account.FullName() + Format(" %d %d %d", account.GetAccountId(),
                                                  account.IsAccountUsable(),
                                                  account.IsSaveMissCallLog()));
    }
    for (const Contact& contact : profile.contacts) {
      shown.push_back(contact.name + "|" + contact.photo);
      shown = shown + contact.numbers;
    }
    return shown;
  }
};

constexpr char kEverySetting[] = R"(timezone = "Europe/Berlin"
network.up = false
menu.present = false
contacts.vcard = "book.vcf"
config = {HistorySavedSwitch = 0, "Any key" = -2147483648}
[transfer]
max_bytes = 1
connect_seconds = 3600
idle_seconds = 3
total_seconds = 4
max_redirects = 0
ca_file = "ca.pem"
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
)";

TEST_F(ProfileTest, ReadsEverySetting) {
  WriteFile("book.vcf", "BEGIN:VCARD\r\nFN:Ελένη\r\nTEL:61 3\r\nEND:VCARD\r\n");
  WriteFile("ca.pem", "-----BEGIN CERTIFICATE-----\n");
  WriteFile("profile.toml", kEverySetting);
  EXPECT_EQ(
      Shown(LoadProfile("profile.toml")),
      (Strings{"Europe/Berlin 0 0", "1 3600 3 4 0 " + (root.path() / "ca.pem").string(),
               "Any key=-2147483648", "BDDirectoryShowSwitch=1", "HistorySavedSwitch=0",
               "anna@sip.example.org 7 0 0", "anna@sip.example.com 0 1 1",
               "Stéphane Müller|photos/stephane.png", "+441632960101", "612", "Ελένη|", "613"}));
}

TEST_F(ProfileTest, AnEmptyFileLeavesEverythingAtItsDefault) {
  WriteFile("profile.toml", "");
  EXPECT_EQ(
      Shown(LoadProfile("profile.toml")),
      (Strings{" 1 1", "4194304 10 15 60 5 ", "BDDirectoryShowSwitch=1", "HistorySavedSwitch=1"}));
}

const std::string kAnna = "[[account]]\nid = 1\nname = 'anna'\nserver = 'example.org'\n";

const struct {
  std::string text;
  const char* error;
} kWrong[] = {
    {"timezone = \n", "1: Error while parsing"},
    {"[config]\na = 1\n\na = 2\n", "4: Error while parsing"},
    {"timezone = '\xE9'\n", "1: "},
    {"\ntime_zone = 'UTC'\n", "2: unknown key \"time_zone\""},
    {"\"a\\nb\" = 1\n", "1: unknown key \"a\\x0Ab\""},
    {"timezone = ''\n[networks]\nup = true\n", "2: unknown table \"networks\""},
    {"\n[[accounts]]\nid = 1\n", "2: unknown table \"accounts\""},
    {"[network]\nup = true\ndown = false\n", "3: unknown key \"down\""},
    {kAnna + "password = 'x'\n", "5: unknown key \"password\""},
    {"timezone = 2\n", "1: \"timezone\" must be a string, found: integer"},
    {"network = true\n", "1: \"network\" must be a table, found: boolean"},
    {"[network]\nup = 1\n", "2: \"up\" must be true or false, found: integer"},
    {"[config]\na = 1\nb = true\n", "3: \"b\" must be an integer, found: boolean"},
    {"[config]\na = 2147483648\n", "2: \"a\" must fit into 32 bits"},
    {"[config]\na = -2147483649\n", "2: \"a\" must fit into 32 bits"},
    {"[transfer]\nmax_bytes = 0\n", "2: \"max_bytes\" must be from 1 to 2147483647"},
    {"[transfer]\nidle_seconds = 3601\n", "2: \"idle_seconds\" must be from 1 to 3600"},
    {"[transfer]\nmax_redirects = -1\n", "2: \"max_redirects\" must be from 0 to 50"},
    {"[transfer]\nca_file = 'none.pem'\n", "2: cannot read none.pem: No such file"},
    {"[transfer]\n\nca_file = 'profile.toml'\n", "3: no certificate (PEM) in profile.toml"},
    {"[account]\nid = 1\n", "1: \"account\" must be an array of tables, found: table"},
    {"account = [\n 1]\n", "2: \"account\" must be an array of tables, found: integer"},
    {"\n[[account]]\nid = 1\nserver = 'b'\n", "2: an account without a name"},
    {"[[account]]\nname = 'a'\n", "1: an account without a server"},
    {"[[account]]\nid = -1\nname = 'a'\nserver = 'b'\n", "1: an account id below 0"},
    {kAnna + "\n[[account]]\nid = 1\nname = 'b'\nserver = 'b'\n", "6: a second account with id 1"},
    {kAnna + "[[account]]\nname = 'anna'\nserver = 'example.org'\n",
     "5: a second account anna@example.org"},
    {"[[contact]]\nnumbers = ['1']\n", "1: a contact without a name"},
    {"\n[[contact]]\nname = 'a'\n", "2: a contact without a number"},
    {"[[contact]]\nname = 'a'\nnumbers = [\n'1',\n' - ']\n", "5: \" - \" is no number"},
    {"[[contact]]\nname = 'a'\nnumbers = ['1', 2]\n", "3: \"numbers\" must be a string"},
    {"[[contact]]\nname = 'a'\nnumbers = '1'\n", "3: \"numbers\" must be an array of strings"},
    {"[contacts]\n\nvcard = 'none.vcf'\n", "3: cannot read none.vcf: No such file"},
};

TEST_F(ProfileTest, NamesTheLineOfWhatIsWrong) {
  for (const auto& row : kWrong) {
    SCOPED_TRACE(row.text);
    WriteFile("profile.toml", row.text);
    const std::string error = ErrorOf("profile.toml");
    EXPECT_EQ(error.rfind(std::string("profile.toml:") + row.error, 0), 0u) << error;
    EXPECT_EQ(error.find('\n'), error.npos) << error;
  }
}

TEST_F(ProfileTest, NamesTheFileThatIsWrong) {
  WriteFile("book.vcf", "BEGIN:VCARD\nFN:A\nTEL 1\nEND:VCARD\n");
  WriteFile("profile.toml", "contacts.vcard = 'book.vcf'\n");
  testing::internal::CaptureStderr();
  EXPECT_TRUE(LoadProfile("profile.toml").contacts.empty());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "book.vcf:3: neither a property nor END:VCARD\n");
  EXPECT_EQ(ErrorOf("none.toml"), "none.toml: No such file or directory");
  EXPECT_EQ(ErrorOf("."), ".: Is a directory");
}

TEST(AccountsTest, FindsByFullNameOrFirstSipName) {
  Accounts accounts({{0, "anna", "a.example.org"},
                     {1, "anna", "b.example.org"},
                     {2, "anna@a.example.org", "c.example.org"}});
  EXPECT_EQ(accounts.FindByFullName("anna@b.example.org"), &accounts.All()[1]);
  EXPECT_EQ(accounts.FindByFullName("anna"), nullptr);
  EXPECT_EQ(accounts.FindBySipName("anna"), &accounts.All()[0]);
  EXPECT_EQ(accounts.FindBySipName("anna@b.example.org"), nullptr);
  EXPECT_EQ(accounts.Find("anna@a.example.org"), &accounts.All()[0]);
  EXPECT_EQ(accounts.Find("anna"), &accounts.All()[0]);
  EXPECT_EQ(accounts.Find("an"), nullptr);
}

}  // namespace
}  // namespace desk
