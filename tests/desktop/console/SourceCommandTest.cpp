// The sources of server call logs as a user of the desktop phone meets them: what is shown of their
// passwords, what is refused, and that the rest arrives at a server as it was typed.
#include <sstream>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Commands.h"
#include "desktop/console/SourceCheck.h"
#include "desktop/platform/transfer/TransferUrl.h"
#include "desktop/server/LogServer.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;

class SourceCommandTest : public testing::Test {
 protected:
  SourceCommandTest() {
    phone.platform().trace.SetLevel(3);
    EXPECT_TRUE(phone.platform().trace.SetFile(traceFile()));
  }
  ~SourceCommandTest() override { CBSCallLogController::ReleaseInstance(); }

  std::filesystem::path traceFile() const { return root.path() / "trace"; }

  // What the phone answers, or why it refuses the line.
  std::string Do(const std::string& line) {
    out.str("");
    try {
      RunCommand(console, line);
    } catch (const CommandError& error) {
      return error.what();
    }
    return out.str();
  }

  // The source through the module's own door, as from a file that a hand wrote: at the prompt the
  // phone refuses what cannot be used.
  static const BroadSoftConfigItem& Put(const BroadSoftConfigItem& source) {
    auto& logs = *CBSCallLogController::GetInstance();
    logs.SetConfigDataByIndex(0, source);
    logs.ReloadBSCallLogConfig();
    return *logs.GetConfigDataByIndex(0);
  }

  // Everything that the phone says of the source when it is used.
  std::string Shown(const BroadSoftConfigItem& source) {
    CBSCallLogController::GetInstance()->SetConfigDataByIndex(0, source);
    phone.platform().journal.Clear();
    std::filesystem::resize_file(traceFile(), 0);
    const std::string said = Do("sources") + Do("server OpenCallLogPage(broadsoft_calllog_0)");
    return said + Do("await") + Do("journal") + ReadFile(traceFile());
  }

  TemporaryDirectory root;
  std::ostringstream out;
  Phone phone{root.path(), Profile(), std::make_unique<ManualClock>(0)};
  Console console{phone, out};
};

BroadSoftConfigItem Source(const std::string& server, const std::string& user,
                           const std::string& password) {
  BroadSoftConfigItem source;
  source.server = server;
  source.user_name = user;
  source.password = password;
  return source;
}

const std::string kPlace = "127.0.0.1:1/user/anna@localhost/Missed";
constexpr char kInPlace[] = "anna@localhost";  // what is shown then begins at the host

const struct {
  std::string user;
  Strings passwords;
} kSecrets[] = {
    {"u",
     {"s3cret", "s3@localhost/cret", "s3@localhost?name=cret", "s3://cret",
      "s3@localhost/http://cret", "s3\ncret",
      "s3" + std::string(2 * Journal::kLineBytes, 'x') + "cret"}},
    {kInPlace, {"s3cret", "s3 \t#?\"]'@:cret", "s3@localhost/cret", "s3/cret", "3/s3cret"}},
    {"localhost", {"3/s3cret"}},
    {"u/x", {"s3cret"}},
    {"x@localhost/y", {"s3cret"}},
    {"a:b@localhost/y", {"s3cret"}},
};

TEST_F(SourceCommandTest, NothingOfAPasswordIsShown) {
  for (const auto& [user, passwords] : kSecrets) {
    for (const std::string& password : passwords) {
      SCOPED_TRACE(user + " " + password);
      const std::string shown = Shown(Source(kPlace, user, password));
      EXPECT_NE(shown.find("remoteUrl[http://***@"), shown.npos) << shown;
      for (const char* part : {"s3", "cret"}) EXPECT_EQ(shown.find(part), shown.npos) << shown;
      EXPECT_EQ(shown.find("[http://***@" + kPlace) != shown.npos, user == kInPlace) << shown;
    }
  }
}

TEST_F(SourceCommandTest, AFileLeadsNobodyElsewhere) {
  Put(Source("anna:s3cret@127.0.0.1/p", "", ""));
  EXPECT_EQ(Do("server 0").find("source 0 cannot be used: "), 0u);
  EXPECT_EQ(Do("sources").find("s3cret"), std::string::npos);
}

