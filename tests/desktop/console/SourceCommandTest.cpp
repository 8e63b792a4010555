// The sources of server call logs as a user of the desktop phone meets them: what is shown of their
// passwords, what is refused, and that the rest arrives at a server as it was typed.
#include <sstream>

#include "desktop/console/CommandLine.h"
#include "desktop/console/Commands.h"
#include "desktop/console/SourceCheck.h"
#include "desktop/platform/TransferUrl.h"
#include "desktop/server/LogServer.h"
#include "tests/support/PhoneTest.h"

namespace desk {
namespace {

using NS_CALLLOG::CBSCallLogController;

class SourceCommandTest : public testing::Test {
 protected:
  SourceCommandTest() {
    std::filesystem::create_directory(documents());
    WriteFile(documents() / "Missed.xml", "<Missed/>");
    phone.platform().trace.SetLevel(3);
    EXPECT_TRUE(phone.platform().trace.SetFile(traceFile()));
  }
  ~SourceCommandTest() override { CBSCallLogController::ReleaseInstance(); }

  std::filesystem::path documents() const { return root.path() / "documents"; }
  std::filesystem::path traceFile() const { return root.path() / "trace"; }

  // What the phone answers.
  std::string Do(const std::string& line) {
    out.str("");
    RunCommand(console, line);
    return out.str();
  }
  static CBSCallLogController& Logs() { return *CBSCallLogController::GetInstance(); }

