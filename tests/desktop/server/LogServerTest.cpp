// The log server by itself: what it serves, to whom, and what it takes to do so.
#include "desktop/server/LogServer.h"

#include <openssl/bio.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "tests/support/ServerTest.h"

namespace desk {
namespace {

namespace fs = std::filesystem;

// "Basic" with the fixture's user and password behind it.
constexpr char kCredentials[] = "YW5uYUBleGFtcGxlLm9yZzpzZWNyZXRAOjE=";

class LogServerTest : public ServerTest {
 protected:
  // Asks for a path, and has read the head of the answer.
  class Client {
   public:
    Client(const LogServer& server, const std::string& path,
           const std::string& authorization = std::string("Basic ") + kCredentials)
        : connection_(BIO_new_connect(("127.0.0.1:" + std::to_string(server.port())).c_str()),
                      BIO_free_all) {
      const std::string request =
          "GET " + path + " HTTP/1.1\r\nHost: localhost\r\nAuthorization: " + authorization +
          "\r\n\r\n";
      BIO_puts(connection_.get(), request.c_str());
      while (head_.find("\r\n\r\n") == head_.npos) {
        const std::string next = Read(1);
        if (next.empty()) break;
        head_ += next;
      }
    }

    int Status() const { return head_.size() > 12 ? std::stoi(head_.substr(9, 3)) : 0; }
    bool HeadHas(const std::string& line) const { return head_.find(line) != head_.npos; }

    // Less when the answer ends before.
    std::string Read(std::size_t size) {
      std::string bytes(size, '\0');
      std::size_t got = 0;
      for (std::size_t part = 1; part > 0 && got < size; got += part) {
        part = 0;
        BIO_read_ex(connection_.get(), &bytes[got], size - got, &part);
      }
      bytes.resize(got);
      return bytes;
    }

   private:
    std::unique_ptr<BIO, decltype(&BIO_free_all)> connection_;
    std::string head_;
  };

  static long PeakMemory() {  // of this process, in kB
    struct rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  }

  int OpenDocuments() const {
    int open = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
      std::error_code gone;  // the one that lists them
      open += fs::read_symlink(entry, gone).parent_path() == documents();
    }
    return open;
  }
};

TEST_F(LogServerTest, KeepsNoDocumentInMemoryAndNoneOpen) {
  constexpr std::size_t kBytes = 50 << 20;
  constexpr int kClients = 32;
  Serve("Big", "");
  Serve("Small", "small");
  fs::resize_file(documents() / "Big", kBytes);
  const long before = PeakMemory();
  {
    std::vector<Client> clients;
    for (int i = 0; i < kClients; ++i) {
      clients.emplace_back(server, "/Big");
      EXPECT_EQ(clients.back().Status(), 200);
      EXPECT_TRUE(clients.back().HeadHas("Content-Length: " + std::to_string(kBytes)));
    }
  }
  EXPECT_EQ(Client(server, "/Small").Read(100), "small");
  EXPECT_LT(PeakMemory() - before, static_cast<long>(kBytes / 1024)) << "one document at most";
  server.Stop();
  EXPECT_EQ(OpenDocuments(), 0);
}

TEST_F(LogServerTest, ADocumentMayChangeWhileItIsSent) {
  const std::string text = Repeat("0123456789", 10000);
  const fs::path file = documents() / "Missed";
  const struct {
    const char* what;
    std::function<void()> change;
    std::string rest;
  } kRows[] = {
      {"cut", [&] { fs::resize_file(file, 10); }, ""},
      {"longer", [&] { fs::resize_file(file, 2 * text.size()); }, text.substr(text.size() / 2)},
      {"gone", [&] { fs::remove(file); }, text.substr(text.size() / 2)},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.what);
    Serve("Missed", text);
    server.Misbehave("/Missed", {Kind::kStall, 0, {}});
    Client client(server, "/Missed");
    EXPECT_EQ(client.Read(text.size() / 2), text.substr(0, text.size() / 2));
    row.change();
    server.Misbehave("/Missed", {});
    EXPECT_EQ(client.Read(text.size()), row.rest);
  }
}

TEST_F(LogServerTest, ServesTheFilesOfItsDirectoryAlone) {
  Serve("Missed.xml", "missed");
  Serve("Empty", "");
  WriteFile(root.path() / "private", "private");
  fs::create_directory(documents() / "folder");
  fs::create_symlink(root.path() / "private", documents() / "link");
  fs::create_symlink(documents() / "none", documents() / "dangling");
  ASSERT_EQ(mkfifo((documents() / "fifo").c_str(), 0600), 0);
  for (const char* path : {"/Missed", "/v2.0/Missed.xml", "/Empty"}) {
    Client client(server, path);
    EXPECT_EQ(client.Status(), 200) << path;
    EXPECT_EQ(client.Read(100), path == std::string("/Empty") ? "" : "missed") << path;
  }
  for (const char* path : {"/link", "/dangling", "/fifo", "/folder", "/", "/..", "/..%2Fprivate",
                           "/Missed%00", "/Missed.xml%00"}) {
    EXPECT_EQ(Client(server, path).Status(), 404) << path;
  }
}

TEST_F(LogServerTest, TakesBasicInAnyCaseAndThePasswordAsItIs) {
  Serve("Missed", "missed");
  const std::string credentials = kCredentials;
  const std::pair<std::string, int> rows[] = {
      {"Basic " + credentials, 200},
      {"basic " + credentials, 200},
      {"BASIC " + credentials, 200},
      {"Basic", 401},
      {"basic y" + credentials.substr(1), 401},
      {"Basic " + credentials + "=", 401},
      {"Bearer " + credentials, 401},
      {"Basi " + credentials, 401},
      {"", 401},
  };
  for (const auto& [authorization, status] : rows) {
    EXPECT_EQ(Client(server, "/Missed", authorization).Status(), status) << authorization;
  }
}

}  // namespace
}  // namespace desk