constexpr char kSet[] = "  source 0 is set\n";
const struct {
  const char* option;
  std::string answer;
} kOptions[] = {
    {"user=a:b", R"(a user cannot hold ":")"},
    {R"(name="\xEF\xBF\xBF")", "a name cannot hold \"\uFFFF\""},
    {R"(server="https://a\tb")", R"(a server's host cannot hold "\x09")"},
    {"server=http://v:w@h/p", R"(a server's host cannot hold "@")"},
    {"server=h?name=a", R"(a server's host cannot hold "?")"},
    {"server=h/p#a", R"(a server cannot hold "#")"},
    {R"(server="h/p\x7F")", R"(a server cannot hold "\x7F")"},
    {"server=h:80", R"(nothing can be fetched from "h:80:80")"},
    {"server=h/p?to=http://h", R"(nothing can be fetched from "h/p?to=http://h:80")"},
    {"port=80@evil", R"(the port must be a number from 1 to 65535, not "80@evil")"},
    {"port=0", R"(the port must be a number from 1 to 65535, not "0")"},
    {"port=65536", R"(the port must be a number from 1 to 65535, not "65536")"},
    {"port=1", kSet},
    {"port=65535", kSet},
    {"server=http://[::1]/user/anna@example.org/Missed?a=b", kSet},
};

TEST_F(SourceCommandTest, AnUnusableSourceIsRefusedAndChangesNothing) {
  Do("source 0 name=Now server=h/p port=80 user=u password=w");
  for (const auto& row : kOptions) {
    const std::string before = ReadFile(phone.SourcesFile());
    EXPECT_EQ(Do(std::string("source 0 ") + row.option), row.answer);
    EXPECT_EQ(ReadFile(phone.SourcesFile()) != before, row.answer == kSet) << row.option;
  }
}

TEST_F(SourceCommandTest, NewsNameTheSourceAndSayWhy) {
  const std::filesystem::path documents = root.path() / "documents";
  std::filesystem::create_directory(documents);
  WriteFile(documents / "Missed.xml", "<Missed/>");
  WriteFile(documents / "Text", "no list");
  LogServer server({documents, "", "", 0});
  server.Start();
  console.logServer = &server;
  const std::string address = "127.0.0.1:" + std::to_string(server.port());
  const std::string fails = "  * a server list could not be fetched: ";
  const struct {
    const char* name;
    std::string server, query, news;
  } kRows[] = {
      {"Office", address + "/Missed", "", "  * a server list is there: Office\n"},
      {"Office", address + "/Missed", "Anna M",
       "  * a server list is there: Office, for \"Anna M\"\n"},
      {"", address + "/Missed", "B", "  * a server list is there: source 0, for \"B\"\n"},
      {"Office", address + "/None", "", fails + "Office: no such page (404)\n"},
      {"Office", address + "/Text", "", fails + "Office: it is no call log\n"},
      {"Office", "127.0.0.1:1", "", fails + "Office: no connection: Connection refused\n"},
  };
  for (const auto& row : kRows) {
    Do(std::string("source 0 server=") + row.server + " name=" + row.name);
    Do("server 0 \"query=" + row.query + "\"");
    EXPECT_EQ(Do("await"), row.news);
  }
  Do("server 0 refresh=on");
  Do("source 0 server=elsewhere");
  EXPECT_EQ(Do("await"), fails + "http://127.0.0.1:1: no connection: Connection refused\n");
  Do("source 0 server=h/p?a=b");
  EXPECT_EQ(Do("server 0 query=x").rfind("source 0 cannot be used: its server holds a \"?\"", 0),
            0u);
  EXPECT_EQ(Do("misbehave /Mised cut"), "the log server has no /Mised; it has Missed.xml, Text");
  EXPECT_EQ(Do("misbehave Missed cut").rfind("the log server has no Missed;", 0), 0u);
  EXPECT_EQ(Do("misbehave /calls/Missed cut"), "");
}

// Of every byte, and of what means something in a URL: just what arrives is let through.
TEST_F(SourceCommandTest, AUserAndAPasswordArriveWholeOrAreRefused) {
  Strings texts = {"?name=", "?name", "://", "\u00E9", "%41", "@h", ":@:"};
  for (int byte = 0; byte < 256; ++byte) texts.emplace_back(1, static_cast<char>(byte));
  for (const std::string& text : texts) {
    for (const auto& item :
         {Source("h/p", "u" + text, "ww"), Source("h/p", "u", "w" + text + "w")}) {
      SCOPED_TRACE(item.user_name + " " + item.password);
      const auto url = SplitUrl("http://" + item.user_name + ":" + item.password + "@h/p");
      const bool arrives = url && url->user == item.user_name && url->password == item.password;
      const BroadSoftConfigItem& kept = Put(item);
      const bool isKept = kept.user_name == item.user_name && kept.password == item.password;
      EXPECT_EQ(WhyUnusable(item).empty(), arrives && isKept) << WhyUnusable(item);
    }
  }
}

constexpr const char* kQueries[] = {"C#",  "a&b", "\u00FC",        "Anna M",     "a+b",
                                    "50%", "%41", "x@127.0.0.1:1", "a/b?name=c", ""};

TEST_F(SourceCommandTest, AQueryArrivesAsItWasTyped) {
  LogServer server({root.path(), "", "", 0});
  server.Start();
  const std::string address = "127.0.0.1:" + std::to_string(server.port());
  const auto asked = [&](const std::string& path, const std::string& query) {
    Do("server 0 \"query=" + query + "\"");
    Do("await");
    return server.AskedName(path);
  };
  for (const std::string path : {"/Missed", "/"}) {
    Do("source 0 server=" + address + (path == "/" ? "" : path));
    for (const std::string typed : kQueries) EXPECT_EQ(asked(path, typed), typed);
    EXPECT_EQ(asked(path, "?name=%41&b=c"), "A");
  }
}

}  // namespace
}  // namespace desk
