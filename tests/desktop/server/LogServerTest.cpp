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

// Asks for a path, and has read the head of the answer.
class Client {
 public:
  Client(const LogServer& server, const std::string& path,
         const std::string& authorization = std::string("Basic ") + kCredentials)
      : connection_(BIO_new_connect(("127.0.0.1:" + std::to_string(server.port())).c_str()),
                    BIO_free_all) {
    const std::string request = "GET " + path +
                                " HTTP/1.1\r\nHost: localhost\r\nAuthorization: " + authorization +
                                "\r\n\r\n";
    BIO_puts(connection_.get(), request.c_str());
    for (std::string next = Read(1); !next.empty(); next = Read(1)) {
      head += next;
      if (head.find("\r\n\r\n") != head.npos) break;
    }
  }

  int Status() const { return head.size() > 12 ? std::stoi(head.substr(9, 3)) : 0; }

  // Less when the answer ends before.
  std::string Read(std::size_t size) {
    std::string bytes(size, '\0');
    std::size_t got = 0, part = 0;
    while (got < size && BIO_read_ex(connection_.get(), &bytes[got], size - got, &part) == 1) {
      got += part;
    }
    return bytes.substr(0, got);
  }

  std::string head;

 private:
  std::unique_ptr<BIO, decltype(&BIO_free_all)> connection_;
};

class LogServerTest : public ServerTest {
 protected:
  static long PeakMemory() {  // of this process, in kB
    struct rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  }

  static auto OpenFiles() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  }

  // What comes of a document when it changes as soon as half of it is sent.
  std::string ReadChanging(const std::string& text, const std::function<void()>& change) {
    Serve("Missed", text);
    server.Misbehave("/Missed", {Kind::kStall, 0, {}});
    Client client(server, "/Missed");
    const std::string half = client.Read(text.size() / 2);
    change();
    server.Misbehave("/Missed", {});
    return half + client.Read(text.size());
  }
};

TEST_F(LogServerTest, KeepsNoDocumentInMemoryAndNoneOpen) {
  constexpr std::size_t kBytes = 50 << 20;
  WriteFile(documents() / "Big", "");
  fs::resize_file(documents() / "Big", kBytes);
  server.Stop();
  const auto open = OpenFiles();
  server.Start();
  const long before = PeakMemory();
  {
    std::vector<Client> clients;
    for (int i = 0; i < 32; ++i) clients.emplace_back(server, "/Big");
    const std::string length = "Content-Length: " + std::to_string(kBytes);
    for (const Client& client : clients) EXPECT_NE(client.head.find(length), client.head.npos);
  }
  EXPECT_LT(PeakMemory() - before, static_cast<long>(kBytes / 1024)) << "one document at most";
  server.Stop();
  EXPECT_EQ(OpenFiles(), open);
}

TEST_F(LogServerTest, ADocumentMayChangeWhileItIsSent) {
  const std::string text = Repeat("0123456789", 10000);
  const fs::path file = documents() / "Missed";
  EXPECT_EQ(ReadChanging(text, [&] { fs::resize_file(file, 10); }), text.substr(text.size() / 2));
  EXPECT_EQ(ReadChanging(text, [&] { fs::resize_file(file, 2 * text.size()); }), text);
  EXPECT_EQ(ReadChanging(text, [&] { fs::remove(file); }), text);
}

TEST_F(LogServerTest, ServesTheFilesOfItsDirectoryAlone) {
  Serve("Missed.xml", "missed");
  Serve("Empty", "");
  WriteFile(root.path() / "private", "private");
  fs::create_directory(documents() / "folder");
  fs::create_symlink(root.path() / "private", documents() / "link");
  ASSERT_EQ(mkfifo((documents() / "fifo").c_str(), 0600), 0);
  EXPECT_EQ(Client(server, "/Missed").Read(100), "missed");
  EXPECT_EQ(Client(server, "/v2.0/Missed.xml").Read(100), "missed");
  EXPECT_EQ(Client(server, "/Empty").Status(), 200);
  Serve("new\nline", "");
  EXPECT_EQ(Client(server, "/").Read(100), "/Empty\n/Missed.xml\n/new\\x0Aline\n");
  for (const char* path : {"/link", "/fifo", "/folder", "/..", "/..%2Fprivate"}) {
    EXPECT_EQ(Client(server, path).Status(), 404) << path;
  }
  for (const char* path : {"/%00", "/Missed%00", "/Missed.xml%00", "/Missed?name=a%00b"}) {
    EXPECT_EQ(Client(server, path).Status(), 400) << path;
  }
}

TEST_F(LogServerTest, TakesBasicInAnyCaseAndThePasswordAsItIs) {
  Serve("Missed", "missed");
  const std::string credentials = kCredentials;
  for (const char* scheme : {"Basic ", "basic ", "BASIC "}) {
    EXPECT_EQ(Client(server, "/Missed", scheme + credentials).Status(), 200) << scheme;
  }
  for (const std::string& wrong :
       {std::string(), std::string("Basic"), "Bearer " + credentials, "Basi " + credentials,
        "Basic " + credentials + "=", "basic y" + credentials.substr(1)}) {
    EXPECT_EQ(Client(server, "/Missed", wrong).Status(), 401) << wrong;
    EXPECT_EQ(Client(server, "/", wrong).Status(), 401) << wrong;
  }
}

}  // namespace
}  // namespace desk