  TemporaryDirectory root;
  std::ostringstream out;
  Phone phone{root.path(), Profile(), std::make_unique<ManualClock>(0)};
  Console console{phone, out};
};

// Such sources come from a file that a hand wrote, through the module's own door: at the prompt the
// phone refuses most of them.
TEST_F(SourceCommandTest, NothingOfAPasswordIsShown) {
  const std::string server = "127.0.0.1:1/user/anna@localhost/Missed";
  const std::string again =
      "anna@localhost";  // the path repeats it: what is shown begins at the host
  const std::pair<std::string, std::string> kRows[] = {
      {"u", "s3cret"},
      {again, "s3cret"},
      {again, "s3 \t#?\"]'@:cret"},
      {again, "s3@localhost/cret"},
      {again, "s3/cret"},
      {again, "3/s3cret"},
      {"localhost", "3/s3cret"},
      {"u", "s3@localhost/cret"},
      {"u", "s3@localhost?name=cret"},
      {"u", "s3://cret"},
      {"u", "s3@localhost/http://cret"},
      {"u", "s3\ncret"},
      {"u/x", "s3cret"},
      {"x@localhost/y", "s3cret"},
      {"a:b@localhost/y", "s3cret"},
      {"u", "s3" + std::string(2 * Journal::kLineBytes, 'x') + "cret"},
  };
  for (const auto& [user, password] : kRows) {
    SCOPED_TRACE(user + " " + password);
    BroadSoftConfigItem source;
    source.server = server;
    source.user_name = user;
    source.password = password;
    Logs().SetConfigDataByIndex(0, source);
    phone.platform().journal.Clear();
    std::filesystem::resize_file(traceFile(), 0);
    std::string shown;
    for (const char* line :
         {"sources", "server OpenCallLogPage(broadsoft_calllog_0)", "await", "journal"}) {
      shown += Do(line);
    }
    shown += ReadFile(traceFile());
    EXPECT_NE(shown.find("remoteUrl[http://***@"), shown.npos) << shown;
    for (const char* part : {"s3", "cret"}) EXPECT_EQ(shown.find(part), shown.npos) << shown;
    EXPECT_EQ(shown.find("[http://***@" + server) != shown.npos, user == again) << shown;
  }
}

TEST_F(SourceCommandTest, AFileLeadsNobodyElsewhere) {
  BroadSoftConfigItem source;
  source.server = "127.0.0.1/p";
  source.port = "1@127.0.0.1:2";
  Logs().SetConfigDataByIndex(0, source);
  EXPECT_THROW(Do("server 0"), CommandError);
  source.server = "anna:s3cret@127.0.0.1/p";
  source.port.clear();
  Logs().SetConfigDataByIndex(0, source);
  EXPECT_THROW(Do("server 0"), CommandError);
  EXPECT_EQ(Do("sources").find("s3cret"), std::string::npos);
}

TEST_F(SourceCommandTest, AnUnusableSourceIsRefusedAndChangesNothing) {
  const std::pair<const char*, const char*> kRows[] = {
      {"user=a:b", R"(a user cannot hold ":")"},
      {"user=a/b", R"(a user cannot hold "/")"},
      {"password=s3/cret", R"(a password cannot hold "/")"},
      {"password=s3?name=cret", R"(a password cannot hold "?name=")"},
      {R"(password="s3\x00cret")", R"(a password cannot hold "\x00")"},
      {R"(password="s3\xC3")", R"(a password cannot hold "\xC3")"},
      {R"(name="\xEF\xBF\xBF")", "a name cannot hold \"\uFFFF\""},
      {R"(server="a b/p")", R"(a server's host cannot hold " ")"},
      {R"(server="https://a\tb")", R"(a server's host cannot hold "\x09")"},
      {"server=http://v:w@h/p", R"(a server's host cannot hold "@")"},
      {"server=h?name=a", R"(a server's host cannot hold "?")"},
      {"server=h/p#a", R"(a server cannot hold "#")"},
      {R"(server="h/p\x7F")", R"(a server cannot hold "\x7F")"},
      {"server=h:80", R"(nothing can be fetched from "h:80:80")"},
      {"server=/p", R"(nothing can be fetched from "/p:80")"},
      {"server=ftp://h", R"(nothing can be fetched from "ftp://h:80")"},
      {"server=h/p?to=http://h", R"(nothing can be fetched from "h/p?to=http://h:80")"},
      {"port=80@evil", R"(the port must be a number from 1 to 65535, not "80@evil")"},
      {"port=0", R"(the port must be a number from 1 to 65535, not "0")"},
      {"port=65536", R"(the port must be a number from 1 to 65535, not "65536")"},
  };
  Do("source 0 name=Now server=h/p port=80 user=u password=w");
  const std::string file = ReadFile(phone.SourcesFile());
  for (const auto& [option, reason] : kRows) {
    try {
      ADD_FAILURE() << option << ": " << Do(std::string("source 0 ") + option);
    } catch (const CommandError& error) {
      EXPECT_STREQ(error.what(), reason);
    }
    EXPECT_EQ(ReadFile(phone.SourcesFile()), file);
  }
  for (const char* option : {"server=", "port=", "port=1", "port=65535", "user=anna@example.org",
                             "server=http://[::1]/user/anna@example.org/Missed?a=b"}) {
    EXPECT_EQ(Do(std::string("source 0 ") + option), "  source 0 is set\n");
  }
}

// Of every byte, and of what means something in a URL: just what arrives is let through.
TEST_F(SourceCommandTest, AUserAndAPasswordArriveWholeOrAreRefused) {
  Strings texts = {"?name=", "?name", "://", "\u00E9", "%41", "@h", ":@:"};
  for (int byte = 0; byte < 256; ++byte) texts.emplace_back(1, static_cast<char>(byte));
  const auto source = [](const std::string& user, const std::string& password) {
    BroadSoftConfigItem item;
    item.server = "h/p";
    item.user_name = "u" + user;
    item.password = "w" + password + "w";
    return item;
  };
  for (const std::string& text : texts) {
    for (const auto& item : {source(text, ""), source("", text)}) {
      SCOPED_TRACE(item.user_name + " " + item.password);
      const auto url = SplitUrl("http://" + item.user_name + ":" + item.password + "@h/p");
      const bool arrives = url && url->user == item.user_name && url->password == item.password;
      Logs().SetConfigDataByIndex(0, item);
      Logs().ReloadBSCallLogConfig();
      const BroadSoftConfigItem& kept = *Logs().GetConfigDataByIndex(0);
      const bool isKept = kept.user_name == item.user_name && kept.password == item.password;
      EXPECT_EQ(WhyUnusable(item).empty(), arrives && isKept) << WhyUnusable(item);
    }
  }
}

TEST_F(SourceCommandTest, APasswordArrivesAtAServer) {
  for (const std::string password : {"s3 cret", "s3@h:1", ":", "%41%", "s3\u00E9", "?#&+;'"}) {
    SCOPED_TRACE(password);
    LogServer server({documents(), "anna@example.org", password, 0});
    server.Start();
    const std::string address = "127.0.0.1:" + std::to_string(server.port()) + "/Missed";
    Do("source 0 server=" + address + " user=anna@example.org \"password=" + password + "\"");
    Do("reload");
    Do("server 0");
    EXPECT_EQ(Do("await"), "  * a server list is there: http://***@" + address + "\n");
  }
}

TEST_F(SourceCommandTest, AQueryArrivesAsItWasTyped) {
  LogServer server({documents(), "", "", 0});
  server.Start();
  const std::string address = "127.0.0.1:" + std::to_string(server.port());
  const Strings typedQueries = {"C#",  "a&b", "\u00FC",       "Anna M",    "a+b",
                                "50%", "%41", "x@" + address, "a/b?name=c"};
  for (const std::string path : {"/Missed", "/"}) {
    Do("source 0 server=" + address + (path == "/" ? "" : path));
    for (const std::string& typed : typedQueries) {
      Do("server 0 \"query=" + typed + "\"");
      Do("await");
      EXPECT_EQ(server.AskedName(path), typed);
    }
    Do("server 0 query=?name=%41&b=c");
    Do("await");
    EXPECT_EQ(server.AskedName(path), "A");
    Do("server 0");
    Do("await");
    EXPECT_EQ(server.AskedName(path), "");
  }
}

}  // namespace
}  // namespace desk
